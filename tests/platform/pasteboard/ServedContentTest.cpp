#include "Platform/linux/x11/ServedContent.h"

#include "tests/capture/Copies.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace {

using Names = std::vector<QByteArray>;

Names names(const std::vector<ServedTarget> &targets)
{
    Names list;
    for (const ServedTarget &each : targets)
        list.push_back(each.target);
    return list;
}

QByteArray answer(const std::vector<ServedTarget> &targets, const char *target)
{
    const auto found =
        std::find_if(targets.begin(), targets.end(), [&](const auto &each) { return each.target == target; });
    if (found == targets.end())
        return "(not served)";
    ServedTarget served = *found;
    served.convert();
    return served.bytes;
}

const Names textNames = {"UTF8_STRING", "text/plain;charset=utf-8", "text/plain", "TEXT", "STRING"};

} // namespace

// "STRING" is Latin-1.
TEST(ServedContentTest, TextGoesOutUnderEveryNameThatCanHoldIt)
{
    const std::pair<const char *, bool> cases[] = {
        {"plain", true},           {"perch\xC3\xA9", true}, {"\xC3\xBF", true}, // ÿ, the last one
        {"\xC4\x80", false},                                                    // Ā, the first beyond
        {"5 \xE2\x82\xAC", false},                                              // €
        {"\xC3", false},                                                        // broken
    };
    for (const auto &[text, fits] : cases)
        EXPECT_EQ(names(servedTargets({{{form(plainText, text)}}})),
                  Names(textNames.begin(), textNames.end() - (fits ? 0 : 1)))
            << text;
}

TEST(ServedContentTest, SeveralItemsJoinTheirTextsAndShareTheRest)
{
    const auto targets = servedTargets({{{form("x/a", "1"), form(plainText, "primo")}},
                                        {{form("x/b", "2")}},
                                        {{form("x/a", "3"), form(plainText, "secondo")}}});
    EXPECT_EQ(answer(targets, "UTF8_STRING"), QByteArray("primo\nsecondo"));
    EXPECT_EQ(answer(targets, "x/a"), QByteArray("1"));
    EXPECT_EQ(answer(targets, "x/b"), QByteArray("2"));
    EXPECT_EQ(targets.front().target, QByteArray("x/a"));
}

TEST(ServedContentTest, FilesAreRebuiltForEveryFileManager)
{
    const auto targets = servedTargets({{{form("public.file-url", "file:///a%20b")}},
                                        {{form("public.file-url", "file:///c\r\nfile:///d")}}});
    EXPECT_EQ(answer(targets, "text/uri-list"), QByteArray("file:///a%20b\r\nfile:///c\r\nfile:///d\r\n"));
    EXPECT_EQ(answer(targets, "x-special/gnome-copied-files"),
              QByteArray("copy\nfile:///a%20b\nfile:///c\nfile:///d"));
    EXPECT_EQ(answer(targets, "x-special/mate-copied-files"),
              answer(targets, "x-special/gnome-copied-files"));
    EXPECT_EQ(answer(targets, "application/x-kde-cutselection"), QByteArray("0"));
    EXPECT_EQ(answer(targets, "UTF8_STRING"), QByteArray("/a b\n/c\n/d"));
    const PasteboardItem ownText{{form("public.file-url", "file:///a"), form(plainText, "mine")}};
    EXPECT_EQ(answer(servedTargets({ownText}), "UTF8_STRING"), QByteArray("mine"));
}

TEST(ServedContentTest, FormsWithoutBytesAndNamesOfTheProtocolAreNotServed)
{
    const auto targets =
        servedTargets({{{offeredOnly("public.png"), form("DELETE", "x"),
                         form("x-special/gnome-copied-files", "cut\n"), form("x/empty", "")}}});
    EXPECT_EQ(names(targets), Names{"x/empty"});
}

TEST(ServedContentTest, TheTextAloneIsTheTextOrTheFilesPaths)
{
    EXPECT_EQ(names(servedTexts({{{form("public.html", "h"), form(plainText, "t")}}})), textNames);
    EXPECT_EQ(answer(servedTexts({{{form("public.file-url", "file:///a%20b")}}}), "UTF8_STRING"),
              QByteArray("/a b"));
    EXPECT_TRUE(servedTexts({{{form("public.png", "p")}}}).empty());
}
