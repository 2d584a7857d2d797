#include "Norvane/ClipTitles.h"

#include "Norvane/store/ClipStore.h"
#include "Vesmo/Text.h"

#include <QDateTime>
#include <gtest/gtest.h>

namespace {

Clip clipOf(const QString &text, ClipKind kind = ClipKind::text)
{
    Clip clip;
    clip.text = text;
    clip.kind = kind;
    return clip;
}

Clip imageClip(std::optional<QString> recognized)
{
    Clip clip = clipOf({}, ClipKind::image);
    clip.pixelSize = {560.9, 200};
    clip.size = 1234567;
    clip.recognizedText = std::move(recognized);
    return clip;
}

const QString family = "👨‍👩‍👧‍👦"; // one character of several code points

} // namespace

TEST(ClipTitlesTest, TitleIsOneLineOfTheContentCutBetweenCharacters)
{
    const struct {
        Clip clip;
        QString title;
    } cases[] = {
        {clipOf("\n\n\n  primo\nsecondo"), "primo ⏎ secondo"},
        {clipOf("a\tb"), "a  b"},
        {clipOf("a\r\n\r\nb\u2028c"), "a ⏎ b ⏎ c"},
        {clipOf("<b>a_b & c</b>\n"), "<b>a_b & c</b>"},
        {clipOf(" \n\t "), ""},
        {clipOf("/etc/hosts", ClipKind::files), "hosts"},
        {clipOf("/home/u/cartella/", ClipKind::files), "cartella"},
        {clipOf("/a/1\n/a/2\n/a/3\n/a/4\n/a/5", ClipKind::files), "5 file: 1, 2, 3, 4"},
        {clipOf("/a/two\nlines.txt", ClipKind::files), "two ⏎ lines.txt"},
        {clipOf("/a/1\n/a/two\n\nlines\n/a/3", ClipKind::files), "3 file: 1, two ⏎ lines, 3"},
        {imageClip(std::nullopt), "Immagine 560×200"},
        {imageClip(QString()), "Immagine 560×200"},
        {imageClip("Fattura n. 118\ndel 21/09/2026"), "Fattura n. 118 ⏎ del 21/09/2026"},
        {clipOf(QString(240, u'x')), QString(240, u'x')},
        {clipOf(QString(600, u'x')), QString(240, u'x') + "…"},
        {clipOf(family.repeated(300)), family.repeated(240) + "…"},
    };
    for (const auto &[clip, title] : cases)
        EXPECT_EQ(titleText(clip, 240), title) << title.toStdString();
}

TEST(ClipTitlesTest, EndlessMarksAreCutSinceDrawingThemTakesSeconds)
{
    const QString marks = "/a" + QString(1'000'000, QChar(0x301));
    for (const auto kind : {ClipKind::text, ClipKind::files})
        EXPECT_LT(titleText(clipOf(marks, kind), 240).size(), 10000);
}

TEST(ClipTitlesTest, DetailNamesApplicationAgeAndMeasure)
{
    Clip clip = clipOf("caffè 👍🏽");
    clip.created = secondsSinceReferenceDate() - 10;
    EXPECT_EQ(detailText(clip), "adesso · 7 caratteri");
    clip.appName = "Editor";
    EXPECT_EQ(detailText(clip), "Editor · adesso · 7 caratteri");

    Clip image = imageClip(std::nullopt);
    image.created = secondsSinceReferenceDate() + 1000;
    EXPECT_TRUE(detailText(image).startsWith("adesso · 1")) << detailText(image).toStdString();
    image.recognizedText = "testo";
    EXPECT_EQ(detailText(image), "adesso · Immagine 560×200");
}

TEST(ClipTitlesTest, AgeIsTheLargestUnitThatHasPassed)
{
    // Far enough before the next step: the clock goes on meanwhile.
    const std::pair<double, const char *> cases[] = {
        {-3600, "adesso"}, {10, "adesso"},         {50.5, "5"},        {90, "1"},
        {120.5, "2"},      {3 * 3600 + 3500, "3"}, {86400 * 6.9, "6"}, {86400 * 21.5, "3"},
    };
    for (const auto &[seconds, part] : cases) {
        const QString age = relativeTime(secondsSinceReferenceDate() - seconds);
        EXPECT_TRUE(age.contains(part)) << seconds << " s: " << age.toStdString();
    }
    EXPECT_NE(relativeTime(secondsSinceReferenceDate() - 120.5),
              relativeTime(secondsSinceReferenceDate() - 7200.5));
}

TEST(ClipTitlesTest, DatesAreWrittenInTheApplicationsLanguage)
{
    const QDateTime reference(QDate(2001, 1, 1), QTime(0, 0), Qt::UTC);
    const QDateTime date(QDate(2024, 3, 5), QTime(14, 7, 31));
    EXPECT_EQ(dateText(static_cast<double>(reference.secsTo(date))), "5 mar 2024, 14:07");
}

TEST(ClipTitlesTest, SizesStepUpWhereRoundingWould)
{
    const std::pair<qint64, const char *> cases[] = {{1, "1 byte"},   {999, "999 byte"},
                                                     {1000, "1 kB"},  {999499, "999 kB"},
                                                     {999500, " MB"}, {1'234'567'890, " GB"}};
    for (const auto &[bytes, text] : cases)
        EXPECT_TRUE(byteCountText(bytes).endsWith(text)) << bytes; // the decimal sign is the region's
}
