#include "Platform/linux/x11/CopiedItems.h"

#include "Platform/linux/x11/FileList.h"
#include "Platform/linux/x11/TextEncoding.h"
#include "tests/capture/Copies.h"

#include <gtest/gtest.h>

// From the bytes of other programs to the forms of a copy.

TEST(FileListTest, ListsOfEveryFileManagerAreTheSame)
{
    const std::vector<QByteArray> two = {"file:///tmp/a%20b", "file:///etc/hosts"};
    const QByteArray lists[] = {
        "file:///tmp/a%20b\r\nfile:///etc/hosts\r\n",
        "file:///tmp/a%20b\r\nfile:///etc/hosts",
        "file:///tmp/a%20b\nfile:///etc/hosts\n",
        QByteArray("file:///tmp/a%20b\r\nfile:///etc/hosts\0", 38),
        "# from somewhere\r\n\r\nfile:///tmp/a%20b \r\n\r\nfile:///etc/hosts\r\n",
    };
    for (const QByteArray &list : lists)
        EXPECT_EQ(addressesOfUriList(list), two) << list.constData();
    EXPECT_TRUE(addressesOfUriList("\r\n#\r\n").empty());
}

TEST(FileListTest, PathsAreDecodedAsBytes)
{
    const std::pair<QByteArray, QByteArray> cases[] = {
        {"file:///tmp/a%20b", "/tmp/a b"},
        {"file://localhost/etc/hosts", "/etc/hosts"},
        {"FILE:/usr", "/usr"},
        {"file:///%E8%FF", "/\xE8\xFF"},
        {"file:///a%00b", "/a%00b"},
        {"file:///100%", "/100%"},
        {"file://host", "/"},
    };
    for (const auto &[address, path] : cases) {
        EXPECT_TRUE(isFileAddress(address)) << address.constData();
        EXPECT_EQ(pathOfFileAddress(address), path) << address.constData();
    }
    EXPECT_FALSE(isFileAddress("file:"));
    EXPECT_FALSE(isFileAddress("https://example.org/file:///a"));
}

TEST(CopiedItemsTest, AddressesThatAreNoFilesKeepTheirList)
{
    const auto itemsOf = [](const QByteArray &list) {
        return itemsFrom(planFor({"text/uri-list"}), {{ReadOutcome::Status::fetched, 0, list}});
    };
    const QByteArray links = "https://example.org/\r\n", mixed = "file:///a\r\nsmb://host/b\r\n";
    EXPECT_EQ(itemsOf(links), std::vector{PasteboardItem{{form("text/uri-list", links)}}});
    ASSERT_EQ(itemsOf(mixed).size(), 1u);
    EXPECT_EQ(itemsOf(mixed).front().data(u"public.file-url"), QByteArray("file:///a"));
    EXPECT_EQ(itemsOf(mixed).front().data(u"text/uri-list"), mixed);
}

TEST(CopiedItemsTest, TextsAreDecodedByTheirTargets)
{
    const ReadPlan plan = planFor({"UTF8_STRING", "text/plain;charset=utf-16", "STRING"});
    const ReadRequest &text = plan.requests.front();
    ASSERT_EQ(text.candidates.size(), 3u);
    EXPECT_EQ(storedBytes(text, text.candidates[0], "\xE8"), QByteArray("\xE8"));
    EXPECT_EQ(storedBytes(text, text.candidates[1], "\xE8"), QByteArray("\xC3\xA8"));
    EXPECT_EQ(storedBytes(text, text.candidates[2], QByteArray("\xE8\0", 2)), QByteArray("\xC3\xA8"));
    EXPECT_EQ(storedBytes(text, text.candidates[1], "perch\xC3\xA9"), QByteArray("perch\xC3\xA9"));

    const QString smile = QStringLiteral("ciao 😀");
    const QByteArray utf16(reinterpret_cast<const char *>(smile.utf16()), smile.size() * 2);
    EXPECT_EQ(utf8FromCharset(utf16, "utf-16"), smile.toUtf8());
    EXPECT_EQ(utf8FromCharset("\xFF\xFE" + utf16, "utf-16"), smile.toUtf8());
    EXPECT_EQ(utf8FromCharset("\xE8", "iso-8859-1"), QByteArray("\xC3\xA8"));
    EXPECT_EQ(utf8FromCharset("x", "klingon"), std::nullopt);
}

TEST(CopiedItemsTest, OnlyALonelyPictureOfAnUnknownKindIsReencoded)
{
    const auto reencoded = [](std::vector<PasteboardRepresentation> forms) {
        return pictureToReencode({PasteboardItem{std::move(forms)}});
    };
    const auto bitmap = form("image/bmp", "b");
    EXPECT_EQ(reencoded({form("image/webp", "w")}), QByteArray("w"));
    EXPECT_EQ(reencoded({form("public.html", "<img>"), bitmap}), QByteArray("b"));
    for (const char *blank : {"", " \t\r\n", "\xE3\x80\x80", " \xC2\xA0\n"})
        EXPECT_EQ(reencoded({form(plainText, blank), bitmap}), QByteArray("b")) << blank;
    for (const char *text : {"  a", "\xE3\x80\x80\xE5\xAD\x97", "\n."})
        EXPECT_EQ(reencoded({form(plainText, text), bitmap}), std::nullopt) << text;
    EXPECT_EQ(reencoded({form("public.jpeg", "j"), bitmap}), std::nullopt);
    EXPECT_EQ(reencoded({form("image/svg+xml", "<svg/>")}), std::nullopt);
    EXPECT_EQ(reencoded({offeredOnly("image/bmp")}), std::nullopt);
}
