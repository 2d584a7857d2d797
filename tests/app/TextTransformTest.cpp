#include "Norvane/app/TextTransform.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QRandomGenerator>
#include <QStringList>
#include <algorithm>
#include <gtest/gtest.h>

namespace {

using enum TextTransform;

const QString nul = QChar(u'\0');
const QString byteOrderMark = QChar(QChar::ByteOrderMark); // a literal would lose it
const QString half = QChar(0xD83D);                        // of a surrogate pair

TEST(TextTransformTest, ConvertsAsItsNameSays)
{
    const struct {
        TextTransform transform;
        QString text, result;
    } cases[] = {
        {upper, "Straße, ﬁne ΐ i", "STRASSE, FINE \u0399\u0308\u0301 I"},
        {upper, "x" + half + nul, "X" + half + nul},
        {lower, "ΟΔΟΣ ΣΟΦΟΣ. Σ İI", "οδος σοφος. σ i̇i"},
        {capitalized, "ciao  MONDO\tbello\r\nl'altro e-mail 3a", "Ciao  Mondo\tBello\r\nL'altro E-mail 3a"},
        {capitalized, "ΟΔΟΣ ß\u2028e\u0301É\u00A0(x", "Οδος SS\u2028E\u0301é\u00A0(x"},
        {sentence, "CIAO mondo", "Ciao mondo"},
        {sentence, "  12. ÈVVIVA. POI", "  12. Èvviva. poi"},
        {sentence, "1️⃣ e\u0301TÀ", "1️⃣ E\u0301tà"},
        {sentence, "12 + 3!", "12 + 3!"},
        {trimLines, "  a  \n b ", "a\nb"},
        {trimLines, "\t\u3000a b\u00A0\r\n\r\n x", "a b\n\nx"},
        {trimLines, "a \r b \r\r\n", "a \r b \r\n"}, // a lone CR is no line end, but not to be trimmed either
        {trimLines, "  \u0301 \n\u200B a", " \u0301\n\u200B a"}, // a space with an accent; no space at all
        {singleLine, "  uno \n\n due  \r\n tre ", "uno due tre"},
        {singleLine, "a  b\n \t\n\u2003", "a  b"},
        {removeEmptyLines, "a\n\n  \nb", "a\nb"},
        {removeEmptyLines, "\r\n  a \r\n\t\r\n b", "  a \n b"},
        {camel, "ciao mondo bello", "ciaoMondoBello"},
        {camel, "XMLParser già-FATTO", "xmlparserGiàFatto"},
        {camel, "--", "--"},
        {camel, "é𝐁 ΟΔΟΣ", "é𝐁Οδος"},
        {snake, "fooBar Baz", "foo_bar_baz"},
        {snake, "a1B foo--bar e\u0301X ½Ⅳ", "a1b_foo_bar_e\u0301_x_½ⅳ"},
        {snake, "--", ""},
        {kebab, "Ciao Mondo", "ciao-mondo"},
        {kebab, " 🇮🇹 👍🏽1️⃣, ", "1️⃣"},
        {kebab, "--", ""},
        {quoted, "a\"b\nc", R"("a\"b\nc")"},
        {quoted, "/è\\\r\t\b\f\u0001\u001F\u007F\u2028😀" + nul,
         "\"/è\\\\\\r\\t\\b\\f\\u0001\\u001f\u007F\u2028😀\\u0000\""},
        {quoted, "a\"\n" + half, "\"a\"\n" + half + "\""},
        {urlEncode, "a b&c=d/é?x#y+", "a%20b%26c%3Dd%2F%C3%A9%3Fx%23y%2B"},
        {urlEncode, "AZaz09!$'()*,-.:;@_~", "AZaz09!$'()*,-.:;@_~"},
        {urlEncode, "\"<>[]\\^`{|}%😀" + nul, "%22%3C%3E%5B%5D%5C%5E%60%7B%7C%7D%25%F0%9F%98%80%00"},
        {urlEncode, "a b" + half, "a b" + half},
        {urlDecode, "a+b%2Bc%c3%A9è%00", "a b+céè" + nul},
        {urlDecode, "%EF%BB%BFx", byteOrderMark + "x"},
        {urlDecode, "a+%C3", "a+%C3"},           // half a character
        {urlDecode, "+%ED%A0%80", "+%ED%A0%80"}, // half a surrogate pair
        {urlDecode, "100+%", "100+%"},
        {urlDecode, "1+%4", "1+%4"},
        {urlDecode, "+%4g%20", "+%4g%20"},
        {urlDecode, "+%20" + half, "+%20" + half},
        {base64Encode, "caffè 😀", "Y2FmZsOoIPCfmIA="},
        {base64Encode, half, half},
        {base64Decode, "Y2FmZsOo\r\n IPCf\u2003mIA", "caffè 😀"},
        {base64Decode, "77u/eA", byteOrderMark + "x"},
        {base64Decode, "Pz8/Pj4+", "?\?\?>>>"},
        {base64Decode, "non è Base64", "non è Base64"},
        {base64Decode, "Pz8_Pj4-", "Pz8_Pj4-"}, // another alphabet
        {base64Decode, " /w== ", " /w== "},     // no UTF-8
        {base64Decode, "YQ=", "a"},
        {base64Decode, "Y", "Y"},
        {base64Decode, "=", "="},
        {base64Decode, "YQ==YQ==", "YQ==YQ=="},
        {base64Decode, "Y=Q=", "Y=Q="},
        {base64Decode, "YQ" + nul, "YQ" + nul},
    };
    for (const auto &[transform, text, result] : cases)
        EXPECT_EQ(apply(transform, text), result)
            << qPrintable(rawValue(transform)) << " of " << qPrintable(text);
}

TEST(TextTransformTest, EachIsFoundByItsNameInOneGroupAndMakesNothingOfNothingButAPairOfQuotes)
{
    EXPECT_EQ(textTransform(u"base64Decode"), base64Decode);
    EXPECT_EQ(textTransform(u"Upper"), std::nullopt);
    std::vector<TextTransform> inGroups;
    for (const auto &group : TextTransforms::groups)
        inGroups.insert(inGroups.end(), group.begin(), group.end());
    EXPECT_TRUE(std::ranges::equal(inGroups, TextTransforms::allCases));
    for (const auto transform : TextTransforms::allCases) {
        EXPECT_EQ(textTransform(rawValue(transform)), transform);
        EXPECT_EQ(apply(transform, {}), transform == quoted ? "\"\"" : "");
    }
}

QString randomText(QRandomGenerator &random)
{
    static const QStringList pieces{
        "a",  "B",      " ",      "\t", "\n",   "\r\n",        "è", "e\u0301", "\u0301", "ß",
        "Σ",  "İ",      "\u200D", "👨",  "🏽", "🇮",           "%", "+",       "=",      "\"",
        "\\", "\u3000", "\u0600", "ⅷ",  "½",    byteOrderMark, nul, "\uFFFF",  "ŉ",      "क्षि"};
    QString text;
    for (int length = random.bounded(40); length > 0; --length) {
        if (random.bounded(8) > 0)
            text += pieces[random.bounded(static_cast<int>(pieces.size()))];
        else if (const char32_t scalar = random.bounded(0x110000); !QChar::isSurrogate(scalar))
            text += QString::fromUcs4(&scalar, 1);
    }
    return text.remove(QLatin1Char('\v'));
}

TEST(TextTransformTest, AnyTextComesBackFromItsEncodings)
{
    QRandomGenerator random(41);
    for (int round = 0; round < 20000; ++round) {
        const QString text = randomText(random);
        ASSERT_EQ(apply(base64Decode, apply(base64Encode, text)), text) << qPrintable(text);
        ASSERT_EQ(apply(urlDecode, apply(urlEncode, text)), text) << qPrintable(text);
        const QString kept = QString(text).remove(byteOrderMark); // Qt's reader drops it
        const auto array = QJsonDocument::fromJson((u'[' + apply(quoted, kept) + u']').toUtf8()).array();
        ASSERT_TRUE(array.size() == 1 && array[0].toString() == kept) << qPrintable(text);
    }
}

TEST(TextTransformTest, WhatIsConvertedOnceStaysAsItIs)
{
    QRandomGenerator random(42);
    for (int round = 0; round < 20000; ++round) {
        QString text = randomText(random);
        if (random.bounded(4) == 0)
            text.insert(random.bounded(static_cast<int>(text.size()) + 1), half);
        for (const auto transform : {upper, lower, trimLines, singleLine, removeEmptyLines}) {
            const QString once = apply(transform, text);
            ASSERT_EQ(apply(transform, once), once) << qPrintable(rawValue(transform)) << qPrintable(text);
        }
        for (const auto transform : TextTransforms::allCases) {
            const bool adds = transform == quoted || transform == urlEncode || transform == base64Encode;
            ASSERT_TRUE(adds || apply(transform, text).size() <= 3 * text.size())
                << qPrintable(rawValue(transform));
        }
    }
}

} // namespace
