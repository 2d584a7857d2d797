#include "Platform/KeyCodes.h"
#include "Platform/linux/x11/X11HotKeys.h"
#include "Platform/linux/x11/X11KeyEvents.h"
#include "Platform/linux/x11/X11KeyboardLayout.h"
#include "Platform/linux/x11/X11PanelSurface.h"
#include "Platform/linux/x11/X11Screens.h"
#include "Platform/linux/x11/X11Workspace.h"
#include "Platform/memory/MemoryPlatform.h"
#include "tests/platform/desktop/DesktopHarness.h"
#include "tests/support/LogLines.h"
#include "tests/support/XServer.h"

#include <array>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <thread>
#include <unistd.h>

namespace {

int unixSocket(const QByteArray &path, int (*open)(int, const sockaddr *, socklen_t))
{
    const int file = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    qstrncpy(address.sun_path, path.constData(), sizeof address.sun_path);
    EXPECT_EQ(open(file, reinterpret_cast<const sockaddr *>(&address), sizeof address), 0)
        << path.toStdString();
    return file;
}

// The server of the test, but an extension that it has by nature is not to be found: who asks for it by name
// asks for another one.
class Censor {
public:
    explicit Censor(QByteArray name) : hidden(std::move(name))
    {
        const QByteArray server = "/tmp/.X11-unix/X" + qgetenv("DISPLAY").mid(1);
        const int listener = unixSocket(socket, ::bind);
        ::listen(listener, 8);
        thread = std::thread([this, listener, server] { run(listener, server); });
    }
    ~Censor()
    {
        [[maybe_unused]] const auto written = ::write(end[1], "", 1);
        thread.join();
        ::unlink(socket.constData());
    }

    // A number that no server has: they begin at 0.
    const QByteArray display = ':' + QByteArray::number(30000 + ::getpid() % 20000);

private:
    void run(int listener, const QByteArray &server)
    {
        // Behind the first two, clients and servers take turns.
        std::vector<pollfd> files{{end[0], POLLIN, 0}, {listener, POLLIN, 0}};
        while (::poll(files.data(), files.size(), -1) >= 0 && files[0].revents == 0) {
            for (size_t i = 2; i < files.size(); ++i)
                if (files[i].revents != 0)
                    forward(files[i].fd, files[i ^ 1U].fd, i % 2 == 0);
            if (files[1].revents != 0) {
                files.push_back({::accept(listener, nullptr, nullptr), POLLIN, 0});
                files.push_back({unixSocket(server, ::connect), POLLIN, 0});
            }
        }
        for (size_t i = 1; i < files.size(); ++i)
            ::close(files[i].fd);
    }
    void forward(int from, int to, bool isRequest) const
    {
        QByteArray bytes(65536, 0);
        const auto size = ::read(from, bytes.data(), static_cast<size_t>(bytes.size()));
        if (size <= 0) {
            ::shutdown(to, SHUT_RDWR);
            return;
        }
        bytes.truncate(size);
        if (isRequest)
            bytes.replace(hidden, QByteArray(hidden.size(), '-'));
        [[maybe_unused]] const auto written =
            ::send(to, bytes.constData(), static_cast<size_t>(size), MSG_NOSIGNAL);
    }

    const QByteArray socket = "/tmp/.X11-unix/X" + display.mid(1);
    const QByteArray hidden;
    std::array<int, 2> end = [] {
        std::array<int, 2> files{};
        EXPECT_EQ(::pipe(files.data()), 0);
        return files;
    }();
    std::thread thread;
};

// All services of the desktop, made on the display of the moment.
struct Services {
    std::unique_ptr<X11HotKeys> hotKeys = X11HotKeys::create();
    X11KeyboardLayout layout;
    X11Workspace workspace{std::make_shared<MemoryDesktopEntries>()};
    X11PanelSurface surface{*hotKeys, workspace};
    X11KeyEvents keys{workspace, {}};
    X11Screens screens;

    void useAll()
    {
        static_cast<void>(hotKeys->registerHotKey(KeyCode::v, ModifierFlag::command));
        hotKeys->releaseKeyboard();
        hotKeys->endGrab();
        static_cast<void>(layout.layoutCharacter(KeyCode::v));
        static_cast<void>(workspace.frontmostApplication());
        static_cast<void>(screens.screens());
        keys.postPaste();
        surface.dismiss();
        QCoreApplication::processEvents();
    }
};

} // namespace

