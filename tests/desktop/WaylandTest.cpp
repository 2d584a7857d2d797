// The program in a Wayland session, where it runs as an X11 program: beside a compositor without a screen
// (NORVANE_WM=mutter-wayland in tests/support/private-desktop), whose own keyboard is played through the bus.
#include "tests/desktop/StageTest.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QFile>

namespace {

const QString service = "org.gnome.Mutter.RemoteDesktop";

// The keyboard of the session: its keys go wherever the compositor sends those of a real one.
class SessionKeyboard {
public:
    static constexpr uint x = 45, z = 44; // as the kernel numbers them

    SessionKeyboard()
    {
        const auto reply = call("/org/gnome/Mutter/RemoteDesktop", service, "CreateSession", {});
        session = reply.arguments().value(0).value<QDBusObjectPath>().path();
        call(session, service + ".Session", "Start", {});
    }

    void tap(uint key) const
    {
        for (const bool pressed : {true, false})
            call(session, service + ".Session", "NotifyKeyboardKeycode", {key, pressed});
    }

private:
    static QDBusMessage call(const QString &path, const QString &interface, const QString &method,
                             const QVariantList &arguments)
    {
        auto question = QDBusMessage::createMethodCall(service, path, interface, method);
        question.setArguments(arguments);
        const auto answer = QDBusConnection::sessionBus().call(question);
        require(answer.type() == QDBusMessage::ReplyMessage, method + ": " + answer.errorMessage());
        return answer;
    }

    QString session;
};

class InAWaylandSession : public StageTest {
protected:
    void SetUp() override
    {
        keyboard = std::make_unique<SessionKeyboard>();
        stage.managedPanel = true;
        stage.start("en", "data", {"QT_QPA_PLATFORM="}); // the program itself chooses what it runs on
    }

    void TearDown() override { stage.quit(); }

    void toggle() const
    {
        require(Child(stage.commandLine({"--toggle"})).awaitExit() == 0, "--toggle failed");
    }

    // Presses a letter until it has arrived: the X server hears of a moved focus before the compositor sends
    // the keys there, and the session has no keyboard before the first key.
    void pressUntil(uint key, const std::function<bool()> &arrived) const
    {
        stage.repeat([&] { keyboard->tap(key); }, arrived, "the session's keyboard does not reach it",
                     Stage::quiet);
    }

    // What is there when several of them have arrived.
    QByteArray typeInto(const Target &entry) const
    {
        const QByteArray before = entry.content();
        pressUntil(SessionKeyboard::z, [&] { return entry.content() != before; });
        stage.desktop.staysFalse([] { return false; }, Stage::quiet);
        return entry.content();
    }

    std::unique_ptr<SessionKeyboard> keyboard;
};

TEST_F(InAWaylandSession, OpensByTheCommandLineAndTheHotKeyAndPastesIntoWhatWasInFront)
{
    const Target entry = stage.openQtEntry();
    QByteArray typed = typeInto(entry);
    stage.copy("first choice");
    stage.copy("second one");
    toggle();
    const auto panel = stage.awaitPanel();
    pressUntil(SessionKeyboard::x, [this] { return stage.searchText().startsWith(u'x'); });
    EXPECT_EQ(stage.desktop.activeWindow(), panel);
    EXPECT_EQ(entry.content(), typed);
    toggle();
    stage.awaitNoPanel();
    typed = typeInto(entry);

    stage.openPanel();
    stage.press("Enter");
    stage.awaitContent(entry, typed + "second one");
    EXPECT_FALSE(stage.panel());

    const Target terminal = stage.openTerminal();
    toggle();
    stage.awaitPanel();
    stage.press("Enter");
    stage.awaitContent(terminal, "second one");
    EXPECT_EQ(entry.content(), typed + "second one");

    QFile log(stage.logFile("norvane.log"));
    ASSERT_TRUE(log.open(QIODevice::ReadOnly));
    EXPECT_EQ(log.readAll().count("in this Wayland session"), 1) << "what works is said once";
}

} // namespace
