#include "Norvane/ClipTitles.h"

#include "Norvane/store/ClipStore.h"
#include "Vesmo/Text.h"

#include <QDateTime>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

Clip textClip(const QString &text)
{
    Clip clip;
    clip.text = text;
    return clip;
}

Clip filesClip(const QString &paths)
{
    Clip clip = textClip(paths);
    clip.kind = ClipKind::files;
    return clip;
}

Clip imageClip(std::optional<QString> recognized)
{
    Clip clip;
    clip.kind = ClipKind::image;
    clip.pixelSize = {560.9, 200};
    clip.size = 1234567;
    clip.recognizedText = std::move(recognized);
    return clip;
}

} // namespace

TEST(ClipTitlesTest, TitleIsOneLineOfTheContent)
{
    struct Case {
        Clip clip;
        const char16_t *title;
    };
    const std::vector<Case> cases = {
        {textClip(u"\n\n\n  primo\nsecondo"_s), u"primo ⏎ secondo"},
        {textClip(u"a\tb"_s), u"a  b"},
        {textClip(u"a\r\n\r\nb\u2028c"_s), u"a ⏎ b ⏎ c"},
        {textClip(u" \n\t "_s), u""},
        {filesClip(u"/etc/hosts"_s), u"hosts"},
        {filesClip(u"/home/u/cartella/"_s), u"cartella"},
        {filesClip(u"/a/1\n/a/2\n/a/3\n/a/4\n/a/5"_s), u"5 file: 1, 2, 3, 4"},
        {filesClip(u"/a/two\nlines.txt"_s), u"two ⏎ lines.txt"},
        {filesClip(u"/a/1\n/a/two\n\nlines\n/a/3"_s), u"3 file: 1, two ⏎ lines, 3"},
        {imageClip(std::nullopt), u"Immagine 560×200"},
        {imageClip(QString()), u"Immagine 560×200"},
        {imageClip(u"Fattura n. 118\ndel 21/09/2026"_s), u"Fattura n. 118 ⏎ del 21/09/2026"},
    };
    for (const auto &c : cases)
        EXPECT_EQ(titleText(c.clip, listTitleLength), QString::fromUtf16(c.title));
}

TEST(ClipTitlesTest, LongTitlesAreCutBetweenCharacters)
{
    EXPECT_EQ(titleText(textClip(QString(600, u'x')), 240), QString(240, u'x') + u'…');
    EXPECT_EQ(titleText(textClip(QString(240, u'x')), 240), QString(240, u'x'));
    const QString families = u"👨‍👩‍👧‍👦"_s.repeated(300);
    EXPECT_EQ(clusterCount(titleText(textClip(families), 240)), 241);
}

TEST(ClipTitlesTest, EndlessMarksAreCutSinceDrawingThemTakesSeconds)
{
    Clip clip;
    clip.text = QString(u'a') + QString(1'000'000, QChar(0x301));
    EXPECT_LT(titleText(clip, 240).size(), 10000);
    clip.kind = ClipKind::files;
    clip.text.prepend(u'/');
    EXPECT_LT(titleText(clip, 240).size(), 10000);
}

TEST(ClipTitlesTest, DetailNamesApplicationAgeAndMeasure)
{
    Clip clip = textClip(u"caffè 👍🏽"_s);
    clip.created = secondsSinceReferenceDate() - 10;
    EXPECT_EQ(detailText(clip), u"adesso · 7 caratteri"_s);
    clip.appName = u"Editor"_s;
    EXPECT_EQ(detailText(clip), u"Editor · adesso · 7 caratteri"_s);

    Clip image = imageClip(std::nullopt);
    image.created = secondsSinceReferenceDate() + 1000;
    EXPECT_TRUE(detailText(image).startsWith(u"adesso · 1")) << detailText(image).toStdString();
    image.recognizedText = u"testo"_s;
    EXPECT_EQ(detailText(image), u"adesso · Immagine 560×200"_s);
}

TEST(ClipTitlesTest, AgeIsTheLargestUnitThatHasPassed)
{
    const auto ago = [](double seconds) { return relativeTime(secondsSinceReferenceDate() - seconds); };
    EXPECT_EQ(ago(44), u"adesso"_s);
    EXPECT_EQ(ago(-3600), u"adesso"_s);
    for (const auto &[seconds, number] : std::vector<std::pair<double, const char *>>{{50.5, "50"},
                                                                                      {119, "1"},
                                                                                      {120.5, "2"},
                                                                                      {3 * 3600 + 3599, "3"},
                                                                                      {86400 * 6.9, "6"},
                                                                                      {86400 * 21.5, "3"}}) {
        EXPECT_TRUE(ago(seconds).contains(QLatin1StringView(number)))
            << seconds << " s: " << ago(seconds).toStdString();
    }
    EXPECT_NE(ago(120.5), ago(2.5 * 3600));
}

TEST(ClipTitlesTest, DatesAreWrittenInTheApplicationsLanguage)
{
    const QDateTime reference(QDate(2001, 1, 1), QTime(0, 0), Qt::UTC);
    const QDateTime date(QDate(2024, 3, 5), QTime(14, 7, 31));
    EXPECT_EQ(dateText(static_cast<double>(reference.secsTo(date))), u"5 mar 2024, 14:07"_s);
}

TEST(ClipTitlesTest, SizesStepUpWhereRoundingWould)
{
    EXPECT_EQ(byteCountText(1), u"1 byte"_s);
    EXPECT_EQ(byteCountText(999), u"999 byte"_s);
    EXPECT_EQ(byteCountText(1000), u"1 kB"_s);
    EXPECT_EQ(byteCountText(999499), u"999 kB"_s);
    EXPECT_TRUE(byteCountText(999500).endsWith(u"MB"));
    EXPECT_TRUE(byteCountText(1'234'567'890).endsWith(u"GB"));
}
