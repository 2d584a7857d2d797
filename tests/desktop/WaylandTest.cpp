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
    static constexpr uint escape = 1, enter = 28, control = 29, alt = 56, v = 47, x = 45, y = 21, z = 44;

    SessionKeyboard()
    {
        const auto reply = call(QStringLiteral("/org/gnome/Mutter/RemoteDesktop"), service,
                                QStringLiteral("CreateSession"), {});
        session = reply.arguments().value(0).value<QDBusObjectPath>().path();
        call(session, service + QStringLiteral(".Session"), QStringLiteral("Start"), {});
    }

    void chord(std::initializer_list<uint> keys) const
    {
        for (const uint key : keys)
            send(key, true);
        for (auto key = std::rbegin(keys); key != std::rend(keys); ++key)
            send(*key, false);
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

    // The session has no keyboard before the first key, which is lost. What has been typed when one arrived.
    QByteArray awaitKeyboard(const Target &entry) const
    {
        const auto arrived = [&entry] { return !entry.content().isEmpty(); };
        for (int tries = 0; tries < 10; ++tries) {
            keyboard->chord({SessionKeyboard::z});
            if (stage.desktop.waitFor(arrived, Stage::quiet))
                break;
        }
        require(arrived(), QStringLiteral("the session's keyboard does not type"));
        stage.desktop.staysFalse([] { return false; }, Stage::quiet); // more of them may be on their way
        return entry.content();
    }

    void awaitSearch(const QString &text) const
    {
        require(stage.desktop.waitFor([&] { return stage.searchText() == text; }),
                QStringLiteral("the search field holds \"%1\"").arg(stage.searchText()));
    }

    Stage stage{QStringLiteral(NORVANE_PROGRAM), QDir(qEnvironmentVariable("HOME"))};
    std::unique_ptr<SessionKeyboard> keyboard;
};

TEST_F(InAWaylandSession, OpensByTheCommandLineAndTheHotKeyAndPastesIntoWhatWasInFront)
{
    show([this] {
        const Target entry = stage.openQtEntry();
        const QByteArray before = awaitKeyboard(entry);
        stage.copy("first choice");
        stage.copy("second one");
        toggle();
        const auto panel = stage.awaitPanel();
        keyboard->chord({SessionKeyboard::x});
        keyboard->chord({SessionKeyboard::y});
        awaitSearch(QStringLiteral("xy"));
        EXPECT_EQ(stage.desktop.activeWindow(), panel);
        toggle();
        stage.awaitNoPanel();
        require(stage.desktop.waitFor([&] { return stage.desktop.hasKeyboard(entry.window); }),
                QStringLiteral("the keyboard did not go back"));
        keyboard->chord({SessionKeyboard::z});
        stage.awaitContent(entry, before + "z");

        keyboard->chord({SessionKeyboard::control, SessionKeyboard::alt, SessionKeyboard::v});
        stage.awaitPanel();
        keyboard->chord({SessionKeyboard::enter});
        stage.awaitContent(entry, before + "zsecond one");

        const Target terminal = stage.openTerminal();
        toggle();
        stage.awaitPanel();
        keyboard->chord({SessionKeyboard::enter});
        stage.awaitContent(terminal, "second one");
        EXPECT_EQ(entry.content(), before + "zsecond one");
        QFile log(stage.logFile(QStringLiteral("norvane.log")));
        require(log.open(QIODevice::ReadOnly), QStringLiteral("no log"));
        EXPECT_EQ(log.readAll().count("in this Wayland session"), 1) << "what works is said once";
    });
}

} // namespace
