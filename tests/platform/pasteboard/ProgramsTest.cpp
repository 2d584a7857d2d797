#include "tests/platform/pasteboard/PasteboardTest.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

// The real programs.

namespace {

constexpr qint64 mebibyte = 1048576;

class ProgramsTest : public PasteboardTest {
protected:
    // Runs a program to its end while we serve it; what it printed. Files, because xclip stays behind as the
    // owner and would keep a pipe open.
    QByteArray run(const QString &command, const QByteArray &input = {})
    {
        QFile in(directory.filePath("input")), out(directory.filePath("output"));
        EXPECT_TRUE(in.open(QIODevice::WriteOnly) && in.write(input) == input.size());
        in.close();
        QProcess process;
        process.setStandardInputFile(in.fileName());
        process.setStandardOutputFile(out.fileName());
        process.setStandardErrorFile(QProcess::nullDevice());
        process.startCommand(command);
        EXPECT_TRUE(await([&] { return process.state() == QProcess::NotRunning; }, 20000))
            << command.toStdString();
        EXPECT_EQ(process.exitCode(), 0)
            << command.toStdString() << ' ' << process.errorString().toStdString();
        return out.open(QIODevice::ReadOnly) ? out.readAll() : QByteArray();
    }

    void copyWith(const QString &command, const QByteArray &content)
    {
        const qint64 before = pasteboard->changeCount();
        run(command, content);
        EXPECT_TRUE(awaitChange(before, 10000));
        settle();
        EXPECT_TRUE(text() == content) << content.size();
    }

    QTemporaryDir directory;
};

} // namespace

TEST_F(ProgramsTest, XclipRoundTripIsByteForByteWhateverTheSize)
{
    pasteboard->setPolicy(policyWith(&PasteboardPolicy::byteBudget, 300 * mebibyte));
    for (const qint64 size : {qint64(1), qint64(1000), mebibyte, 64 * mebibyte}) {
        const QByteArray content = pattern(size);
        copyWith("xclip -selection clipboard -i", content);
        pasteboard->write({textItem(content)});
        EXPECT_TRUE(run("xclip -selection clipboard -o") == content) << size;
    }
}

TEST_F(ProgramsTest, XselRoundTripIsByteForByteInItsSmallChunks)
{
    const QByteArray content = pattern(3 * mebibyte);
    copyWith("xsel -b -i", content);
    pasteboard->write({textItem(content)});
    EXPECT_TRUE(run("xsel -b -o") == content);
    const qint64 before = pasteboard->changeCount();
    run("xsel -b -c");
    EXPECT_TRUE(awaitChange(before));
    EXPECT_TRUE(items().empty());
}

// It would die of a transfer that is given up.
TEST_F(ProgramsTest, ACopyBeyondTheBudgetLeavesXclipAlive)
{
    pasteboard->setPolicy(policyWith(&PasteboardPolicy::byteBudget, mebibyte));
    const QByteArray content = pattern(20 * mebibyte);
    const qint64 before = pasteboard->changeCount();
    run("xclip -selection clipboard -i", content);
    EXPECT_TRUE(awaitChange(before, 10000));
    settle();
    EXPECT_EQ(text(), std::nullopt);
    EXPECT_TRUE(run("xclip -selection clipboard -o") == content);
}
