#include "Norvane/capture/Thumbnail.h"

#include "tests/capture/SamplePictures.h"

#include <QColorSpace>
#include <QImageWriter>
#include <QtEndian>
#include <gtest/gtest.h>

namespace {

constexpr int maxPixels = 256;

// A red left half, a blue right half.
QImage twoHalves(int width, int height)
{
    QImage image = filledImage(width, height, Qt::red);
    for (int y = 0; y < height; ++y) {
        for (int x = width / 2; x < width; ++x)
            image.setPixelColor(x, y, Qt::blue);
    }
    return image;
}

QByteArray turnedTiff(const QImage &image)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    QImageWriter writer(&buffer, "TIFF");
    writer.setTransformation(QImageIOHandler::TransformationRotate90);
    writer.write(image);
    return bytes;
}

QImage pictureOf(const Thumbnail &thumbnail)
{
    return thumbnail.png ? QImage::fromData(*thumbnail.png, "PNG") : QImage();
}

bool isRed(const QColor &colour)
{
    return colour.red() > 200 && colour.blue() < 60;
}

// 2 × 1 pixels, a global table of red and blue; a frame of reds, then one of blues.
QByteArray animation()
{
    const QByteArray start("GIF89a\x02\0\x01\0\x80\0\0\xFF\0\0\0\0\xFF", 19);
    const QByteArray frame("\x21\xF9\x04\0\x0A\0\0\0\x2C\0\0\0\0\x02\0\x01\0\0\x02\x02", 20);
    return start + frame + QByteArray("\x04\x0A\0", 3) + frame + QByteArray("\x4C\x0A\0;", 4);
}

TEST(Thumbnail, EveryFormatIsMeasuredAsItLiesAndShrunkAndTurned)
{
    const QImage image = twoHalves(1000, 400);
    const QPoint left(30, 50), right(226, 50), top(50, 30), bottom(50, 226);
    const struct {
        const char *name;
        QByteArray bytes;
        QPoint red, blue;
    } cases[] = {
        {"PNG", encoded(image, "PNG"), left, right},
        {"JPEG", encoded(image, "JPEG"), left, right},
        {"TIFF", encoded(image, "TIFF"), left, right},
        {"WEBP", encoded(image, "WEBP"), left, right},
        {"BMP", encoded(image, "BMP"), left, right},
        {"HEIC", heicOf(image, 1), left, right},
        {"HEIC, turned", heicOf(image, 6), top, bottom},
        {"TIFF, turned", turnedTiff(image), top, bottom},
        {"JPEG, orientation 1", jpegWithOrientation(image, 1), left, right},
        {"JPEG, orientation 2", jpegWithOrientation(image, 2), right, left},
        {"JPEG, orientation 3", jpegWithOrientation(image, 3), right, left},
        {"JPEG, orientation 6", jpegWithOrientation(image, 6), top, bottom},
        {"JPEG, orientation 8", jpegWithOrientation(image, 8), bottom, top},
    };
    for (const auto &[name, bytes, red, blue] : cases) {
        SCOPED_TRACE(name);
        const auto thumbnail = makeThumbnail(bytes, maxPixels);
        EXPECT_EQ(thumbnail.pixelSize, QSizeF(1000, 400));
        const bool upright = red.x() == blue.x();
        const QImage picture = pictureOf(thumbnail);
        ASSERT_EQ(picture.size(), upright ? QSize(102, 256) : QSize(256, 102));
        EXPECT_TRUE(isRed(picture.pixelColor(red)));
        EXPECT_FALSE(isRed(picture.pixelColor(blue)));
        EXPECT_EQ(decodedPicture(bytes, 4096).size(), upright ? QSize(400, 1000) : QSize(1000, 400));
    }
}

TEST(Thumbnail, SmallPicturesAreNotEnlarged)
{
    for (const auto &[size, shown] : {std::pair{QSize(1, 1), QSize(1, 1)},
                                      {QSize(256, 256), QSize(256, 256)},
                                      {QSize(3, 200), QSize(3, 200)},
                                      {QSize(5000, 1), QSize(256, 1)}}) {
        const QByteArray png = encoded(filledImage(size.width(), size.height(), Qt::red));
        EXPECT_EQ(pictureOf(makeThumbnail(png, maxPixels)).size(), shown);
    }
}

