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

TEST(Thumbnail, EveryFormatIsMeasuredAndShrunk)
{
    for (const char *format : {"PNG", "JPEG", "TIFF", "WEBP", "BMP"}) {
        const auto thumbnail = makeThumbnail(encoded(twoHalves(1000, 400), format), maxPixels);
        EXPECT_EQ(thumbnail.pixelSize, QSizeF(1000, 400)) << format;
        const QImage picture = pictureOf(thumbnail);
        EXPECT_EQ(picture.size(), QSize(256, 102)) << format;
        EXPECT_TRUE(isRed(picture.pixelColor(20, 50))) << format;
        EXPECT_FALSE(isRed(picture.pixelColor(235, 50))) << format;
    }
}

TEST(Thumbnail, SmallPicturesAreNotEnlarged)
{
    for (const QSize size : {QSize(1, 1), QSize(256, 256), QSize(3, 200)}) {
        const auto thumbnail =
            makeThumbnail(encoded(filledImage(size.width(), size.height(), Qt::red), "PNG"), 256);
        EXPECT_EQ(pictureOf(thumbnail).size(), size);
    }
    EXPECT_EQ(pictureOf(makeThumbnail(encoded(filledImage(5000, 1, Qt::red), "PNG"), 256)).size(),
              QSize(256, 1));
}

TEST(Thumbnail, OrientationTurnsThePictureButNotItsSize)
{
    struct Case {
        char orientation;
        QSize size;
        QPoint red, blue;
    };
    // Where the red half of the stored picture is to be seen.
    for (const auto &[orientation, size, red, blue] : {
             Case{1, {256, 128}, {30, 64}, {226, 64}},
             Case{2, {256, 128}, {226, 64}, {30, 64}},
             Case{3, {256, 128}, {226, 64}, {30, 64}},
             Case{6, {128, 256}, {64, 30}, {64, 226}},
             Case{8, {128, 256}, {64, 226}, {64, 30}},
         }) {
        const auto thumbnail =
            makeThumbnail(jpegWithOrientation(twoHalves(800, 400), orientation), maxPixels);
        EXPECT_EQ(thumbnail.pixelSize, QSizeF(800, 400));
        const QImage picture = pictureOf(thumbnail);
        ASSERT_EQ(picture.size(), size) << int(orientation);
        EXPECT_TRUE(isRed(picture.pixelColor(red))) << int(orientation);
        EXPECT_FALSE(isRed(picture.pixelColor(blue))) << int(orientation);
    }
}

TEST(Thumbnail, HeicIsMeasuredTurnedAndShrunk)
{
    for (const auto &[orientation, red, blue] :
         {std::tuple{1, QPoint(30, 50), QPoint(226, 50)}, std::tuple{6, QPoint(50, 30), QPoint(50, 226)}}) {
        const QByteArray heic = heicOf(twoHalves(1000, 400), orientation);
        ASSERT_FALSE(heic.isEmpty());
        const auto thumbnail = makeThumbnail(heic, maxPixels);
        EXPECT_EQ(thumbnail.pixelSize, QSizeF(1000, 400));
        const QImage picture = pictureOf(thumbnail);
        EXPECT_EQ(picture.size(), orientation == 1 ? QSize(256, 102) : QSize(102, 256));
        EXPECT_TRUE(isRed(picture.pixelColor(red)));
        EXPECT_FALSE(isRed(picture.pixelColor(blue)));
        EXPECT_EQ(decodedPicture(heic, 4096).size(), orientation == 1 ? QSize(1000, 400) : QSize(400, 1000));
        for (qsizetype length = 0; length < heic.size(); length += 1 + heic.size() / 60)
            EXPECT_FALSE(makeThumbnail(heic.left(length), maxPixels).png) << "cut at " << length;
    }
}

TEST(Thumbnail, ATiffIsTurnedToo)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    QImageWriter writer(&buffer, "TIFF");
    writer.setTransformation(QImageIOHandler::TransformationRotate90);
    ASSERT_TRUE(writer.write(twoHalves(800, 400)));
    const auto thumbnail = makeThumbnail(bytes, maxPixels);
    EXPECT_EQ(thumbnail.pixelSize, QSizeF(800, 400));
    ASSERT_EQ(pictureOf(thumbnail).size(), QSize(128, 256));
    EXPECT_TRUE(isRed(pictureOf(thumbnail).pixelColor(64, 30)));
    EXPECT_FALSE(isRed(pictureOf(thumbnail).pixelColor(64, 226)));
}

TEST(Thumbnail, TransparencyIsKept)
{
    QImage image = filledImage(600, 600, QColor(0, 0, 0, 0));
    for (int x = 0; x < 300; ++x) {
        for (int y = 0; y < 600; ++y)
            image.setPixelColor(x, y, QColor(255, 0, 0, 128));
    }
    const QImage picture = pictureOf(makeThumbnail(encoded(image, "PNG"), maxPixels));
    EXPECT_EQ(picture.pixelColor(200, 100).alpha(), 0);
    EXPECT_NEAR(picture.pixelColor(50, 100).alpha(), 128, 2);
}

