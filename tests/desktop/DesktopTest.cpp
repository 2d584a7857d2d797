// What only a bare X server shows: no window manager here, and neighbours that are missing, hung or dying.
#include "tests/desktop/Desktop.h"
#include "tests/desktop/Child.h"
#include "tests/desktop/Clipboard.h"
#include "tests/desktop/HistoryFile.h"
#include "tests/desktop/Keyboard.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QLocalServer>
#include <QTemporaryDir>
#include <csignal>
#include <gtest/gtest.h>

namespace {

using Milliseconds = Desktop::Milliseconds;

// Norvane started with a home of its own. Each test ends it by SIGTERM, which has to give exit status 0: with
// the sanitizers in, that is the leak check as well.
class BareDesktop : public testing::Test {
protected:
    void start(const QStringList &variables = {})
    {
        const auto settings = scratch.filePath(QStringLiteral("config/Norvane"));
        QDir().mkpath(settings);
        QFile file(settings + QStringLiteral("/settings.ini"));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("[General]\ndidShowWelcome=true\n");
        file.close();
        norvane = std::make_unique<Child>(Child::Setting{
            QStringLiteral(NORVANE_PROGRAM),
            {},
            scratch.filePath(QStringLiteral("norvane.log")),
            QStringList{QStringLiteral("LANGUAGE=en"),
                        QStringLiteral("XDG_DATA_HOME=") + scratch.filePath(QStringLiteral("data")),
                        QStringLiteral("XDG_CONFIG_HOME=") + scratch.filePath(QStringLiteral("config"))} +
                variables});
        ASSERT_TRUE(norvane->isRunning());
    }

    void TearDown() override
    {
        if (norvane) {
            norvane->signal(SIGTERM);
            EXPECT_EQ(norvane->awaitExit(), std::optional(0)) << log();
        }
    }

    [[nodiscard]] std::string log() const
    {
        QFile file(scratch.filePath(QStringLiteral("norvane.log")));
        return file.open(QIODevice::ReadOnly) ? file.readAll().toStdString() : std::string();
    }

    [[nodiscard]] std::optional<xcb_window_t> panel() const
    {
        return desktop.findWindow({QStringLiteral("Norvane"), {}, true, 400});
    }

    // By the hot key, pressed again while nothing opens: at first it is not grabbed yet.
    [[nodiscard]] bool panelOpens() const
    {
        return desktop.waitFor([&] {
            keyboard.press(QStringLiteral("Ctrl+Alt+V"), Milliseconds(100));
            return desktop.waitFor([&] { return panel() && desktop.hasKeyboard(*panel()); },
                                   Milliseconds(1000));
        });
    }

    [[nodiscard]] bool isNewest(const QString &text, Milliseconds bound = Desktop::patience) const
    {
        const HistoryFile history(scratch.filePath(QStringLiteral("data/Norvane/clips.sqlite")));
        return desktop.waitFor(
            [&] {
                const auto rows = history.rows();
                return rows && !rows->empty() && rows->front().text == text;
            },
            bound);
    }

    struct Entry {
        std::unique_ptr<Child> program;
        xcb_window_t window = XCB_NONE;
        QString file;
    };

    [[nodiscard]] Entry openEntry() const
    {
        const auto file = scratch.filePath(QStringLiteral("line"));
        Entry entry{std::make_unique<Child>(
                        Child::Setting{QCoreApplication::applicationDirPath() + QStringLiteral("/qt-entry"),
                                       {file, scratch.filePath(QStringLiteral("view"))},
                                       {},
                                       {}}),
                    XCB_NONE, file};
        entry.window = desktop.awaitWindow({QStringLiteral("qt-entry"), {}, {}, 0}).value_or(XCB_NONE);
        EXPECT_TRUE(entry.window != XCB_NONE && desktop.activate(entry.window));
        return entry;
    }

