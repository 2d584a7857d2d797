#include "Vesmo/Localisation.h"

#include "tests/support/Variable.h"

#include <gtest/gtest.h>
#include <thread>
#include <vector>

namespace {

class LocalisationTest : public ::testing::Test {
protected:
    void SetUp() override { loadTranslations(QStringLiteral("none")); }
};

TEST_F(LocalisationTest, APhraseWithoutTranslationShowsItselfWithoutItsSuffix)
{
    EXPECT_EQ(L("Svuota"), u"Svuota");
    EXPECT_EQ(L("Annulla##undo"), u"Annulla");
    EXPECT_EQ(L("uno##due##tre"), u"uno");
    EXPECT_EQ(L("# 1 #"), u"# 1 #");
    EXPECT_EQ(localizedString(QStringLiteral("senza tabella##mai")), u"senza tabella");
}

TEST_F(LocalisationTest, ValuesOfEveryOrdinaryTypeTakeThePlaceOfPlaceholders)
{
    const std::string bytes = "perché";
    EXPECT_EQ(L("%@ di %@", 500, Q_INT64_C(-9007199254740993)), u"500 di -9007199254740993");
    EXPECT_EQ(L("%@%@%@", QStringLiteral("à"), QLatin1String("b"), QStringView(u"c")), u"àbc");
    EXPECT_EQ(L("%@ %@ %@", bytes, std::string_view(bytes), "già"), u"perché perché già");
    EXPECT_EQ(L("%@ %@ %@ %@", true, 2.0, 0.1, 1e300), u"true 2.0 0.1 1e+300");
    EXPECT_EQ(L("%@%@%@", 'a', u'é', QChar(u'z')), u"aéz");
    EXPECT_EQ(L("%@ %@ %@ %@ %@ %@ %@ %@ %@ %@ %@", 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11),
              u"1 2 3 4 5 6 7 8 9 10 11");
}

TEST_F(LocalisationTest, AValueIsNeverSearchedForPlaceholdersAndAPercentSignPrintsOnce)
{
    EXPECT_EQ(L("%@ di %@", "%@ 100%% ##", 2), u"%@ 100%% ## di 2");
    EXPECT_EQ(L("al 100%"), u"al 100%");
    EXPECT_EQ(L("al %@%% di %@", 5, "%"), u"al 5% di %");
}

TEST_F(LocalisationTest, AnInterpolationDoublesLiteralPercentsInItsKey)
{
    LocalizedText::Interpolation builder(39, 1);
    builder.appendLiteral(u"Dimensione massima di un elemento: ");
    builder.appendInterpolation(32);
    builder.appendLiteral(u" MB, 50% %@");
    const LocalizedText text(builder);
    EXPECT_EQ(text.key(), u"Dimensione massima di un elemento: %@ MB, 50%% %%@");
    EXPECT_EQ(text.arguments(), QStringList{QStringLiteral("32")});
    EXPECT_EQ(L(text), u"Dimensione massima di un elemento: 32 MB, 50% %@");
    EXPECT_EQ(L(LocalizedText(QStringLiteral("50% di %@"))), u"50% di %@");
}

TEST_F(LocalisationTest, AFormatThatAsksForMoreOrLessThanIsGivenStaysReadable)
{
    EXPECT_EQ(formatted(QStringLiteral("%@ of %@"), {QStringLiteral("1")}), u"1 of %@");
    EXPECT_EQ(formatted(QStringLiteral("some"), {QStringLiteral("1")}), u"some");
    EXPECT_EQ(formatted(QStringLiteral("%d %@ %"), {QStringLiteral("1")}), u"%d 1 %");
}

// What the compiler counts: one placeholder a value.
static_assert(PhraseKey<>::isFormatted("50% di tutto", 0) && PhraseKey<>::isFormatted("%% %@%%", 1));
static_assert(!PhraseKey<>::isFormatted("100%@", 0) && !PhraseKey<>::isFormatted("%@", 2) &&
              !PhraseKey<>::isFormatted("50% di %@", 1) && !PhraseKey<>::isFormatted("%%@", 1));

struct Choice {
    QStringList carried, preferred;
    QString code;
};

TEST(AppLanguageTest, TheCodeIsTheFirstPreferredLanguageThatHasATable)
{
    const QStringList both{"en", "it"};
    const Choice choices[] = {
        {{}, {"en-US", "en"}, "it"},
        {{"Base"}, {"en"}, "it"},
        {both, {"it-IT", "it-Latn-IT", "it"}, "it"},
        {both, {"it-CH", "it-Latn-CH"}, "it"}, // as Swiss Italian comes, without a plain "it"
        {both, {"en-GB", "en-Latn-GB"}, "en"},
        {both, {"de-DE", "de", "it"}, "it"},
        {both, {"de-DE", "de"}, "en"},
        {both, {"C"}, "en"},
        {both, {}, "en"},
        {{"it"}, {"en"}, "en"},
    };
    for (const auto &[carried, preferred, code] : choices)
        EXPECT_EQ(AppLanguage::choose(carried, preferred), code) << preferred.join(u' ').toStdString();
}

TEST(AppLanguageTest, RegionalSettingsAreKeptOnlyInTheInterfacesLanguage)
{
    const char *cases[][3] = {{"en", "en_GB", "en_GB"},
                              {"en", "de_DE", "en_US"},
                              {"en", "C", "en_US"},
                              {"it", "it_CH", "it_CH"},
                              {"it", "en_GB", "it_IT"}};
    for (const auto &[code, current, used] : cases)
        EXPECT_EQ(AppLanguage::localeFor(code, QLocale(current)).name(), used) << code << ' ' << current;
}

TEST(AppLanguageTest, TimesFollowTheirOwnVariableBeforeTheGeneralOne)
{
    const char *cases[][3] = {
        {"", "en_GB.UTF-8@euro", "en_GB"}, {"", "", "en_US"}, {"en_IE.UTF-8", "", "en_IE"}};
    const Variable lang("LANG", "en_US.UTF-8");
    for (const auto &[general, time, used] : cases) {
        const Variable all("LC_ALL", general), own("LC_TIME", time);
        loadTranslations("en");
        EXPECT_EQ(AppLanguage::locale().name(), used);
    }
}

TEST(AppLanguageTest, TheTestsTablesAreCompiledIn)
{
    loadTranslations(QStringLiteral("en"));
    EXPECT_EQ(AppLanguage::code(), u"en");
    EXPECT_FALSE(AppLanguage::isItalian());
    EXPECT_EQ(L("Annulla##undo"), u"Undo");
    EXPECT_EQ(L("Annulla"), u"Cancel");
    EXPECT_EQ(L("%@ di %@", 3, 40), u"3 of 40");
    loadTranslations(QStringLiteral("it"));
    EXPECT_TRUE(AppLanguage::isItalian());
    EXPECT_EQ(L("Annulla##undo"), u"Annulla");
    EXPECT_EQ(localizedString(QStringLiteral("⌥⌘")), u"Ctrl+Alt+");
}

TEST(AppLanguageTest, ManyThreadsLookUpWhileTheTableChanges)
{
    std::vector<std::jthread> readers;
    readers.reserve(4);
    std::atomic<int> wrong = 0;
    for (int reader = 0; reader < 4; ++reader) {
        readers.emplace_back([&wrong] {
            for (int round = 0; round < 2000; ++round) {
                const QString text = L("%@ di %@", round, "x");
                const QString number = QString::number(round);
                if (text != number + u" of x" && text != number + u" di x")
                    ++wrong;
            }
        });
    }
    for (int round = 0; round < 50; ++round)
        loadTranslations(round % 2 ? QStringLiteral("it") : QStringLiteral("en"));
    readers.clear();
    EXPECT_EQ(wrong, 0);
}

} // namespace
