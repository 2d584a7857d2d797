#include "Platform/Log.h"
#include "tests/platform/pasteboard/PasteboardTest.h"

#include <QElapsedTimer>
#include <QProcess>
#include <csignal>
#include <mutex>

// What happens without an X server, and when it goes or hangs.

namespace {

// An X server that the test may stop.
class ServerLossTest : public ::testing::Test {
public:
    ~ServerLossTest() override
    {
        setLogSink({});
        qputenv("DISPLAY", usualDisplay);
        ::kill(static_cast<pid_t>(server.processId()), SIGCONT);
        server.kill();
        server.waitForFinished();
    }

protected:
    ServerLossTest() : usualDisplay(qgetenv("DISPLAY"))
    {
        setLogSink([this](const QString &line) {
            const std::lock_guard lock(mutex);
            lines.push_back(line);
        });
        server.start("Xvfb",
                     {"-displayfd", "1", "-nolisten", "tcp", "-noreset", "-screen", "0", "320x200x24"});
        EXPECT_TRUE(await([&] { return server.canReadLine(); }, 20000));
        qputenv("DISPLAY", ':' + server.readLine().trimmed());
    }

    QStringList logged()
    {
        const std::lock_guard lock(mutex);
        return lines;
    }

    std::unique_ptr<X11Pasteboard> create() { return X11Pasteboard::create(std::make_shared<ClassNames>()); }

    QByteArray usualDisplay;
    QProcess server;
    std::mutex mutex;
    QStringList lines;
};

} // namespace

TEST_F(ServerLossTest, WithoutAServerThereIsNoPasteboard)
{
    qputenv("DISPLAY", ":nowhere");
    EXPECT_EQ(create(), nullptr);
    EXPECT_EQ(logged().size(), 1);
}

TEST_F(ServerLossTest, AServerThatGoesIsLoggedOnceAndEveryCallbackComes)
{
    const auto pasteboard = create();
    ASSERT_TRUE(pasteboard);
    auto owner = std::make_unique<Owner>();
    owner->hangs = true;
    owner->claim();
    ASSERT_TRUE(await([&] { return owner->wasAskedFor("TARGETS"); }));
    owner.reset();
    int called = 0;
    pasteboard->write({textItem("kept")});
    pasteboard->readText([&](const QString &) { ++called; });
    server.kill();
    pasteboard->whenSettled([&] { ++called; });
    ASSERT_TRUE(await([&] { return called == 2 && logged().size() == 1; }));

    pasteboard->readText([&](const QString &text) {
        ++called;
        EXPECT_EQ(text, QStringLiteral("kept"));
    });
    pasteboard->whenSettled([&] { ++called; });
    pasteboard->ownPrimary();
    EXPECT_EQ(called, 4);
    pasteboard->write({textItem("still")});
    EXPECT_EQ(pasteboard->snapshot()->items, std::vector{textItem("still")});
    EXPECT_EQ(logged().size(), 1);
}

TEST_F(ServerLossTest, AServerThatHangsHoldsNobody)
{
    auto pasteboard = create();
    ASSERT_TRUE(pasteboard);
    ::kill(static_cast<pid_t>(server.processId()), SIGSTOP);
    QElapsedTimer time;
    time.start();
    pasteboard->write({textItem("mine")});
    pasteboard->ownPrimary();
    pasteboard->readText([](const QString &) {});
    pasteboard->whenSettled([] {});
    EXPECT_LT(time.elapsed(), 400);
    time.restart();
    pasteboard.reset();
    EXPECT_LT(time.elapsed(), 1500);
}
