// What only a bare X server shows: no window manager here, and neighbours that are missing, hung or dying.
#include "tests/desktop/StageTest.h"

#include <QFile>
#include <QLocalServer>
#include <csignal>

namespace {

using Milliseconds = Desktop::Milliseconds;

// Each test ends Norvane by SIGTERM, which has to give exit status 0: with the sanitizers in, that is the
// leak check as well.
class BareDesktop : public StageTest {
protected:
    // Not waiting for an answer on the bus, which may be what is missing.
    void launch(const QStringList &variables = {}) { stage.launch("en", "data", variables); }

    void TearDown() override
    {
        if (!serverIsGone)
            stage.quit();
        QFile log(stage.logFile("norvane.log"));
        if (HasFailure() && log.open(QIODevice::ReadOnly))
            ADD_FAILURE() << log.readAll().toStdString();
    }

    // By the hot key, pressed again while nothing opens: at first it is not grabbed yet.
    void awaitOpening() const
    {
        stage.repeat([&] { stage.hotKey(); },
                     [&] { return stage.panel() && stage.desktop.hasKeyboard(*stage.panel()); },
                     "no panel opened");
    }

    bool serverIsGone = false;
};

TEST_F(BareDesktop, OpensWithoutASessionBus)
{
    launch({"DBUS_SESSION_BUS_ADDRESS=disabled:"});
    awaitOpening();
}

// A tray that takes icons is there: the toolkit would ask that bus before it makes one.
TEST_F(BareDesktop, OpensWhileTheSessionBusHangs)
{
    QLocalServer hungBus; // takes every caller, answers none
    ASSERT_TRUE(hungBus.listen(stage.scratchFile("bus")));
    const auto tray = stage.startTray();
    launch({"DBUS_SESSION_BUS_ADDRESS=unix:path=" + hungBus.fullServerName()});
    awaitOpening();
}

TEST_F(BareDesktop, SelectingInThePreviewLeavesThePrimarySelectionAlone)
{
    const auto &desktop = stage.desktop;
    const auto other = stage.run("sh", {"-c", "printf elsewhere | exec xclip -quiet -selection primary -i"});
    stage.await([&] { return desktop.selectionOwner("PRIMARY") != XCB_NONE; }, "no primary selection");
    const auto owner = desktop.selectionOwner("PRIMARY");
    const QByteArray text = "first second third\nfourth";
    stage.start();
    stage.copy(text);
    const QRect frame = desktop.geometry(stage.openPanel());
    const QPoint word(frame.left() + frame.width() * 57 / 100 + 12, frame.top() + 62);
    const struct {
        std::function<void()> select;
        QByteArray selected;
    } ways[] = {
        {[&] { stage.keyboard.click(word, 2); }, "first"},
        {[&] { stage.keyboard.click(word, 3); }, "first second third"},
        {[&] { stage.keyboard.drag(word + QPoint(frame.width() / 3, 0), word - QPoint(20, 0)); },
         "first second third"},
        {[&] { stage.press("Ctrl+A"); }, text},
    };
    for (const auto &[select, selected] : ways) {
        ASSERT_TRUE(stage.clipboard.set(text));
        const auto selectAndCopy = [&, select = select] {
            select();
            stage.press("Ctrl+C");
        };
        // The finished copy is what tells that the keys and clicks before it have been taken.
        stage.repeat(
            selectAndCopy, [&, selected = selected] { return stage.clipboard.read() == selected; },
            "not selected: " + QString(selected));
        EXPECT_EQ(desktop.selectionOwner("PRIMARY"), owner) << selected.toStdString();
    }
}

TEST_F(BareDesktop, OpensWhileTheClipboardOwnerHangs)
{
    ASSERT_TRUE(stage.clipboard.set("held back"));
    stage.clipboard.owner()->signal(SIGSTOP);
    launch();
    awaitOpening();

    // It was asked while it hung; its late answers must find our window, or they would end it.
    stage.clipboard.owner()->signal(SIGCONT);
    stage.awaitClipboard("held back");
    EXPECT_TRUE(stage.clipboard.owner()->isRunning());
    stage.copy("copied afterwards");
}

TEST_F(BareDesktop, EndsByItselfWhenTheServerGoesAndLosesNothing)
{
    const auto number = stage.scratchFile("display");
    const Child server(
        {"sh",
         {"-c", "exec Xvfb -displayfd 3 -screen 0 800x600x24 -nolisten tcp -noreset 3>\"$0\"", number}});
    const auto display = [&] {
        QFile file(number);
        return file.open(QIODevice::ReadOnly) ? QString(file.readAll()) : QString();
    };
    stage.await([&] { return display().endsWith(u'\n'); }, "no second X server");
    const QString variable = "DISPLAY=:" + display().trimmed();
    launch({variable});
    std::unique_ptr<Child> xclip;
    const auto copy = [&] { // again while nobody listens yet
        xclip = std::make_unique<Child>(
            Child::Setting{"sh", {"-c", "printf kept | exec xclip -quiet -sel clip -i"}, {}, {variable}});
    };
    stage.repeat(
        copy, [&] { return stage.isNewest("kept"); }, "the copy was not recorded");
    serverIsGone = true;
    server.signal(SIGKILL);
    EXPECT_TRUE(stage.norvane().awaitExit().has_value()) << "it hangs or was ended by a signal";
    EXPECT_TRUE(stage.isNewest("kept"));
}

} // namespace
