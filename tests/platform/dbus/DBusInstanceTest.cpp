#include "tests/support/Probe.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QLocalServer>
#include <QLocalSocket>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

enum class Way { bus, runtimeFolder, cacheFolder, deadBus, hungBus };

// Every way to the running instance, with folders of the test's own.
class InstanceTest : public ::testing::TestWithParam<Way> {
protected:
    void SetUp() override
    {
        for (const char *name : {"run", "cache", "home"})
            QDir(folder.path()).mkdir(QString::fromLatin1(name));
        const auto owner = QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner;
        const bool isOpen =
            GetParam() == Way::cacheFolder; // a runtime folder that others can enter is not used
        QFile::setPermissions(folder.filePath("run"), isOpen ? owner | QFile::ExeOther : owner);
        ASSERT_TRUE(hungBus.listen(folder.filePath("hung"))); // takes every caller, answers none
        environment.insert("XDG_RUNTIME_DIR", folder.filePath("run"));
        environment.insert("XDG_CACHE_HOME", folder.filePath("cache"));
        environment.insert("HOME", folder.filePath("home"));
        if (GetParam() == Way::deadBus)
            environment.insert("DBUS_SESSION_BUS_ADDRESS", "unix:path=" + folder.filePath("nothing"));
        else if (GetParam() == Way::hungBus)
            environment.insert("DBUS_SESSION_BUS_ADDRESS", "unix:path=" + hungBus.fullServerName());
        else if (GetParam() != Way::bus)
            environment.remove("DBUS_SESSION_BUS_ADDRESS");
    }

    void TearDown() override
    {
        EXPECT_FALSE(QFile::exists(folder.filePath("home/.dbus"))) << "a bus was started";
        const bool hasSocket = !QDir(folder.filePath("run")).entryList({"norvane-*"}, QDir::System).isEmpty();
        EXPECT_EQ(hasSocket, GetParam() != Way::bus && GetParam() != Way::cacheFolder);
        EXPECT_EQ(QFile::exists(folder.filePath("cache/norvane")), GetParam() == Way::cacheFolder);
    }

    // A process that wants to be the instance, or asks the running one.
    [[nodiscard]] std::unique_ptr<Probe> start(const QStringList &arguments = {"claim"}) const
    {
        return std::make_unique<Probe>(QStringLiteral(INSTANCE_PROBE), arguments, environment);
    }
    [[nodiscard]] QString claim() const { return start()->nextLine(); }
    [[nodiscard]] QString ask(const QString &action) const { return start({"ask", action})->nextLine(); }
    [[nodiscard]] std::unique_ptr<Probe> startFirst() const
    {
        auto first = start();
        EXPECT_EQ(first->nextLine(), "claimed");
        return first;
    }

    QTemporaryDir folder;
    QLocalServer hungBus;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
};

INSTANTIATE_TEST_SUITE_P(Ways, InstanceTest,
                         ::testing::Values(Way::bus, Way::runtimeFolder, Way::cacheFolder, Way::deadBus));

TEST_P(InstanceTest, TheSecondStartIsRefusedAndReachesTheFirst)
{
    EXPECT_EQ(ask("show"), "unanswered");
    const auto first = startFirst();
    EXPECT_EQ(claim(), "refused");
    for (const char *action : {"show", "toggle", "hide", "pause", "quit"}) {
        EXPECT_EQ(ask(action), "answered");
        EXPECT_EQ(first->nextLine(), QString::fromLatin1(action));
    }
    EXPECT_EQ(ask("clear"), "unanswered");
    EXPECT_EQ(ask(""), "unanswered");
    EXPECT_EQ(ask(QString(500, u'x')), "unanswered");
    EXPECT_EQ(ask("hide"), "answered");
    EXPECT_EQ(first->nextLine(), "hide") << "what it does not know is not passed on";
}

TEST_P(InstanceTest, AnInstanceThatDiedLeavesItsPlace)
{
    const auto first = startFirst();
    first->kill();
    EXPECT_EQ(ask("show"), "unanswered");
    const auto second = startFirst();
    EXPECT_EQ(ask("show"), "answered");
}

TEST_P(InstanceTest, AHungInstanceKeepsItsPlaceAndDelaysNobodyForLong)
{
    const auto first = startFirst();
    first->signal(SIGSTOP);
    QElapsedTimer elapsed;
    elapsed.start();
    EXPECT_EQ(ask("show"), "unanswered");
    EXPECT_LT(elapsed.elapsed(), 6000); // a second, and the start of a process on a busy machine
    EXPECT_EQ(claim(), "refused");
    first->signal(SIGCONT);
    EXPECT_EQ(ask("toggle"), "answered");
}

