#include "Vesmo/Text.h"

#include <QRandomGenerator>
#include <QStringList>
#include <gtest/gtest.h>
#include <memory>
#include <unicode/brkiter.h>
#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

namespace {

using namespace Qt::StringLiterals;

// The boundaries by the plain use of the break iterator over the whole text.
std::vector<qsizetype> boundaries(const QString &text)
{
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::BreakIterator> iterator(
        icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
    const icu::UnicodeString whole(text.utf16(), static_cast<int32_t>(text.size()));
    iterator->setText(whole);
    std::vector<qsizetype> found;
    for (int32_t at = iterator->next(); at != icu::BreakIterator::DONE; at = iterator->next())
        found.push_back(at);
    return found;
}

// All that is told of a text's clusters; of a long one at every hundredth length or so.
void checkClusters(const QString &text)
{
    const auto expected = boundaries(text);
    const size_t step = 1 + expected.size() / 100;
    ASSERT_EQ(clusterCount(text), static_cast<qsizetype>(expected.size())) << qPrintable(text);
    for (size_t count = 0; count <= expected.size() + 1; count += step) {
        const qsizetype length = count == 0 ? 0 : expected[std::min(count, expected.size()) - 1];
        ASSERT_EQ(lengthOfClusters(text, static_cast<qsizetype>(count)), length) << qPrintable(text) << count;
    }
    std::vector<qsizetype> read;
    for (ClusterReader reader(text); !reader.atEnd();)
        read.push_back((read.empty() ? 0 : read.back()) + reader.next().size());
    ASSERT_EQ(read, expected) << qPrintable(text);
}

bool dropped(UChar32 c)
{
    if (c == 0x200C || c == 0x200D || c == 0xAD || c == 0x640 || (c >= 0xFE00 && c <= 0xFE0F))
        return true;
    const int ccc = u_getCombiningClass(c);
    return u_charType(c) == U_ENCLOSING_MARK ||
           (u_charType(c) == U_NON_SPACING_MARK &&
            (ccc == 1 || ccc == 7 || (ccc >= 10 && ccc <= 36) || (ccc >= 202 && ccc <= 240)));
}

icu::UnicodeString bare(const icu::UnicodeString &text)
{
    UErrorCode status = U_ZERO_ERROR;
    const auto decomposed = icu::Normalizer2::getNFDInstance(status)->normalize(text, status);
    icu::UnicodeString kept;
    for (int32_t i = 0; i < decomposed.length(); i = decomposed.moveIndex32(i, 1)) {
        if (!dropped(decomposed.char32At(i)))
            kept.append(decomposed.char32At(i));
    }
    return kept;
}

// The rule of folding, step by step over the whole text.
QByteArray keyByRule(const QString &text)
{
    auto folded = bare(icu::UnicodeString(text.utf16(), static_cast<int32_t>(text.size())));
    folded = bare(folded.foldCase(U_FOLD_CASE_DEFAULT).findAndReplace(u"ı", u"i"));
    const char16_t *pairs[][2] = {{u"ø", u"o"}, {u"đ", u"d"},  {u"ł", u"l"}, {u"ħ", u"h"},
                                  {u"ŧ", u"t"}, {u"æ", u"ae"}, {u"œ", u"oe"}};
    for (const auto &pair : pairs)
        folded.findAndReplace(pair[0], pair[1]);
    UErrorCode status = U_ZERO_ERROR;
    std::string utf8;
    icu::Normalizer2::getNFCInstance(status)->normalize(folded, status).toUTF8String(utf8);
    return QByteArray::fromStdString(utf8);
}

// Pieces that join with their neighbours in every way, and plain ones between them.
const QStringList pieces = {
    "a",      "B",      " ",  "\r",     "\n",     "\r\n",   "è",      "e\u0301",
    "\u0301", "\u0323", "ß",  "İ",      "ı",      "ø",      "Æ",      "ﬁ",
    "©",      "®",      "1",  "\u200D", "\uFE0F", "\u20E3", "👨",      "👩",
    "🏽",   "❤",      "🇮",  "🇹",      "🇫",      "\u0600", "ё",      "й",
    "Σ",      "한",     "하", "ᄒ",     "ᅡ",     "ᆫ",     "か",     "が",
    "\u3099", "ク",     "क",  "\u094D", "\u0941", "\u093C", "ष",      "ன",
    "\u0BC6", "\u0BBE", "ก",  "\u0E48", "\u0E38", "م",      "\u064F", "\u0640",
    "א",      "\u05B0", "ΐ",  "\u0345", "α",      "\u0F71", "\u0F72", "Å",
    "K",      "ｶ",      "ﾞ",  "Ａ",     "你",     "𝒜",      "\u115F", "hello world, this is plain",
    "\u1B05", "\u1B35",
};

QString randomText(QRandomGenerator &random, int length)
{
    QString text;
    for (int i = 0; i < length; ++i)
        text += pieces[random.bounded(static_cast<int>(pieces.size()))];
    if (random.bounded(20) == 0)
        text += QChar(0xD800 + random.bounded(0x800)); // half a pair
    return text;
}

bool contains(const QString &text, const QString &word)
{
    return indexOfKey(foldedKey(text), foldedKey(word)) >= 0;
}

void expectSearches(const QStringList &searches, bool found)
{
    for (const QString &each : searches)
        EXPECT_EQ(contains(each.section(u" ~ "_s, 0, 0), each.section(u" ~ "_s, 1)), found)
            << qPrintable(each);
}

} // namespace

TEST(Clusters, AreCountedAsReadersSeeThem)
{
    const std::pair<qsizetype, QStringList> cases[] = {
        {0, {""}},
        {1, {"\r\n", "👨‍👩‍👧", "1️⃣", "©\u200D®", "\u06001", "क्ष"}},
        {2, {"\n\r", "👍🏽!", "🇮🇹🇫🇷", "🇮🇹🇫", "한글", "\r\u0301"}},
        {3, {"x\u0301\r\n\u0301"}},
        {4, {"a\r\nb\r\n"}},
        {5, {"caffè", "caffe\u0300"}},
    };
    for (const auto &[count, texts] : cases) {
        for (const QString &text : texts)
            EXPECT_EQ(clusterCount(text), count) << qPrintable(text);
    }
}

TEST(Clusters, EqualThoseOfTheWholeTextAtEveryLength)
{
    QRandomGenerator random(11);
    for (int round = 0; round < 3000; ++round)
        ASSERT_NO_FATAL_FAILURE(checkClusters(randomText(random, random.bounded(1, 60))));
}

// Long stretches are cut into pieces on the way; line ends and pairs lie across the cuts.
TEST(Clusters, EqualThoseOfTheWholeTextAcrossBlocks)
{
    QRandomGenerator random(12);
    const QString units[] = {
        "x", "\r\n", "й", "й ", "👍🏽", "🇮🇹", "e\u0301\u0301\u0301", "👨‍👩‍👧", "\r"};
    for (const QString &unit : units) {
        for (int shift = 0; shift < 6; ++shift) {
            QString text = QString(shift, u'.') + unit.repeated(9000 / static_cast<int>(unit.size()));
            text.insert(random.bounded(static_cast<int>(text.size())), QStringLiteral("z\r\n"));
            ASSERT_NO_FATAL_FAILURE(checkClusters(text));
        }
    }
    const QString marks = "a" + QString(100000, QChar(0x301)) + "b";
    ASSERT_NO_FATAL_FAILURE(checkClusters(marks));
}

TEST(Clusters, AreLettersOrNumbersByWhatReadersSee)
{
    const auto kind = [](QStringView cluster) {
        std::string found;
        found += isLetter(cluster) ? "letter " : "";
        found += isNumber(cluster) ? "number " : "";
        found += isUppercase(cluster) ? "upper " : "";
        found += isLowercase(cluster) ? "lower " : "";
        return found;
    };
    const std::pair<const char *, QStringList> cases[] = {
        {"letter lower ", {"a", "\u200Db"}},
        {"letter upper ", {"E\u0301"}},
        {"letter ", {"ǅ", "中"}},
        {"number ", {"½", "1️⃣"}},
        {"letter number upper ", {"Ⅳ"}},
        {"", {"🇮🇹", "\u0301", "_", "\r\n", QChar(0xD83D)}},
    };
    for (const auto &[wanted, clusters] : cases) {
        for (const QString &cluster : clusters)
            EXPECT_EQ(kind(cluster), wanted) << qPrintable(cluster);
    }
}

// A word is lowered as a whole and then cut behind its first character, which must have stayed one.
TEST(LetterCase, EveryLetterCanBeTheFirstOfACapitalizedWord)
{
    for (char32_t c = 1; c < 0x110000; ++c) {
        const QString letter = QChar::isSurrogate(c) ? QString() : QString::fromUcs4(&c, 1);
        if (letter.isEmpty() || lowercased(letter) == letter)
            continue;
        const QString word = letter + u"\u0301Q";
        ASSERT_EQ(capitalizedWord(word), uppercased(word.chopped(1)) + u'q')
            << std::hex << static_cast<uint32_t>(c);
    }
}

// "text ~ word": the word is found in the text, or it is not.
TEST(FoldedKey, FindsWhatReadersTakeForTheSame)
{
    const auto found =
        QString("CAFÉ ~ cafe, cafe ~ café, e\u0301 ~ \u00E9, \u00E9 ~ e\u0301, Straße ~ strasse, "
                "STRASSE ~ straße, ẞ ~ ss, Ærø ~ aero, smørrebrød ~ smorrebrod, Đorđe ~ dorde, "
                "Łódź ~ lodz, İstanbul ~ istanbul, ISTANBUL ~ ıstanbul, ılık ~ ilik, ﬁne ~ fine, "
                "한글 ~ 한글, \u1112\u1161\u11AB ~ 한, か\u3099 ~ が, مُحَمَّد ~ محمد, أحمد ~ احمد, "
                "محـــمد ~ محمد, שָׁלוֹם ~ שלום, क़ ~ क, कु ~ क, ё ~ е, й ~ и, Ελλάς ~ ελλασ, "
                "ΣΊΣΥΦΟΣ ~ σισυφος, ệ ~ e, Ñandú ~ nandu, ångström ~ angstrom, \u212A ~ k, µ ~ μ, "
                "ᾳ ~ α, ❤️ ~ ❤, 1️⃣ ~ 1, 👨‍👩‍👧 ~ 👩, "
                "Perché il caffè è buono ~ perche, "
                "Perché il caffè è buono ~ CAFFE")
            .split(u", "_s);
    expectSearches(found, true);
    // Widths of Japanese, marks that make another letter, signs that only resemble one.
    const QStringList other = {"ＡＢＣ ~ abc", "ｶﾞ ~ ガ", "ﾃｽﾄ ~ テスト", "한 ~ 하",     "が ~ か", "ぱ ~ は",
                               "ガ ~ か",      "क ~ कु",   "क्ष ~ कष",      "² ~ 2",       "№ ~ no",  "ǆ ~ dz",
                               "ĳ ~ ij",       "þ ~ th",  "ð ~ d",        "1.240 ~ 1240"};
    expectSearches(other, false);
}

TEST(FoldedKey, AWordNeverBeginsInTheMiddleOfACharacter)
{
    expectSearches({"🇮🇹🇫🇷 ~ 🇫🇷", "x🇮🇹🇫🇷 ~ 🇫🇷", "🇹🇫🇮🇹🇹🇫 ~ 🇹🇫", "👍🏽 ~ 👍", "a\n ~ \n",
                    "🏽 🏽 ~ 🏽", "कष ~ ष", "த்ச ~ ச"},
                   true);
    expectSearches(
        {"🇮🇹🇫🇷 ~ 🇹🇫", "🇮🇹🇮🇹🇮🇹 ~ 🇹🇮", "कु ~ \u0941", "👍🏽 ~ 🏽", "하ᇹ ~ ᇹ", "\r\n ~ \n", "क्ष ~ ष"},
        false);
}

TEST(FoldedKey, EqualsTheRuleOnEveryCodePoint)
{
    for (char32_t c = 1; c < 0x110000; ++c) {
        if (QChar::isSurrogate(c))
            continue;
        const QString text = QString::fromUcs4(&c, 1);
        ASSERT_EQ(foldedKey(text), keyByRule(text)) << std::hex << static_cast<uint32_t>(c);
    }
}

TEST(FoldedKey, EqualsTheRuleOnMixedTexts)
{
    QRandomGenerator random(13);
    for (int round = 0; round < 20000; ++round) {
        QString text = randomText(random, random.bounded(1, 40));
        if (text.back().isSurrogate())
            text += u'x';
        text = QString::fromUcs4(reinterpret_cast<const char32_t *>(text.toUcs4().constData()),
                                 text.toUcs4().size());
        if (text.contains(QChar::ReplacementCharacter))
            continue;
        ASSERT_EQ(foldedKey(text), keyByRule(text)) << qPrintable(text);
    }
}

TEST(FoldedKey, HoldsNoSeparatorWhateverTheText)
{
    QRandomGenerator random(14);
    QString text;
    for (int i = 0; i < 50000; ++i)
        text += QChar(
            static_cast<char16_t>(random.bounded(0x10000))); // lone halves and non-characters among them
    const QByteArray key = foldedKey(text);
    EXPECT_TRUE(foldedKey(u"\u0301\u200D").isEmpty()) << "marks alone";
    EXPECT_FALSE(key.contains(keySeparator));
    EXPECT_TRUE(key.isValidUtf8());
}

// Sorting marks, or pairing the halves of flags, takes the square of their number unless it is bounded.
TEST(FoldedKey, TakesHostileTextsInLinearTime)
{
    const QString thai = "a" + QStringLiteral("\u0E48\u0E38").repeated(500000);
    const QString accents = QString(300000, QChar(0x301)) + QChar(0x94D);
    const QString joiners = "a" + accents + accents + accents;
    const QString flags = QStringLiteral("🇮🇹").repeated(200000);
    EXPECT_FALSE(foldedKey(thai).isEmpty());
    EXPECT_EQ(foldedKey(joiners), foldedKey(u"a\u094D\u094D\u094D"));
    EXPECT_FALSE(contains(flags, "🇹🇮"));
}

TEST(IndexOfKey, GoesOnFromAPositionAndStopsAtSeparators)
{
    const QByteArray keys = "uno" + QByteArray(1, keySeparator) + "due uno";
    EXPECT_EQ(indexOfKey(keys, "uno"), 0);
    EXPECT_EQ(indexOfKey(keys, "uno", 1), 8);
    EXPECT_EQ(indexOfKey(keys, "uno", 9), -1);
    EXPECT_EQ(indexOfKey(keys, "unodue"), -1);
    EXPECT_EQ(indexOfKey(keys, "", 3), 3);
}
