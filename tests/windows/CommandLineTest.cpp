#include "Norvane/CommandLine.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(CommandLine, SaysWhoActsAndOnWhat)
{
    using Kind = CommandLine::Kind;
    struct Case {
        QStringList arguments;
        CommandLine expected;
    };
    const std::vector<Case> cases = {
        {{}, {Kind::run, u"show"_s, false}},
        {{u"--show"_s}, {Kind::run, u"show"_s, true}},
        {{u"--toggle"_s}, {Kind::run, u"toggle"_s, true}},
        {{u"--hide"_s}, {Kind::ask, u"hide"_s, false}},
        {{u"--pause"_s}, {Kind::ask, u"pause"_s, false}},
        {{u"--quit"_s}, {Kind::ask, u"quit"_s, false}},
        {{u"--hide"_s, u"--show"_s}, {Kind::run, u"show"_s, true}},
        {{u"--version"_s}, {Kind::version, {}, false}},
        {{u"--quit"_s, u"--help"_s}, {Kind::help, {}, false}},
        {{u"-h"_s}, {Kind::help, {}, false}},
        {{u"--Show"_s}, {Kind::unknown, u"--Show"_s, false}},
        {{u"--quit"_s, u"file.txt"_s}, {Kind::unknown, u"file.txt"_s, false}},
        {{u""_s}, {Kind::unknown, u""_s, false}},
    };
    for (const auto &c : cases)
        EXPECT_EQ(parseCommandLine(c.arguments), c.expected) << c.arguments.join(u' ').toStdString();
}
