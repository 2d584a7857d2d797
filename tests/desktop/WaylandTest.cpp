// The program in a Wayland session, where it runs as an X11 program: beside a compositor without a screen
// (NORVANE_WM=mutter-wayland in tests/support/private-desktop), whose own keyboard is played through the bus.
#include "tests/desktop/Stage.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QFile>
#include <gtest/gtest.h>

namespace {

const QString service = QStringLiteral("org.gnome.Mutter.RemoteDesktop");

// The keyboard of the session: its keys go wherever the compositor sends those of a real one.
class SessionKeyboard {
public:
    static constexpr uint x = 45, z = 44; // as the kernel numbers them

    SessionKeyboard()
    {
        const auto reply = call(QStringLiteral("/org/gnome/Mutter/RemoteDesktop"), service,
                                QStringLiteral("CreateSession"), {});
        session = reply.arguments().value(0).value<QDBusObjectPath>().path();
        call(session, service + QStringLiteral(".Session"), QStringLiteral("Start"), {});
    }

    void tap(uint key) const
    {
        send(key, true);
        send(key, false);
    }

private:
    void send(uint key, bool pressed) const
    {
        call(session, service + QStringLiteral(".Session"), QStringLiteral("NotifyKeyboardKeycode"),
             {key, pressed});
    }

    static QDBusMessage call(const QString &path, const QString &interface, const QString &method,
                             const QVariantList &arguments)
    {
        auto question = QDBusMessage::createMethodCall(service, path, interface, method);
        question.setArguments(arguments);
        const auto answer = QDBusConnection::sessionBus().call(question);
        require(answer.type() == QDBusMessage::ReplyMessage, method + u": " + answer.errorMessage());
        return answer;
    }

    QString session;
};

class InAWaylandSession : public testing::Test {
protected:
    void SetUp() override
    {
        show([this] {
            keyboard = std::make_unique<SessionKeyboard>();
            stage.managedPanel = true;
            // The program itself chooses what it runs on.
            stage.start(QStringLiteral("en"), QStringLiteral("data"), {QStringLiteral("QT_QPA_PLATFORM=")});
        });
    }

    void TearDown() override
    {
        show([this] { stage.quit(); });
    }

    template <typename Steps>
    void show(const Steps &steps)
    {
        try {
            steps();
        } catch (const StepFailure &failure) {
            FAIL() << failure.why.toStdString();
        }
    }

    void toggle() const
    {
        auto again = stage.commandLine();
        again.arguments << QStringLiteral("--toggle");
        again.log = stage.logFile(QStringLiteral("toggle.log"));
        Child child(again);
        require(child.awaitExit() == 0, QStringLiteral("--toggle failed"));
    }

    // Presses a letter until it has arrived: the X server hears of a moved focus before the compositor sends
    // the keys there, and the session has no keyboard before the first key.
    void pressUntil(uint key, const std::function<bool()> &arrived) const
    {
        for (int tries = 0; tries < 10 && !arrived(); ++tries) {
            keyboard->tap(key);
            stage.desktop.waitFor(arrived, Stage::quiet);
        }
        require(arrived(), QStringLiteral("the session's keyboard does not reach it"));
    }

    // What is there when several of them have arrived.
    QByteArray typeInto(const Target &entry) const
    {
        const QByteArray before = entry.content();
        pressUntil(SessionKeyboard::z, [&] { return entry.content() != before; });
        stage.desktop.staysFalse([] { return false; }, Stage::quiet);
        return entry.content();
    }

    Stage stage{QStringLiteral(NORVANE_PROGRAM), QDir(qEnvironmentVariable("HOME"))};
    std::unique_ptr<SessionKeyboard> keyboard;
};

TEST_F(InAWaylandSession, OpensByTheCommandLineAndTheHotKeyAndPastesIntoWhatWasInFront)
{
    show([this] {
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
        stage.keyboard.press(QStringLiteral("Enter"));
        stage.awaitContent(entry, typed + "second one");
        EXPECT_FALSE(stage.panel());

        const Target terminal = stage.openTerminal();
        toggle();
        stage.awaitPanel();
        stage.keyboard.press(QStringLiteral("Enter"));
        stage.awaitContent(terminal, "second one");
        EXPECT_EQ(entry.content(), typed + "second one");

        QFile log(stage.logFile(QStringLiteral("norvane.log")));
        require(log.open(QIODevice::ReadOnly), QStringLiteral("no log"));
        EXPECT_EQ(log.readAll().count("in this Wayland session"), 1) << "what works is said once";
    });
}

} // namespace
