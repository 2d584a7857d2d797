#include "Platform/linux/x11/FileList.h"

#include <gtest/gtest.h>

using Addresses = std::vector<QByteArray>;

TEST(FileListTest, ListsOfEveryFileManagerAreTheSame)
{
    const Addresses two = {"file:///tmp/a%20b", "file:///etc/hosts"};
    const QByteArray lists[] = {
        "file:///tmp/a%20b\r\nfile:///etc/hosts\r\n",
        "file:///tmp/a%20b\r\nfile:///etc/hosts",
        "file:///tmp/a%20b\nfile:///etc/hosts\n",
        QByteArray("file:///tmp/a%20b\r\nfile:///etc/hosts\0", 38),
        "# from somewhere\r\n\r\nfile:///tmp/a%20b \r\n\r\nfile:///etc/hosts\r\n",
    };
    for (const QByteArray &list : lists)
        EXPECT_EQ(addressesOfUriList(list), two) << list.constData();
    EXPECT_EQ(addressesOfUriList("\r\n#\r\n"), Addresses());
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
    for (const auto &[address, path] : cases)
        EXPECT_EQ(pathOfFileAddress(address), path) << address.constData();
}

TEST(FileListTest, OnlyFileAddressesAreFiles)
{
    EXPECT_TRUE(isFileAddress("file:///a"));
    EXPECT_TRUE(isFileAddress("File:/a"));
    EXPECT_FALSE(isFileAddress("file:"));
    EXPECT_FALSE(isFileAddress("https://example.org/file:///a"));
}

TEST(FileListTest, BuiltListsEndAsTheirReadersExpect)
{
    const Addresses two = {"file:///a%20b", "file:///c"};
    EXPECT_EQ(uriList(two), QByteArray("file:///a%20b\r\nfile:///c\r\n"));
    EXPECT_EQ(copiedFilesList(two), QByteArray("copy\nfile:///a%20b\nfile:///c"));
    EXPECT_EQ(pathList(two), QByteArray("/a b\n/c"));
}
