#include "tests/platform/pasteboard/X11Client.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

// The real programs.

namespace {

constexpr qint64 mebibyte = 1048576;

class ProgramsTest : public PasteboardTest {
protected:
    // Runs a program to its end while we serve it.
    QByteArray run(const QString &program, const QStringList &arguments, const QString &input = {})
    {
        QProcess process;
        process.setProcessChannelMode(QProcess::SeparateChannels);
        if (!input.isEmpty())
            process.setStandardInputFile(input);
        const QString output = directory.filePath(QStringLiteral("output"));
        process.setStandardOutputFile(
            output); // a file: xclip stays behind as the owner and would keep a pipe open
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

class SizesTest : public ProgramsTest, public ::testing::WithParamInterface<qint64> {};

TEST_P(SizesTest, XclipRoundTripIsByteForByte)
{
    const QByteArray content = pattern(GetParam());
    setPolicy(&PasteboardPolicy::byteBudget, 300 * mebibyte);
    copyWith("xclip", {"-selection", "clipboard", "-i"}, content);
    ASSERT_EQ(bytes(PasteboardType::plainText), content);

    pasteboard->write({textItem(content)});
    EXPECT_EQ(run("xclip", {"-selection", "clipboard", "-o"}), content);
}

INSTANTIATE_TEST_SUITE_P(Sizes, SizesTest,
                         ::testing::Values(0, 1, 1000, mebibyte, 32 * mebibyte, 200 * mebibyte));

TEST_F(ProgramsTest, XselRoundTripIsByteForByteInItsSmallChunks)
{
    const QByteArray content = pattern(3 * mebibyte);
    copyWith("xsel", {"-b", "-i"}, content);
    ASSERT_EQ(bytes(PasteboardType::plainText), content);
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

    pasteboard->write({{{{QStringView(PasteboardType::fileURL).toString(), "file:///a%20b"}}}});
    EXPECT_EQ(run("xclip", {"-selection", "clipboard", "-t", "x-special/gnome-copied-files", "-o"}),
              QByteArray("copy\nfile:///a%20b"));
}

TEST_F(ProgramsTest, APasteBeyondTheBudgetLeavesXclipAlive)
{
    setPolicy(&PasteboardPolicy::byteBudget, mebibyte);
    const QByteArray content = pattern(20 * mebibyte);
    copyWith("xclip", {"-selection", "clipboard", "-i"}, content);
    EXPECT_EQ(bytes(PasteboardType::plainText), std::nullopt);
    EXPECT_EQ(types(), QStringList{"public.utf8-plain-text"});
    EXPECT_EQ(run("xclip", {"-selection", "clipboard", "-o"}), content);
}

TEST_F(ProgramsTest, XtermPastesPrimary)
{
    const QString answer = directory.filePath(QStringLiteral("typed"));
    QProcess xterm;
    xterm.start("xterm", {"-xrm", "XTerm*translations: #override <FocusIn>: insert-selection(PRIMARY)", "-e",
                          "sh", "-c", "read line; printf %s \"$line\" > " + answer});
    ASSERT_TRUE(xterm.waitForStarted());
    pasteboard->write({textItem("echo ciao\n")});
    pasteboard->ownPrimary();
    // The window says when it is there by its name; the focus then makes it paste.
    Requestor finder;
    const auto focusXterm = [&] {
        auto *tree = xcb_query_tree_reply(finder.raw(), xcb_query_tree(finder.raw(), finder.root()), nullptr);
        const xcb_window_t *windows = xcb_query_tree_children(tree);
        for (int i = 0; i < xcb_query_tree_children_length(tree); ++i)
            xcb_set_input_focus(finder.raw(), XCB_INPUT_FOCUS_POINTER_ROOT, windows[i], XCB_CURRENT_TIME);
        std::free(tree);
        finder.sync();
        return QFile::exists(answer);
    };
    EXPECT_TRUE(await(focusXterm, 10000));
    EXPECT_TRUE(await([&] { return xterm.state() == QProcess::NotRunning; }, 5000));
    QFile file(answer);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_TRUE(file.readAll().startsWith("echo ciao"));
}
