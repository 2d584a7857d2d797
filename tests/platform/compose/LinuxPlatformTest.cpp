#include "Platform/linux/compose/LinuxPlatform.h"

#include "Platform/Log.h"

#include <QProcess>
#include <QtTest/QTest>
#include <array>
#include <csignal>
#include <gtest/gtest.h>
#include <pwd.h>
#include <tuple>
#include <unistd.h>
#include <vector>

namespace {

class ProbeTest : public ::testing::Test {
protected:
    void start(const QStringList &arguments = {})
    {
        probe.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        probe.start(QStringLiteral(PLATFORM_PROBE), arguments);
        ASSERT_EQ(nextLine(), "ready");
    }

    QByteArray nextLine()
    {
        while (!probe.canReadLine()) {
            if (!probe.waitForReadyRead(10000))
                return "nothing";
        }
        return probe.readLine().trimmed();
    }

    void signal(int number) const
    {
        if (const auto process = static_cast<pid_t>(probe.processId()); process > 0) // 0 would be all of us
            ::kill(process, number);
    }

    QProcess probe;
};

TEST_F(ProbeTest, EveryTerminationSignalEndsTheProgramCleanlyWhateverItsWindowsSay)
{
    for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
        start();
        signal(number);
        EXPECT_EQ(nextLine(), "ended") << number;
        EXPECT_TRUE(probe.waitForFinished(10000)) << number;
        EXPECT_EQ(probe.exitStatus(), QProcess::NormalExit) << number;
        EXPECT_EQ(probe.exitCode(), 0) << number;
    }
}

TEST_F(ProbeTest, TheSameSignalAgainEndsAProgramThatHangs)
{
    start({"hang"});
    signal(SIGTERM);
    EXPECT_TRUE(QTest::qWaitFor([this] {
        signal(SIGTERM); // until the first has been noted
        return probe.state() == QProcess::NotRunning;
    }));
    EXPECT_EQ(probe.exitStatus(), QProcess::CrashExit);
}

class EnvironmentTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        for (const char *name : names)
            before.emplace_back(qgetenv(name));
    }
    void TearDown() override
    {
        for (size_t index = 0; index < before.size(); ++index)
            before[index].isEmpty() ? qunsetenv(names[index]) : qputenv(names[index], before[index]);
    }

    QByteArray prepared(const char *plugin, const char *wayland, const char *session)
    {
        qputenv("QT_QPA_PLATFORM", plugin);
        qputenv("WAYLAND_DISPLAY", wayland);
        qputenv("XDG_SESSION_TYPE", session);
        prepareLinuxEnvironment();
        return qgetenv("QT_QPA_PLATFORM");
    }

    static constexpr std::array<const char *, 3> names{"QT_QPA_PLATFORM", "WAYLAND_DISPLAY",
                                                       "XDG_SESSION_TYPE"};
    std::vector<QByteArray> before;
};

TEST_F(EnvironmentTest, AWaylandSessionIsUsedThroughX11)
{
    for (const auto &[plugin, wayland, session] : {std::tuple{"", "wayland-0", "wayland"},
                                                   {"", "", "wayland"},
                                                   {"wayland", "wayland-0", ""},
                                                   {"wayland;xcb", "wayland-0", ""}})
        EXPECT_EQ(prepared(plugin, wayland, session), "xcb");
    for (const auto &[plugin, wayland, session] :
         {std::tuple{"", "", "x11"}, {"offscreen", "wayland-0", "wayland"}, {"xcb", "wayland-0", "wayland"}})
        EXPECT_EQ(prepared(plugin, wayland, session), plugin);
}

TEST(LinuxPlatform, AMissingHomeIsTheUsersOwn)
{
    const QByteArray before = qgetenv("HOME");
    for (const char *given : {"", "/elsewhere"}) {
        qputenv("HOME", given);
        prepareLinuxEnvironment();
        EXPECT_EQ(qgetenv("HOME"), *given ? given : ::getpwuid(::getuid())->pw_dir);
    }
    qunsetenv("HOME");
    prepareLinuxEnvironment();
    EXPECT_EQ(qgetenv("HOME"), ::getpwuid(::getuid())->pw_dir);
    qputenv("HOME", before);
}

TEST(LinuxPlatform, HasEveryServiceAndNothingToSayAgainstThisDesktop)
{
    QStringList log;
    setLogSink([&log](const QString &line) { log.append(line); });
    {
        const auto platform = makeLinuxPlatform();
        EXPECT_TRUE(platform->defaults && platform->desktopEntries && platform->keyboardLayout &&
                    platform->workspace && platform->pasteboard && platform->hotKeys &&
                    platform->panelSurface && platform->keyEvents && platform->screens &&
                    platform->accessibility && platform->recognition);
        EXPECT_FALSE(platform->screens->screens().empty());
        const qint64 before = platform->pasteboard->changeCount();
        const QString plainText = QString::fromUtf16(PasteboardType::plainText);
        EXPECT_GT(platform->pasteboard->write({{{{plainText, "uno"}}}}), before);
        QString text;
        platform->pasteboard->readText([&text](const QString &read) { text = read; });
        EXPECT_TRUE(QTest::qWaitFor([&text] { return text == u"uno"; }));
    }
    setLogSink({});
    EXPECT_TRUE(log.isEmpty()) << log.join(u'\n').toStdString();
}

} // namespace

TEST(LinuxPlatform, ADisplayThatIsMissingIsNamed)
{
    const QByteArray display = qgetenv("DISPLAY");
    QString problem;
    EXPECT_TRUE(reachDisplay(problem));
    for (const char *missing : {":64999", "nonsense"}) {
        qputenv("DISPLAY", missing);
        EXPECT_FALSE(reachDisplay(problem));
        EXPECT_TRUE(problem.contains(QLatin1String(missing))) << problem.toStdString();
    }
    qunsetenv("DISPLAY");
    EXPECT_FALSE(reachDisplay(problem));
    EXPECT_TRUE(problem.contains(u"DISPLAY is not set")) << problem.toStdString();
    qputenv("DISPLAY", display);
}
