// The recognition process itself, on files as they come.

#include "Platform/linux/tesseract/ProcessRecognition.h"
#include "Vesmo/TextRecognizer.h"
#include "tests/capture/SamplePictures.h"
#include "tests/support/LogLines.h"
#include "tests/support/Variable.h"

#include <QFile>
#include <QPainter>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

// Dark text on a light window, its last line apart.
QImage screenshot()
{
    constexpr int pixels = 16;
    QImage image(30 * pixels, 14 * pixels, QImage::Format_RGB32);
    image.fill(0xfff4f4f4);
    QPainter painter(&image);
    QFont font(u"DejaVu Sans"_s);
    font.setPixelSize(pixels);
    painter.setFont(font);
    painter.setPen(Qt::black);
    painter.drawText(QPointF(pixels, 2 * pixels), u"Perché la città è così"_s);
    painter.drawText(QPointF(pixels, 3.5 * pixels), u"secondo rigo del testo"_s);
    painter.drawText(QPointF(pixels, 5 * pixels), u"terzo rigo del testo"_s);
    painter.drawText(QPointF(pixels, 11 * pixels), u"Cordiali saluti"_s);
    return image;
}

const QString wholeText =
    u"Perché la città è così\nsecondo rigo del testo\nterzo rigo del testo\n\nCordiali saluti"_s;

class RealRecognitionTest : public ::testing::Test {
protected:
    std::optional<QString> text(const QByteArray &image) { return TextRecognizer::text(image, service); }

    const Variable language{"LANGUAGE", "it"};
    ProcessRecognition service{ProcessRecognition::Settings()};
};

TEST_F(RealRecognitionTest, EveryFormatReadsTheSame)
{
    const QImage image = screenshot();
    EXPECT_EQ(text(encoded(image, "PNG")), wholeText);
    EXPECT_EQ(text(encoded(image, "TIFF")), wholeText);
    EXPECT_EQ(text(jpegWithOrientation(image.transformed(QTransform().rotate(-90)), 6)), wholeText);
    EXPECT_EQ(text(heicOf(image, 1)), wholeText);
}

TEST_F(RealRecognitionTest, WhatIsNoWholeImageHasNoTextAndTheNextOneIsRead)
{
    const QByteArray png = encoded(screenshot(), "PNG");
    const QByteArray jpeg = encoded(screenshot(), "JPEG");
    EXPECT_EQ(text("no image"), std::nullopt);
    EXPECT_EQ(text(png.left(png.size() / 2)), std::nullopt);
    EXPECT_EQ(text(pngBomb), std::nullopt);
    EXPECT_EQ(text(encoded(filledImage(300, 200, Qt::white), "PNG")), u"");
    EXPECT_EQ(text(encoded(filledImage(1, 1, Qt::black), "PNG")), u"");
    const auto half = text(jpeg.left(jpeg.size() / 2));
    ASSERT_TRUE(half);
    EXPECT_TRUE(half->startsWith(u"Perché la città è così"));
    EXPECT_EQ(text(png), wholeText);
}

TEST_F(RealRecognitionTest, DamagedLanguageDataIsLeftOutAndTheOthersRead)
{
    QTemporaryDir folder;
    const QString data = defaultDataFolder() + u'/';
    QFile whole(data + u"eng.traineddata");
    ASSERT_TRUE(whole.open(QIODevice::ReadOnly));
    QByteArray bytes = whole.readAll();
    bytes.replace(2000, 100000, QByteArray(100000, '\x7F')); // inside the network
    QFile damaged(folder.filePath(u"eng.traineddata"_s));
    ASSERT_TRUE(damaged.open(QIODevice::WriteOnly) && damaged.write(bytes) == bytes.size());
    damaged.close();
    ASSERT_TRUE(QFile::link(data + u"ita.traineddata", folder.filePath(u"ita.traineddata"_s)));
    const LogLines log;
    ProcessRecognition half({ProcessRecognition::defaultProgram(), folder.path(), std::chrono::seconds(20),
                             std::chrono::minutes(1)});
    EXPECT_EQ(TextRecognizer::text(encoded(screenshot(), "PNG"), half), wholeText);
    EXPECT_EQ(half.supportedLanguages(), QStringList(u"it"_s));
    EXPECT_EQ(log.count(), 1) << log.text();
}

} // namespace