TEST(PoorServer, WithoutXtestTypesNothingAndSaysSo)
{
    const LogLines log;
    const XServer server({"XTEST"});
    Services services;
    EXPECT_FALSE(services.keys.canSynthesise());
    EXPECT_EQ(services.hotKeys->registerHotKey(KeyCode::v, ModifierFlag::command), 0);
    EXPECT_EQ(services.layout.layoutCharacter(KeyCode::v), QStringLiteral("v"));
    services.useAll();
    EXPECT_TRUE(log.mention(QStringLiteral("XTEST")));
}

TEST(PoorServer, ThatIsMissingRefusesEverything)
{
    const LogLines log;
    const Variable display("DISPLAY", ":9999");
    Services services;
    EXPECT_EQ(services.hotKeys->registerHotKey(KeyCode::v, ModifierFlag::command), -1);
    EXPECT_FALSE(services.keys.canSynthesise());
    EXPECT_EQ(services.workspace.frontmostApplication(), std::nullopt);
    EXPECT_EQ(services.layout.layoutCharacter(KeyCode::v), std::nullopt);
    services.useAll();
    EXPECT_GT(log.count(), 0);
}

TEST(PoorServer, ThatDiesLeavesUsAlive)
{
    XServer server;
    Services services;
    ASSERT_EQ(services.hotKeys->registerHotKey(KeyCode::v, ModifierFlag::command), 0);
    server.kill();
    services.useAll();
    EXPECT_NE(services.hotKeys->registerHotKey(KeyCode::v, ModifierFlag::command), 0);
    EXPECT_FALSE(services.keys.canSynthesise());
}

TEST(PoorServer, WithoutXkbTellsAutoRepeatAndFindsTheKeysAllTheSame)
{
    Neighbour neighbour;
    const LogLines log;
    Hand hand;
    const Censor censor("XKEYBOARD");
    const Variable display("DISPLAY", censor.display);
    Services services;
    EXPECT_TRUE(log.mention(QStringLiteral("no XKB extension")));
    int presses = 0;
    services.hotKeys->onPress = [&] {
        ++presses;
        services.hotKeys->releaseKeyboard();
    };
    ASSERT_EQ(services.hotKeys->registerHotKey(KeyCode::v, ModifierFlag::command | ModifierFlag::option), 0);
    for (const int expected : {1, 2}) {
        hand.press(Hand::control);
        hand.press(Hand::alt);
        hand.press(Hand::v);
        hand.release(Hand::v, 1200); // long enough to repeat itself
        hand.release(Hand::alt);
        hand.release(Hand::control);
        EXPECT_TRUE(
            QTest::qWaitFor([&] { return !hand.isDown(Hand::control) && presses >= expected; }, 5000));
        EXPECT_FALSE(QTest::qWaitFor([&] { return presses > expected; }, 200));
    }
    ASSERT_TRUE(neighbour.own("typed blindly"));
    services.keys.postPaste();
    EXPECT_TRUE(neighbour.waitForText(QStringLiteral("typed blindly")));
}

TEST(PoorServer, WithoutXInputClosesThePanelWhenItLosesTheFocus)
{
    Neighbour neighbour;
    const LogLines log;
    Hand hand;
    const Censor censor("XInputExtension");
    const Variable display("DISPLAY", censor.display);
    Services services;
    EXPECT_TRUE(log.mention(QStringLiteral("no XInput 2.2")));
    Panel panel;
    services.surface.adopt(&panel);
    services.surface.onDismissRequest = [&] { services.surface.dismiss(); };
    services.surface.present(QRect(300, 300, 400, 200));
    ASSERT_TRUE(
        QTest::qWaitFor([&] { return hand.focus() == panel.winId() && panel.isActiveWindow(); }, 3000));
    QTest::qWait(600); // so that it is not taken for a program that keeps the focus to itself
    if (runsUnderWindowManager())
        hand.click(neighbour.middle());
    else
        hand.setFocus(neighbour.window);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !panel.isVisible(); }, 3000));
    EXPECT_TRUE(neighbour.waitForFocus());
}