TEST(Thumbnail, AnAnimationShowsItsFirstFrame)
{
    const auto thumbnail = makeThumbnail(animation(), maxPixels);
    EXPECT_EQ(thumbnail.pixelSize, QSizeF(2, 1));
    EXPECT_TRUE(isRed(pictureOf(thumbnail).pixelColor(0, 0)));
    EXPECT_TRUE(isRed(pictureOf(thumbnail).pixelColor(1, 0)));
}

TEST(Thumbnail, ImageBombsGiveTheirSizeOnly)
{
    QByteArray jpeg = encoded(filledImage(16, 16, Qt::red), "JPEG");
    const auto frame = jpeg.indexOf("\xFF\xC0"); // length, precision, height, width
    ASSERT_GT(frame, 0);
    qToBigEndian<quint16>(60000, jpeg.data() + frame + 5);
    qToBigEndian<quint16>(60000, jpeg.data() + frame + 7);
    for (const auto &bomb : {pngBomb, jpeg}) {
        const auto thumbnail = makeThumbnail(bomb, maxPixels);
        EXPECT_EQ(thumbnail.pixelSize, QSizeF(60000, 60000));
        EXPECT_FALSE(thumbnail.png);
        EXPECT_TRUE(decodedPicture(bomb, 4096).isNull());
    }
}

TEST(Thumbnail, AJpegOfEndlessPassesIsNotRead)
{
    const QByteArray jpeg = encoded(twoHalves(400, 300), "JPEG");
    ASSERT_TRUE(makeThumbnail(jpeg, maxPixels).png);
    const auto scan = jpeg.indexOf("\xFF\xDA");
    QByteArray endless = jpeg.left(scan);
    for (int pass = 0; pass < 500; ++pass)
        endless += jpeg.mid(scan);
    EXPECT_EQ(makeThumbnail(endless, maxPixels).pixelSize, QSizeF(400, 300));
    EXPECT_FALSE(makeThumbnail(endless, maxPixels).png);
}

TEST(Thumbnail, DamagedFilesGiveWhatCanBeKnown)
{
    for (const QByteArray &junk : {QByteArray(), QByteArray("no picture"), QByteArray(1000, '\xFF')}) {
        EXPECT_EQ(makeThumbnail(junk, maxPixels).pixelSize, QSizeF(0, 0));
        EXPECT_FALSE(makeThumbnail(junk, maxPixels).png);
    }
    const auto half = [](const QByteArray &bytes) { return bytes.left(bytes.size() / 2); };
    const auto png = makeThumbnail(half(encoded(twoHalves(640, 480), "PNG")), maxPixels);
    EXPECT_EQ(png.pixelSize, QSizeF(640, 480));
    EXPECT_FALSE(png.png);
    const auto jpeg = makeThumbnail(half(encoded(twoHalves(640, 480), "JPEG")), maxPixels);
    EXPECT_EQ(jpeg.pixelSize, QSizeF(640, 480));
    EXPECT_TRUE(isRed(pictureOf(jpeg).pixelColor(20, 20)));
}

TEST(Thumbnail, EveryCutOfAFileIsSurvived)
{
    const QImage image = twoHalves(40, 30);
    std::vector<QByteArray> files{animation()};
    for (const char *format : {"PNG", "JPEG", "TIFF", "WEBP", "BMP"})
        files.push_back(encoded(image, format));
    for (const auto &whole : files) {
        const auto known = makeThumbnail(whole, maxPixels).pixelSize;
        ASSERT_NE(known, QSizeF(0, 0));
        for (qsizetype length = 0; length < whole.size(); length += 1 + whole.size() / 60) {
            const auto size = makeThumbnail(whole.left(length), maxPixels).pixelSize;
            EXPECT_TRUE(size == known || size == QSizeF(0, 0)) << "cut at " << length;
        }
    }
}

TEST(Thumbnail, DrawingsAreNoPictures)
{
    const QByteArray svg = R"(<svg xmlns="http://www.w3.org/2000/svg" width="10" height="10"><rect/></svg>)";
    EXPECT_EQ(makeThumbnail(svg, maxPixels).pixelSize, QSizeF(0, 0));
    EXPECT_FALSE(makeThumbnail(svg, maxPixels).png);
    EXPECT_TRUE(decodedPicture(svg, 4096).isNull());
}

TEST(Thumbnail, NothingButPixelsGetsThrough)
{
    QImage image = filledImage(300, 300, QColor(200, 100, 50));
    image.setText(u"Comment"_qs, QString(100000, u'x'));
    image.setColorSpace(QColorSpace(QColorSpace::AdobeRgb));
    const auto thumbnail = makeThumbnail(encoded(image, "PNG"), maxPixels);
    const QImage picture = pictureOf(thumbnail);
    EXPECT_TRUE(picture.textKeys().isEmpty());
    EXPECT_LT(thumbnail.png->size(), 5000);
    EXPECT_GT(picture.pixelColor(10, 10).red(), 210); // the same colour, in sRGB
}

} // namespace
