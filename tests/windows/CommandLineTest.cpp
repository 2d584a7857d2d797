#include "Norvane/CommandLine.h"

#include <gtest/gtest.h>

TEST(CommandLine, SaysWhoActsAndOnWhat)
{
    using Kind = CommandLine::Kind;
    const struct {
        QStringList arguments;
        CommandLine expected;
    } cases[] = {
        {{}, {Kind::run, "show", false}},
        {{"--show"}, {Kind::run, "show", true}},
        {{"--toggle"}, {Kind::run, "toggle", true}},
        {{"--hide"}, {Kind::ask, "hide", false}},
        {{"--pause"}, {Kind::ask, "pause", false}},
        {{"--quit"}, {Kind::ask, "quit", false}},
        {{"--hide", "--show"}, {Kind::run, "show", true}},
        {{"--version"}, {Kind::version, {}, false}},
        {{"--quit", "--help"}, {Kind::help, {}, false}},
        {{"-h"}, {Kind::help, {}, false}},
        {{"--Show"}, {Kind::unknown, "--Show", false}},
        {{"--quit", "file.txt"}, {Kind::unknown, "file.txt", false}},
        {{""}, {Kind::unknown, "", false}},
    };
    for (const auto &[arguments, expected] : cases)
        EXPECT_EQ(parseCommandLine(arguments), expected) << arguments.join(u' ').toStdString();
}
