#include "Platform/linux/compose/LinuxPlatform.h"

#include "tests/support/Probe.h"
#include "tests/support/Variable.h"

#include <gtest/gtest.h>
#include <pwd.h>
#include <unistd.h>

namespace {

TEST(TerminationSignals, EndTheProgramCleanlyWhateverItsWindowsSay)
{
    for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
        Probe program(QStringLiteral(PLATFORM_PROBE));
        ASSERT_EQ(program.nextLine(), "ready");
        program.signal(number);
        EXPECT_EQ(program.nextLine(), "ended") << number;
        EXPECT_TRUE(program.awaitEnd()) << number;
        EXPECT_EQ(program.process.exitStatus(), QProcess::NormalExit) << number;
        EXPECT_EQ(program.process.exitCode(), 0) << number;
    }
}

TEST(TerminationSignals, SentAgainEndAProgramThatHangs)
{
    Probe program(QStringLiteral(PLATFORM_PROBE), {"hang"});
    ASSERT_EQ(program.nextLine(), "ready");
    EXPECT_TRUE(QTest::qWaitFor([&] {
        program.signal(SIGTERM); // until the first has been noted
        return program.process.state() == QProcess::NotRunning;
    }));
    EXPECT_EQ(program.process.exitStatus(), QProcess::CrashExit);
}

TEST(LinuxPlatform, AWaylandSessionIsUsedThroughX11)
{
    struct Case {
        const char *plugin, *wayland, *session;
        const char *used;
    };
    for (const auto &[plugin, wayland, session, used] : {Case{"", "wayland-0", "wayland", "xcb"},
                                                         {"", "", "wayland", "xcb"},
                                                         {"wayland", "wayland-0", "", "xcb"},
                                                         {"wayland;xcb", "wayland-0", "", "xcb"},
                                                         {"", "", "x11", ""},
                                                         {"offscreen", "wayland-0", "wayland", "offscreen"},
                                                         {"xcb", "wayland-0", "wayland", "xcb"}}) {
        const Variable first("QT_QPA_PLATFORM", plugin), second("WAYLAND_DISPLAY", wayland),
            third("XDG_SESSION_TYPE", session);
        prepareLinuxEnvironment();
        EXPECT_EQ(qgetenv("QT_QPA_PLATFORM"), used) << plugin << ' ' << wayland << ' ' << session;
    }
}

TEST(LinuxPlatform, AMissingHomeIsTheUsersOwn)
{
    const Variable home("HOME");
    const QByteArray own = ::getpwuid(::getuid())->pw_dir;
    const std::pair<QByteArray, QByteArray> cases[] = {
        {"", own}, {"/elsewhere", "/elsewhere"}, {QByteArray(), own}};
    for (const auto &[given, used] : cases) {
        home.set(given);
        prepareLinuxEnvironment();
        EXPECT_EQ(qgetenv("HOME"), used);
    }
}

TEST(LinuxPlatform, ADisplayThatIsMissingIsNamed)
{
    QString problem;
    EXPECT_TRUE(reachDisplay(problem));
    const Variable display("DISPLAY");
    for (const char *missing : {":64999", "nonsense"}) {
        display.set(missing);
        EXPECT_FALSE(reachDisplay(problem));
        EXPECT_TRUE(problem.contains(QLatin1String(missing))) << problem.toStdString();
    }
    display.set({});
    EXPECT_FALSE(reachDisplay(problem));
    EXPECT_TRUE(problem.contains(u"DISPLAY is not set")) << problem.toStdString();
}

} // namespace
