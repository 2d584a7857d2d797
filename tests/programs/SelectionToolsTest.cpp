// Programs that hand over the clipboard on the command line, each in a manner of its own: xclip sends three
// megabytes in a few large pieces, xsel in hundreds of small ones.
#include "tests/programs/Program.h"

#include <QProcess>
#include <gtest/gtest.h>

namespace {

struct Tool {
    const char *name;
    const char *copies; // with the file as $0
    const char *prints;
};

void PrintTo(const Tool &tool, std::ostream *out)
{
    *out << tool.name;
}

QByteArray printed(const Tool &tool)
{
    QProcess process;
    process.start(QStringLiteral("sh"), {QStringLiteral("-c"), QString::fromLatin1(tool.prints)});
    return process.waitForFinished(10000) ? process.readAllStandardOutput() : QByteArray();
}

class SelectionTools : public testing::TestWithParam<Tool> {};

TEST_P(SelectionTools, GetBackWhatTheyCopied)
{
    const QByteArray text =
        "sloe \xc3\xa8 \xf0\x9f\x8d\x90\n" + QByteArray("a line of many\n").repeated(200000);
    Stage stage(QStringLiteral(NORVANE_PROGRAM), QDir(QStringLiteral(NORVANE_OUTPUT)));
    try {
        stage.start();
        const auto file = stage.scratchFile(QStringLiteral("txt"));
        writeFile(file, text);
        {
            const Child owner({QStringLiteral("sh"),
                               {QStringLiteral("-c"),
                                QStringLiteral("exec ") + QString::fromLatin1(GetParam().copies), file},
                               {},
                               {}});
            require(stage.desktop.waitFor([&] {
                const auto rows = stage.history().rows();
                return rows && !rows->empty() && rows->front().kind == 0 &&
                       rows->front().text.startsWith(QStringLiteral("sloe"));
            }),
                    QStringLiteral("the copy was not recorded"));
        }
        stage.copy("something newer");
        stage.choose(QStringLiteral("sloe"), QStringLiteral("Alt+Enter"));
        QByteArray last;
        EXPECT_TRUE(stage.desktop.waitFor([&] { return (last = printed(GetParam())) == text; }))
            << last.size() << " bytes came back";
        stage.quit();
    } catch (const StepFailure &failure) {
        ADD_FAILURE() << failure.why.toStdString();
    }
}

INSTANTIATE_TEST_SUITE_P(Light, SelectionTools,
                         testing::Values(Tool{"xclip", "xclip -quiet -selection clipboard -i \"$0\"",
                                              "xclip -selection clipboard -o"},
                                         Tool{"xsel", "xsel --clipboard --nodetach --input <\"$0\"",
                                              "xsel --clipboard --output"}),
                         [](const auto &tool) { return std::string(tool.param.name); });

} // namespace
