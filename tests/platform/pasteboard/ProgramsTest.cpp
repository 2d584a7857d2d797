#include "tests/platform/pasteboard/PasteboardTest.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <csignal>

// The real programs.

namespace {

constexpr qint64 mebibyte = 1048576;

class ProgramsTest : public PasteboardTest {
protected:
    // Runs a program to its end while we serve it.
    QByteArray run(const QString &program, const QStringList &arguments, const QString &input = {})
    {
        QProcess process;
        if (!input.isEmpty())
            process.setStandardInputFile(input);
        // A file: xclip stays behind as the owner and would keep a pipe open.
        const QString output = directory.filePath(QStringLiteral("output"));
        process.setStandardOutputFile(output);
        process.setStandardErrorFile(QProcess::nullDevice());
        process.start(program, arguments);
        EXPECT_TRUE(await([&] { return process.state() == QProcess::NotRunning; }, 20000))
            << program.toStdString();
        QFile file(output);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    QString saved(const QByteArray &content)
    {
        QFile file(directory.filePath(QStringLiteral("input")));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        return file.fileName();
    }

    void copyWith(const QString &program, const QStringList &arguments, const QByteArray &content)
    {
        const qint64 before = pasteboard->changeCount();
        run(program, arguments, saved(content));
        EXPECT_TRUE(awaitChange(before, 10000));
        settle();
    }

    QTemporaryDir directory;
};

} // namespace

TEST_F(ProgramsTest, XclipRoundTripIsByteForByteWhateverTheSize)
{
    pasteboard->setPolicy(policyWith(&PasteboardPolicy::byteBudget, 300 * mebibyte));
    for (const qint64 size : {qint64(1), qint64(1000), mebibyte, 64 * mebibyte}) {
        const QByteArray content = pattern(size);
        copyWith("xclip", {"-selection", "clipboard", "-i"}, content);
        ASSERT_TRUE(text() == content) << size;
        pasteboard->write({textItem(content)});
        EXPECT_TRUE(run("xclip", {"-selection", "clipboard", "-o"}) == content) << size;
    }
}

TEST_F(ProgramsTest, XselRoundTripIsByteForByteInItsSmallChunks)
{
    const QByteArray content = pattern(3 * mebibyte);
    copyWith("xsel", {"-b", "-i"}, content);
    ASSERT_EQ(text(), content);
    EXPECT_EQ(run("xsel", {"-b", "-o"}), content); // not deleted by having been read

    pasteboard->write({textItem(content)});
    EXPECT_EQ(run("xsel", {"-b", "-o"}), content);

    const qint64 before = pasteboard->changeCount();
    run("xsel", {"-b", "-c"});
    EXPECT_TRUE(awaitChange(before));
    EXPECT_TRUE(items().empty());
}

TEST_F(ProgramsTest, XclipServesAndTakesOtherTypes)
{
    copyWith("xclip", {"-selection", "clipboard", "-t", "image/png", "-i"}, "not really a picture");
    EXPECT_EQ(bytes(PasteboardType::png), QByteArray("not really a picture"));

    pasteboard->write({fileItem("file:///a%20b")});
    EXPECT_EQ(run("xclip", {"-selection", "clipboard", "-t", "x-special/gnome-copied-files", "-o"}),
              QByteArray("copy\nfile:///a%20b"));
}

TEST_F(ProgramsTest, APasteBeyondTheBudgetLeavesXclipAlive)
{
    pasteboard->setPolicy(policyWith(&PasteboardPolicy::byteBudget, mebibyte));
    const QByteArray content = pattern(20 * mebibyte);
    copyWith("xclip", {"-selection", "clipboard", "-i"}, content);
    EXPECT_EQ(text(), std::nullopt);
    EXPECT_EQ(types(), QStringList{"public.utf8-plain-text"});
    EXPECT_EQ(run("xclip", {"-selection", "clipboard", "-o"}), content);
}

TEST_F(ProgramsTest, AnXclipThatHungAnswersLateAndLives)
{
    const qint64 before = pasteboard->changeCount();
    QProcess xclip;
    xclip.setStandardInputFile(saved("late"));
    xclip.start("xclip", {"-selection", "clipboard", "-quiet", "-i"});
    ASSERT_TRUE(awaitChange(before));
    settle();
    ::kill(static_cast<pid_t>(xclip.processId()), SIGSTOP);

    const auto second = makePasteboard();
    bool settled = false;
    second->whenSettled([&] { settled = true; }); // given up, as nobody answers
    ASSERT_TRUE(await([&] { return settled; }));
    EXPECT_TRUE(second->snapshot()->items.empty());

    ::kill(static_cast<pid_t>(xclip.processId()), SIGCONT);
    ASSERT_TRUE(await([&] { return !second->snapshot()->items.empty(); }, 1000)); // sooner than the retry
    EXPECT_EQ(second->snapshot()->items.front().data(PasteboardType::plainText), QByteArray("late"));
    EXPECT_EQ(second->changeCount(), 0);
    EXPECT_EQ(run("xclip", {"-selection", "clipboard", "-o"}), QByteArray("late"));
    EXPECT_EQ(xclip.state(), QProcess::Running);
    xclip.kill();
    xclip.waitForFinished();
}

TEST_F(ProgramsTest, WhatProgramsCopiedOutlivesThem)
{
    const QStringList commands[] = {
        {"xclip", "-selection", "clipboard", "-quiet", "-i", saved("left behind")},
        // The terminal is told to copy: bGVmdCBiZWhpbmQ= says the same in Base64.
        {"xterm", "-xrm", "*allowWindowOps: true", "-xrm", "*disallowedWindowOps:", "-e", "sh", "-c",
         "printf '\\033]52;c;bGVmdCBiZWhpbmQ=\\007'; exec sleep 60"},
    };
    for (const QStringList &command : commands) {
        const qint64 before = pasteboard->changeCount();
        QProcess program;
        program.start(command.front(), command.mid(1));
        ASSERT_TRUE(awaitChange(before, 10000)) << command.front().toStdString();
        settle();
        program.kill();
        ASSERT_TRUE(await([&] { return program.state() == QProcess::NotRunning; }));
        EXPECT_TRUE(await([&] {
            return run("xclip", {"-selection", "clipboard", "-o"}) == "left behind";
        })) << command.front().toStdString();
        EXPECT_EQ(pasteboard->changeCount(), before + 1);
    }
}
