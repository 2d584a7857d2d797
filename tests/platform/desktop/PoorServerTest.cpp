#include "Platform/KeyCodes.h"
#include "Platform/Log.h"
#include "Platform/linux/x11/X11HotKeys.h"
#include "Platform/linux/x11/X11KeyEvents.h"
#include "Platform/linux/x11/X11KeyboardLayout.h"
#include "Platform/linux/x11/X11PanelSurface.h"
#include "Platform/linux/x11/X11Screens.h"
#include "Platform/linux/x11/X11Workspace.h"
#include "tests/platform/desktop/DesktopHarness.h"

#include <gtest/gtest.h>

namespace {

class NoEntries : public DesktopEntries {
public:
    FrontApplication application(const WindowIdentity &) const override { return {}; }
    std::optional<QString> iconName(const QString &) const override { return std::nullopt; }
};

// Our own connections go to another display while this lives; Qt stays where it is.
class OtherDisplay {
public:
    explicit OtherDisplay(const QByteArray &display) { qputenv("DISPLAY", display); }
    ~OtherDisplay() { qputenv("DISPLAY", usual); }

private:
    QByteArray usual = qgetenv("DISPLAY");
};

class Server {
public:
    explicit Server(const QStringList &without)
    {
        QStringList arguments = {QStringLiteral("-displayfd"), QStringLiteral("1"),
                                 QStringLiteral("-nolisten"), QStringLiteral("tcp"),
                                 QStringLiteral("-noreset")};
        for (const QString &extension : without)
            arguments << QStringLiteral("-extension") << extension;
        process.start(QStringLiteral("Xvfb"), arguments);
        EXPECT_TRUE(QTest::qWaitFor([this] { return process.canReadLine(); }, 15000));
        display = ':' + process.readLine().trimmed();
    }
    ~Server() { kill(); }
    void kill()
    {
        process.kill();
        process.waitForFinished(5000);
    }
    QByteArray display;

private:
    QProcess process;
};

// All services of the desktop, made on the display of the moment.
struct Services {
    std::unique_ptr<X11HotKeys> hotKeys = X11HotKeys::create();
    X11KeyboardLayout layout;
    X11Workspace workspace{std::make_shared<NoEntries>()};
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

class LogLines {
public:
    LogLines()
    {
        setLogSink([this](const QString &line) { lines << line; });
    }
    ~LogLines() { setLogSink({}); }
    [[nodiscard]] bool mention(const QString &word) const
    {
        return lines.join(QLatin1Char('\n')).contains(word);
    }
    QStringList lines;
};

} // namespace

TEST(PoorServer, WithoutXtestTypesNothingAndSaysSo)
{
    Server server({QStringLiteral("XTEST")});
    LogLines log;
    const OtherDisplay display(server.display);
    Services services;
    EXPECT_FALSE(services.keys.canSynthesise());
    EXPECT_EQ(services.hotKeys->registerHotKey(KeyCode::v, ModifierFlag::command), 0);
    EXPECT_EQ(services.layout.layoutCharacter(KeyCode::v), QStringLiteral("v"));
    services.useAll();
    EXPECT_TRUE(log.mention(QStringLiteral("XTEST")));
}

TEST(PoorServer, ThatIsMissingRefusesEverything)
{
    LogLines log;
    const OtherDisplay display(":9999");
    Services services;
    EXPECT_EQ(services.hotKeys->registerHotKey(KeyCode::v, ModifierFlag::command), -1);
    EXPECT_FALSE(services.keys.canSynthesise());
    EXPECT_EQ(services.workspace.frontmostApplication(), std::nullopt);
    EXPECT_EQ(services.layout.layoutCharacter(KeyCode::v), std::nullopt);
    services.useAll();
    EXPECT_FALSE(log.lines.isEmpty());
}

TEST(PoorServer, ThatDiesLeavesUsAlive)
{
    Server server({});
    const OtherDisplay display(server.display);
    Services services;
    ASSERT_EQ(services.hotKeys->registerHotKey(KeyCode::v, ModifierFlag::command), 0);
    server.kill();
    services.useAll();
    EXPECT_NE(services.hotKeys->registerHotKey(KeyCode::v, ModifierFlag::command), 0);
    EXPECT_FALSE(services.keys.canSynthesise());
}