    static QByteArray contentOf(const Entry &entry)
    {
        QFile file(entry.file);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    QTemporaryDir scratch;
    Desktop desktop;
    Keyboard keyboard{desktop};
    Clipboard clipboard{desktop};
    std::unique_ptr<Child> norvane;
};

TEST_F(BareDesktop, PastesWithoutAWindowManager)
{
    ASSERT_FALSE(desktop.hasWindowManager());
    start();
    const auto entry = openEntry();
    ASSERT_TRUE(panelOpens()) << log();
    ASSERT_TRUE(clipboard.set("no manager here"));
    ASSERT_TRUE(isNewest(QStringLiteral("no manager here"))) << log();
    keyboard.press(QStringLiteral("Esc"));
    ASSERT_TRUE(desktop.waitFor([&] { return desktop.hasKeyboard(entry.window); }));

    keyboard.press(QStringLiteral("Ctrl+Alt+V"), Milliseconds(100));
    keyboard.type(QStringLiteral("manager"));
    keyboard.press(QStringLiteral("Enter"));
    EXPECT_TRUE(desktop.waitFor([&] { return contentOf(entry) == "no manager here"; })) << log();
}

TEST_F(BareDesktop, OpensWithoutASessionBus)
{
    start({QStringLiteral("DBUS_SESSION_BUS_ADDRESS=disabled:")});
    EXPECT_TRUE(panelOpens()) << log();
}

// A tray that takes icons is there: the toolkit would ask that bus before it makes one.
TEST_F(BareDesktop, OpensWhileTheSessionBusHangs)
{
    QLocalServer hungBus; // takes every caller, answers none
    ASSERT_TRUE(hungBus.listen(scratch.filePath(QStringLiteral("bus"))));
    const Child tray({QStringLiteral("trayer"), {}, {}, {}});
    ASSERT_TRUE(desktop.waitFor([&] { return desktop.selectionOwner("_NET_SYSTEM_TRAY_S0") != XCB_NONE; }));
    start({QStringLiteral("DBUS_SESSION_BUS_ADDRESS=unix:path=") + hungBus.fullServerName()});
    EXPECT_TRUE(panelOpens()) << log();
}

TEST_F(BareDesktop, SelectingInThePreviewLeavesThePrimarySelectionAlone)
{
    const Child other(
        {QStringLiteral("sh"),
         {QStringLiteral("-c"), QStringLiteral("printf elsewhere | exec xclip -quiet -selection primary -i")},
         {},
         {}});
    ASSERT_TRUE(desktop.waitFor([&] { return desktop.selectionOwner("PRIMARY") != XCB_NONE; }));
    const auto owner = desktop.selectionOwner("PRIMARY");
    start();
    ASSERT_TRUE(panelOpens()) << log();
    ASSERT_TRUE(clipboard.set("first second third\nfourth"));
    ASSERT_TRUE(isNewest(QStringLiteral("first second third\nfourth"))) << log();
    const QRect frame = desktop.geometry(*panel());
    const QPoint word(frame.left() + frame.width() * 57 / 100 + 12, frame.top() + 62);
    const struct {
        std::function<void()> select;
        QByteArray selected;
    } ways[] = {
        {[&] { keyboard.click(word, 2); }, "first"},
        {[&] { keyboard.click(word, 3); }, "first second third"},
        {[&] { keyboard.drag(word + QPoint(frame.width() / 3, 0), word - QPoint(20, 0)); },
         "first second third"},
        {[&] { keyboard.press(QStringLiteral("Ctrl+A")); }, "first second third\nfourth"},
    };
    for (const auto &way : ways) {
        ASSERT_TRUE(clipboard.set("first second third\nfourth"));
        // The finished copy is what tells that the keys and clicks before it have been taken.
        EXPECT_TRUE(desktop.waitFor([&] {
            way.select();
            keyboard.press(QStringLiteral("Ctrl+C"));
            return desktop.waitFor([&] { return clipboard.read() == way.selected; }, Milliseconds(1000));
        })) << way.selected.toStdString()
            << " is not selected but " << clipboard.read().value_or(QByteArray()).toStdString();
        EXPECT_EQ(desktop.selectionOwner("PRIMARY"), owner) << way.selected.toStdString();
    }
}

TEST_F(BareDesktop, OpensWhileTheClipboardOwnerHangs)
{
    ASSERT_TRUE(clipboard.set("held back"));
    clipboard.owner()->signal(SIGSTOP);
    start();
    EXPECT_TRUE(panelOpens()) << log();

    // It was asked while it hung; its late answers must find our window, or they would end it.
    clipboard.owner()->signal(SIGCONT);
    EXPECT_EQ(clipboard.read(), std::optional(QByteArray("held back")));
    EXPECT_TRUE(clipboard.owner()->isRunning());
    ASSERT_TRUE(clipboard.set("copied afterwards"));
    EXPECT_TRUE(isNewest(QStringLiteral("copied afterwards"))) << log();
}

TEST_F(BareDesktop, OutlivesTheProgramInFrontThatDiesUnderThePanel)
{
    start();
    const auto entry = openEntry();
    ASSERT_TRUE(panelOpens()) << log();
    entry.program->signal(SIGKILL);
    ASSERT_TRUE(entry.program->awaitEnd());
    keyboard.press(QStringLiteral("Esc"));
    EXPECT_TRUE(desktop.waitFor([&] { return !panel(); }));
    EXPECT_TRUE(panelOpens()) << log();
}

TEST_F(BareDesktop, EndsByItselfWhenTheServerGoesAndLosesNothing)
{
    const auto number = scratch.filePath(QStringLiteral("display"));
    Child server(
        {QStringLiteral("sh"),
         {QStringLiteral("-c"),
          QStringLiteral("exec Xvfb -displayfd 3 -screen 0 800x600x24 -nolisten tcp -noreset 3>\"$0\""),
          number},
         {},
         {}});
    const auto display = [&] {
        QFile file(number);
        return file.open(QIODevice::ReadOnly) ? QString::fromLatin1(file.readAll()) : QString();
    };
    ASSERT_TRUE(desktop.waitFor([&] { return display().endsWith(QLatin1Char('\n')); }));
    const QString variable = QStringLiteral("DISPLAY=:") + display().trimmed();
    start({variable});
    std::unique_ptr<Child> xclip;
    const auto recorded = [&] { // copied again while nobody listens yet
        xclip = std::make_unique<Child>(Child::Setting{
            QStringLiteral("sh"),
            {QStringLiteral("-c"), QStringLiteral("printf kept | exec xclip -quiet -sel clip -i")},
            {},
            {variable}});
        return isNewest(QStringLiteral("kept"), Milliseconds(1000));
    };
    ASSERT_TRUE(desktop.waitFor(recorded)) << log();
    server.signal(SIGKILL);
    EXPECT_TRUE(norvane->awaitExit().has_value()) << "it hangs or was ended by a signal\n" << log();
    norvane.reset();
    EXPECT_TRUE(isNewest(QStringLiteral("kept")));
}

} // namespace
