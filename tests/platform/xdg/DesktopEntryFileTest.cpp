#include "Platform/linux/xdg/DesktopEntryFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using ::testing::ElementsAre;

TEST(LocaleVariants, GoFromTheMostSpecialToThePlainLanguage)
{
    EXPECT_THAT(localeVariants("it_IT.UTF-8@euro"), ElementsAre("it_IT@euro", "it_IT", "it@euro", "it"));
    EXPECT_THAT(localeVariants("it:en_GB.UTF-8:it"), ElementsAre("it", "en_GB", "en"));
    EXPECT_THAT(localeVariants("C.UTF-8"), ElementsAre());
    EXPECT_THAT(localeVariants("::POSIX"), ElementsAre());
}

TEST(DesktopEntryFile, NamesComeInTheBestLanguageWhateverTheirOrder)
{
    const std::string file =
        "[Desktop Entry]\nType=Application\nName[it]=Italiano\nName=Plain\nName[de]=Deutsch\n"
        "Name[it_CH]=Svizzero\n";
    const auto nameIn = [&](std::string_view locales) {
        return parseDesktopEntry(file, localeVariants(locales)).value().name;
    };
    EXPECT_EQ(nameIn("it_CH"), "Svizzero");
    EXPECT_EQ(nameIn("it_IT"), "Italiano");
    EXPECT_EQ(nameIn("fr"), "Plain");
    EXPECT_EQ(nameIn("fr:de"), "Deutsch");
    EXPECT_EQ(nameIn(""), "Plain");
}

TEST(DesktopEntryFile, OnlyTheMainGroupOfAnApplicationCounts)
{
    const auto entry =
        parseDesktopEntry("# a comment\r\n\r\n[Desktop Entry]\r\n Type = Application \r\n"
                          "Name=\\sTwo\\nlines \\\\\r\nIcon=/a\\sb.png\r\nNoDisplay=true\r\n"
                          "StartupWMClass=Code\r\nExec=code %U\r\nno equals sign\r\n"
                          "[Desktop Action new]\r\nName=New\r\nExec=other\r\n[Desktop Entry]\nName=x\n",
                          {});
    ASSERT_TRUE(entry);
    EXPECT_EQ(entry->name, " Two\nlines \\");
    EXPECT_EQ(entry->icon, "/a b.png");
    EXPECT_EQ(entry->startupWMClass, "Code");
    EXPECT_EQ(entry->executable, "code");
    EXPECT_TRUE(entry->noDisplay);
    EXPECT_FALSE(entry->hidden);
}

TEST(DesktopEntryFile, WhatIsNoApplicationIsAbsent)
{
    using namespace std::string_view_literals;
    for (const auto file :
         {""sv, "[Desktop Entry]"sv, "[Desktop Entry]\nType=Link\nName=a"sv,
          "[Desktop Entry]\nType=Application"sv, "Type=Application\nName=a"sv,
          "\x7f"
          "ELF\0\0"sv,
          "[Desktop Entry]\nType=Application\nName=a\0b\n"sv, "[Desktop Entry\nType=Application"sv})
        EXPECT_FALSE(parseDesktopEntry(file, {"it"})) << file;
    EXPECT_TRUE(parseDesktopEntry("[Desktop Entry]\nHidden=true", {}).value().hidden);
}

TEST(DesktopEntryFile, TheProgramIsFoundInEveryFormOfACommandLine)
{
    const std::pair<std::string_view, std::string> cases[] = {
        {"xterm", "xterm"},
        {"/usr/bin/mousepad %F", "mousepad"},
        {"\"/opt/My App/app\" --flag", "app"},
        {"\"/opt/quote\\\"d\\\\\" x", "quote\"d\\"},
        {"env -i A=b LANG=it program --x", "program"},
        {"env BAMF=1 /snap/bin/tool %u", "tool"},
        {"/usr/bin/env", ""},
        {"   ", ""},
        {"\"unfinished", "unfinished"},
        {"ends/in/slash/", ""},
    };
    for (const auto &[line, program] : cases)
        EXPECT_EQ(executableOf(line), program) << line;
}

} // namespace