TEST_P(InstanceTest, EachDisplayHasItsInstance)
{
    environment.insert("DISPLAY", ":7");
    const auto first = startFirst();
    environment.insert("DISPLAY", "other.host:7.0");
    const auto elsewhere = startFirst();
    EXPECT_EQ(ask("show"), "answered");
    EXPECT_EQ(elsewhere->nextLine(), "show");
    environment.insert("DISPLAY", "unix:7.1"); // another screen of the first one
    EXPECT_EQ(claim(), "refused");
    EXPECT_EQ(ask("hide"), "answered");
    EXPECT_EQ(first->nextLine(), "hide");
}

class HungBusTest : public InstanceTest {};

INSTANTIATE_TEST_SUITE_P(HungBus, HungBusTest, ::testing::Values(Way::hungBus));

TEST_P(HungBusTest, ABusThatHangsIsLeftAloneAndKeepsNoProcess)
{
    const auto first = startFirst();
    const auto asker = start({"ask", "show"});
    EXPECT_EQ(asker->nextLine(), "answered");
    EXPECT_TRUE(asker->awaitEnd());
    EXPECT_EQ(asker->process.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(first->nextLine(), "show");
}

class DesktopCallTest : public InstanceTest {
protected:
    static QDBusMessage call(const QString &method, const QVariantList &arguments)
    {
        auto message = QDBusMessage::createMethodCall("com.norvane.app", "/com/norvane/app",
                                                      "org.freedesktop.Application", method);
        message.setArguments(arguments);
        return QDBusConnection::sessionBus().call(message, QDBus::Block, 5000);
    }
};

INSTANTIATE_TEST_SUITE_P(Bus, DesktopCallTest, ::testing::Values(Way::bus));

TEST_P(DesktopCallTest, TheDesktopReachesTheFirstInstanceUnderTheProgramsName)
{
    const auto first = startFirst();
    EXPECT_EQ(call("Activate", {QVariantMap()}).type(), QDBusMessage::ReplyMessage);
    EXPECT_EQ(first->nextLine(), "show");
    EXPECT_EQ(call("Open", {QStringList{"file:///a"}, QVariantMap()}).type(), QDBusMessage::ReplyMessage);
    EXPECT_EQ(first->nextLine(), "show");
    EXPECT_EQ(call("ActivateAction", {"toggle", QVariantList(), QVariantMap()}).type(),
              QDBusMessage::ReplyMessage);
    EXPECT_EQ(first->nextLine(), "toggle");
    EXPECT_EQ(call("ActivateAction", {"erase", QVariantList(), QVariantMap()}).errorName(),
              "org.freedesktop.DBus.Error.InvalidArgs");
}

TEST_P(DesktopCallTest, WhoHasNoDisplayReachesItToo)
{
    environment.insert("DISPLAY", ":7");
    const auto first = startFirst();
    environment.remove("DISPLAY");
    environment.remove("WAYLAND_DISPLAY");
    EXPECT_EQ(ask("toggle"), "answered");
    EXPECT_EQ(first->nextLine(), "toggle");
}

class HostileTest : public InstanceTest {
protected:
    QString socketPath() const
    {
        const QDir run(folder.filePath("run"));
        return run.filePath(run.entryList({"norvane-*"}, QDir::System).value(0));
    }
};

INSTANTIATE_TEST_SUITE_P(Socket, HostileTest, ::testing::Values(Way::runtimeFolder));

TEST_P(HostileTest, AskersThatSayNothingOrTooMuchAreLetGo)
{
    const auto first = startFirst();
    QLocalSocket silent, talkative;
    silent.connectToServer(socketPath());
    talkative.connectToServer(socketPath());
    ASSERT_TRUE(silent.waitForConnected(1000) && talkative.waitForConnected(1000));
    talkative.write(QByteArray(100000, 'x'));
    EXPECT_TRUE(talkative.waitForDisconnected(5000));
    EXPECT_EQ(ask("show"), "answered");
    EXPECT_EQ(first->nextLine(), "show");
    EXPECT_TRUE(silent.state() == QLocalSocket::UnconnectedState || silent.waitForDisconnected(5000));
}

} // namespace
