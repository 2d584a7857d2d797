#include "Platform/linux/x11/ServedContent.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace {

using Names = std::vector<QByteArray>;

PasteboardRepresentation form(const char16_t *type, std::optional<QByteArray> data)
{
    return {QStringView(type).toString(), std::move(data)};
}

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

TEST(ServedContentTest, TextGoesOutUnderEveryNameThatCanHoldIt)
{
    const auto latin = servedTargets({{{form(u"public.utf8-plain-text", "perch\xC3\xA9")}}});
    EXPECT_EQ(names(latin), textNames);
    EXPECT_EQ(answer(latin, "STRING"), QByteArray("perch\xE9"));
    EXPECT_EQ(answer(latin, "TEXT"), QByteArray("perch\xC3\xA9"));

    const auto euro = servedTargets({{{form(u"public.utf8-plain-text", "5 \xE2\x82\xAC")}}});
    EXPECT_EQ(names(euro), Names(textNames.begin(), textNames.end() - 1));
}

TEST(ServedContentTest, SeveralItemsJoinTheirTextsAndShareTheRest)
{
    const auto targets = servedTargets({{{form(u"x/a", "1"), form(u"public.utf8-plain-text", "primo")}},
                                        {{form(u"x/b", "2")}},
                                        {{form(u"x/a", "3"), form(u"public.utf8-plain-text", "secondo")}}});
    EXPECT_EQ(answer(targets, "UTF8_STRING"), QByteArray("primo\nsecondo"));
    EXPECT_EQ(answer(targets, "x/a"), QByteArray("1"));
    EXPECT_EQ(answer(targets, "x/b"), QByteArray("2"));
    EXPECT_EQ(targets.front().target, QByteArray("x/a"));
}

TEST(ServedContentTest, FilesAreRebuiltForEveryFileManager)
{
    const auto targets = servedTargets({{{form(u"public.file-url", "file:///a%20b")}},
                                        {{form(u"public.file-url", "file:///c\r\nfile:///d")}}});
    EXPECT_EQ(answer(targets, "text/uri-list"), QByteArray("file:///a%20b\r\nfile:///c\r\nfile:///d\r\n"));
    EXPECT_EQ(answer(targets, "x-special/gnome-copied-files"),
              QByteArray("copy\nfile:///a%20b\nfile:///c\nfile:///d"));
    EXPECT_EQ(answer(targets, "x-special/mate-copied-files"),
              answer(targets, "x-special/gnome-copied-files"));
    EXPECT_EQ(answer(targets, "application/x-kde-cutselection"), QByteArray("0"));
    EXPECT_EQ(answer(targets, "UTF8_STRING"), QByteArray("/a b\n/c\n/d"));
}

TEST(ServedContentTest, FilesKeepTheTextTheyCameWith)
{
    const auto targets =
        servedTargets({{{form(u"public.file-url", "file:///a"), form(u"public.utf8-plain-text", "mine")}}});
    EXPECT_EQ(answer(targets, "UTF8_STRING"), QByteArray("mine"));
}

TEST(ServedContentTest, FormsWithoutBytesAndNamesOfTheProtocolAreNotServed)
{
    const auto targets =
        servedTargets({{{form(u"public.png", std::nullopt), form(u"DELETE", "x"),
                         form(u"x-special/gnome-copied-files", "cut\n"), form(u"x/empty", "")}}});
    EXPECT_EQ(names(targets), Names{"x/empty"});
}

TEST(ServedContentTest, TheTextAloneIsTheTextOrTheFilesPaths)
{
    EXPECT_EQ(names(servedTexts({{{form(u"public.html", "h"), form(u"public.utf8-plain-text", "t")}}})),
              textNames);
    EXPECT_EQ(answer(servedTexts({{{form(u"public.file-url", "file:///a%20b")}}}), "UTF8_STRING"),
              QByteArray("/a b"));
    EXPECT_TRUE(servedTexts({{{form(u"public.png", "p")}}}).empty());
}
