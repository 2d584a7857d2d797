#include "Platform/linux/x11/TextEncoding.h"

#include <QString>
#include <gtest/gtest.h>

TEST(TextEncodingTest, UnlabelledTextIsUtf8WhenItCanBe)
{
    EXPECT_EQ(utf8FromUnlabelled("perch\xC3\xA9"), QByteArray("perch\xC3\xA9"));
    EXPECT_EQ(utf8FromUnlabelled("perch\xE9"), QByteArray("perch\xC3\xA9"));
    EXPECT_EQ(utf8FromUnlabelled("plain"), QByteArray("plain"));
}

TEST(TextEncodingTest, CharsetsAreDecodedOrRefused)
{
    const QString text = QStringLiteral("ciao 😀");
    QByteArray utf16(reinterpret_cast<const char *>(text.utf16()), text.size() * 2);
    EXPECT_EQ(utf8FromCharset(utf16, "utf-16"), text.toUtf8());
    EXPECT_EQ(utf8FromCharset("\xFF\xFE" + utf16, "utf-16"), text.toUtf8());
    EXPECT_EQ(utf8FromCharset("\xE8", "iso-8859-1"), QByteArray("\xC3\xA8"));
    EXPECT_EQ(utf8FromCharset("x", "klingon"), std::nullopt);
}

TEST(TextEncodingTest, Latin1OnlyWhereNothingIsLost)
{
    EXPECT_TRUE(fitsLatin1("plain"));
    EXPECT_TRUE(fitsLatin1("\xC3\xBF"));        // ÿ, the last one
    EXPECT_FALSE(fitsLatin1("\xC4\x80"));       // Ā, the first beyond
    EXPECT_FALSE(fitsLatin1("5 \xE2\x82\xAC")); // €
    EXPECT_FALSE(fitsLatin1("\xC3"));           // broken
    EXPECT_EQ(latin1FromUtf8("\xC3\xA8"), QByteArray("\xE8"));
}

TEST(TextEncodingTest, BlankIsWhiteSpaceOfAnyScript)
{
    for (const char *blank : {"", " \t\r\n", "\xE3\x80\x80", " \xC2\xA0\n"})
        EXPECT_TRUE(isBlank(blank)) << blank;
    for (const char *text : {"a", "  a", "\xE3\x80\x80\xE5\xAD\x97", "\n."})
        EXPECT_FALSE(isBlank(text)) << text;
}