TEST(Thumbnail, KeepsTransparencyAndColoursAndNothingButPixels)
{
    QImage image = filledImage(600, 600, QColor(200, 100, 50));
    for (int x = 0; x < 300; ++x) {
        for (int y = 0; y < 600; ++y)
            image.setPixelColor(x, y, QColor(255, 0, 0, x < 150 ? 0 : 128));
    }
    image.setText("Comment", QString(100000, u'x'));
    image.setColorSpace(QColorSpace(QColorSpace::AdobeRgb));
    const auto thumbnail = makeThumbnail(encoded(image), maxPixels);
    const QImage picture = pictureOf(thumbnail);
    EXPECT_EQ(picture.pixelColor(30, 100).alpha(), 0);
    EXPECT_NEAR(picture.pixelColor(100, 100).alpha(), 128, 2);
    EXPECT_GT(picture.pixelColor(200, 100).red(), 210) << "the same colour, in sRGB";
    EXPECT_TRUE(picture.textKeys().isEmpty());
    EXPECT_LT(thumbnail.png->size(), 5000);
}

TEST(Thumbnail, AnAnimationShowsItsFirstFrame)
{
    const auto thumbnail = makeThumbnail(animation(), maxPixels);
    EXPECT_EQ(thumbnail.pixelSize, QSizeF(2, 1));
    EXPECT_TRUE(isRed(pictureOf(thumbnail).pixelColor(0, 0)));
    EXPECT_TRUE(isRed(pictureOf(thumbnail).pixelColor(1, 0)));
}

TEST(Thumbnail, WhatIsNotToBeReadGivesItsSizeWhereThatIsKnown)
{
    const QByteArray jpeg = encoded(twoHalves(400, 300), "JPEG");
    QByteArray bomb = jpeg;
    const auto frame = bomb.indexOf("\xFF\xC0"); // length, precision, height, width
    ASSERT_GT(frame, 0);
    qToBigEndian<quint16>(60000, bomb.data() + frame + 5);
    qToBigEndian<quint16>(60000, bomb.data() + frame + 7);
    const auto scan = jpeg.indexOf("\xFF\xDA");
    const QByteArray png = encoded(twoHalves(640, 480));
    const struct {
        const char *what;
        QByteArray bytes;
        QSizeF size;
    } cases[] = {
        {"a PNG bomb", pngBomb, {60000, 60000}},
        {"a JPEG bomb", bomb, {60000, 60000}},
        {"endless passes", jpeg.left(scan) + jpeg.mid(scan).repeated(500), {400, 300}},
        {"half a PNG", png.left(png.size() / 2), {640, 480}},
        {"nothing", {}, {0, 0}},
        {"text", "no picture", {0, 0}},
        {"junk", QByteArray(1000, '\xFF'), {0, 0}},
        {"a drawing",
         R"(<svg xmlns="http://www.w3.org/2000/svg" width="10" height="10"><rect/></svg>)",
         {0, 0}},
    };
    for (const auto &[what, bytes, size] : cases) {
        EXPECT_EQ(makeThumbnail(bytes, maxPixels).pixelSize, size) << what;
        EXPECT_FALSE(makeThumbnail(bytes, maxPixels).png) << what;
        EXPECT_TRUE(decodedPicture(bytes, 4096).isNull()) << what;
    }
}

TEST(Thumbnail, HalfAJpegShowsItsBeginning)
{
    const QByteArray whole = encoded(twoHalves(640, 480), "JPEG");
    const auto half = makeThumbnail(whole.left(whole.size() / 2), maxPixels);
    EXPECT_EQ(half.pixelSize, QSizeF(640, 480));
    EXPECT_TRUE(isRed(pictureOf(half).pixelColor(20, 20)));
}

TEST(Thumbnail, EveryCutOfAFileIsSurvived)
{
    const QImage image = twoHalves(40, 30);
    std::vector<QByteArray> files{animation(), heicOf(twoHalves(1000, 400), 6)};
    for (const char *format : {"PNG", "JPEG", "TIFF", "WEBP", "BMP"})
        files.push_back(encoded(image, format));
    for (const auto &whole : files) {
        const auto known = makeThumbnail(whole, maxPixels).pixelSize;
        ASSERT_NE(known, QSizeF(0, 0));
        for (qsizetype length = 0; length < whole.size(); length += 1 + whole.size() / 60) {
            const auto cut = makeThumbnail(whole.left(length), maxPixels);
            EXPECT_TRUE(cut.pixelSize == known || cut.pixelSize == QSizeF(0, 0)) << "cut at " << length;
            EXPECT_FALSE(cut.png && known.width() == 1000) << "a HEIC file cut at " << length;
        }
    }
}

} // namespace
