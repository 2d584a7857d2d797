#include "tests/platform/pasteboard/PasteboardTest.h"

#include "Platform/linux/x11/WindowProperties.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <csignal>
#include <xcb/xtest.h>

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

// Gives the focus and types, in a user's place.
class Keyboard : public X11Client {
public:
    ~Keyboard() override { die(); }

    // True once a top-level window of this class has the focus.
    bool focus(QStringView className)
    {
        auto *tree = xcb_query_tree_reply(connection, xcb_query_tree(connection, root()), nullptr);
        const xcb_window_t *windows = xcb_query_tree_children(tree);
        for (int i = 0; i < xcb_query_tree_children_length(tree); ++i) {
            if (readWindowIdentity(connection, windows[i]).className == className)
                xcb_set_input_focus(connection, XCB_INPUT_FOCUS_POINTER_ROOT, windows[i], XCB_CURRENT_TIME);
        }
        std::free(tree);
        return readWindowIdentity(connection, focusedTopLevel(connection)).className == className;
    }

    void strike(xcb_keysym_t key, xcb_keysym_t modifier)
    {
        const xcb_keycode_t codes[] = {codeOf(modifier), codeOf(key)};
        xcb_test_fake_input(connection, XCB_KEY_PRESS, codes[0], XCB_CURRENT_TIME, XCB_WINDOW_NONE, 0, 0, 0);
        xcb_test_fake_input(connection, XCB_KEY_PRESS, codes[1], XCB_CURRENT_TIME, XCB_WINDOW_NONE, 0, 0, 0);
        xcb_test_fake_input(connection, XCB_KEY_RELEASE, codes[1], XCB_CURRENT_TIME, XCB_WINDOW_NONE, 0, 0,
                            0);
        xcb_test_fake_input(connection, XCB_KEY_RELEASE, codes[0], XCB_CURRENT_TIME, XCB_WINDOW_NONE, 0, 0,
                            0);
        sync();
    }

private:
    void handle(const xcb_generic_event_t &) override {}

    xcb_keycode_t codeOf(xcb_keysym_t keysym)
    {
        const auto *setup = xcb_get_setup(connection);
        const auto count = static_cast<uint8_t>(setup->max_keycode - setup->min_keycode + 1);
        const auto cookie = xcb_get_keyboard_mapping(connection, setup->min_keycode, count);
        auto *map = xcb_get_keyboard_mapping_reply(connection, cookie, nullptr);
        const xcb_keysym_t *keysyms = xcb_get_keyboard_mapping_keysyms(map);
        int found = 0;
        while (found < count && keysyms[ptrdiff_t{found} * map->keysyms_per_keycode] != keysym)
            ++found;
        std::free(map);
        return static_cast<xcb_keycode_t>(setup->min_keycode + found);
    }
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

INSTANTIATE_TEST_SUITE_P(Sizes, SizesTest, ::testing::Values(1, 1000, mebibyte, 64 * mebibyte));

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

TEST_F(ProgramsTest, AnXclipThatHungAnswersLateAndLives)
{
    const qint64 before = pasteboard->changeCount();
    QProcess xclip;
    xclip.setStandardInputFile(saved("late"));
    xclip.start("xclip", {"-selection", "clipboard", "-quiet", "-i"});
    ASSERT_TRUE(awaitChange(before));
    settle();
    ::kill(static_cast<pid_t>(xclip.processId()), SIGSTOP);

    const auto second = X11Pasteboard::create(std::make_shared<ClassNames>());
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

TEST_F(ProgramsTest, XtermPastesPrimary)
{
    const QString answer = directory.filePath(QStringLiteral("typed"));
    QProcess xterm;
    xterm.start("xterm", {"-e", "sh", "-c", "read line; printf %s \"$line\" > " + answer});
    Keyboard keyboard;
    ASSERT_TRUE(await([&] { return keyboard.focus(u"XTerm"); }, 10000));
    pasteboard->write({textItem("echo ciao\n")});
    pasteboard->ownPrimary();
    keyboard.strike(0xff63, 0xffe1); // Shift+Insert
    EXPECT_TRUE(await([&] { return xterm.state() == QProcess::NotRunning; }, 10000));
    QFile file(answer);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), QByteArray("echo ciao"));
}
