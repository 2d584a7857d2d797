#include "tests/store/ScratchHistory.h"

#include <QBuffer>
#include <gtest/gtest.h>

TEST(Clip, LongTextIsShortenedInTheListAndWholeInTheFormats)
{
    ScratchHistory history;
    const QString text = QStringLiteral("0123456789").repeated(30000);
    const auto clip = history.add(text);
    EXPECT_EQ(clip->text.size(), 200000);
    EXPECT_EQ(clip->fullText(*history.store), text);
    EXPECT_EQ(dataOfType(history.store->formats(*clip), u"public.utf8-plain-text"), text.toUtf8());
    history.reopen();
    EXPECT_EQ(history.store->clips().front()->text.size(), 200000);
    EXPECT_EQ(history.store->clips().front()->fullText(*history.store), text);
}

TEST(Clip, TextIsShortenedAtACharacterNotInOne)
{
    const QString family = QStringLiteral("👨‍👩‍👧");
    const QString shortened = shortenedText(family.repeated(200001));
    EXPECT_EQ(shortened.size(), family.size() * 200000);
    EXPECT_EQ(shortenedText(QStringLiteral("breve")), QStringLiteral("breve"));
}

TEST(Clip, ShortTextIsReturnedWithoutReadingFormats)
{
    ScratchHistory history;
    auto capture = ScratchHistory::textCapture(QString(199999, QLatin1Char('a')));
    capture.formats.front().data = "something else";
    EXPECT_EQ(history.add(capture)->fullText(*history.store), capture.text);
}

TEST(Clip, LongTextStaysShortWhereTheFormatIsMissingOrNoUTF8)
{
    ScratchHistory history;
    auto broken = ScratchHistory::textCapture(QString(250000, QLatin1Char('a')));
    broken.formats.front().data = QByteArray(250000, '\xE8');
    EXPECT_EQ(history.add(broken)->fullText(*history.store)->size(), 200000);
    auto cut = ScratchHistory::textCapture(QString(250000, QLatin1Char('c')));
    cut.formats.front().data += "\xE2\x82"; // the beginning of a euro sign
    EXPECT_EQ(history.add(cut)->fullText(*history.store)->size(), 200000);
    auto other = ScratchHistory::textCapture(QString(250000, QLatin1Char('b')));
    other.formats.front().type = QStringLiteral("public.rtf");
    EXPECT_EQ(history.add(other)->fullText(*history.store)->size(), 200000);
}

TEST(Clip, AnImageHasTheTextThatWasRecognised)
{
    ScratchHistory history;
    const auto clip = history.add(ScratchHistory::imageCapture("png"));
    EXPECT_EQ(clip->fullText(*history.store), std::nullopt);
    history.store->setRecognizedText(QStringLiteral("Totale 12,40"), clip);
    EXPECT_EQ(clip->fullText(*history.store), QStringLiteral("Totale 12,40"));
}

TEST(Clip, HashIsOfTheWholeInput)
{
    EXPECT_EQ(contentHash(QByteArray()),
              QStringLiteral("e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855"));
    EXPECT_EQ(contentHash(QStringLiteral("è")), contentHash(QByteArray("\xC3\xA8")));
}

TEST(Clip, ImageDataFollowsTheOrderOfTypesNotOfFormats)
{
    const std::vector<ClipFormat> formats = {{0, QStringLiteral("public.tiff"), "tiff"},
                                             {0, QStringLiteral("public.png"), "png"},
                                             {1, QStringLiteral("public.png"), "second"}};
    EXPECT_EQ(imageDataOf(formats), QByteArray("png"));
    EXPECT_EQ(imageDataOf({{0, QStringLiteral("public.html"), "x"}}), std::nullopt);
    EXPECT_EQ(totalSize(formats), 13);
}

TEST(Clip, ThumbnailIsDecodedOnceAndItsFailureKept)
{
    Clip clip;
    EXPECT_TRUE(clip.thumbnail().isNull());
    Clip broken;
    broken.thumbData = QByteArray("no picture");
    EXPECT_TRUE(broken.thumbnail().isNull());

    QImage image(3, 2, QImage::Format_RGB32);
    image.fill(Qt::red);
    QBuffer png;
    png.open(QIODevice::WriteOnly);
    image.save(&png, "PNG");
    Clip good;
    good.thumbData = png.data();
    EXPECT_EQ(good.thumbnail().size(), QSize(3, 2));
    good.thumbData.reset();
    EXPECT_EQ(good.thumbnail().size(), QSize(3, 2));
}

TEST(Clip, KindsOutsideTheListAreNone)
{
    EXPECT_EQ(clipKind(3), ClipKind::files);
    EXPECT_EQ(clipKind(4), std::nullopt);
    EXPECT_EQ(clipKind(-1), std::nullopt);
    EXPECT_EQ(clipKind(qint64{1} << 32), std::nullopt);
}
