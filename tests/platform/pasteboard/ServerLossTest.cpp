#include "tests/platform/pasteboard/PasteboardTest.h"
#include "tests/support/LogLines.h"
#include "tests/support/XServer.h"

#include <QElapsedTimer>

// What happens without an X server, and when it goes or hangs.

TEST(ServerLossTest, WithoutAServerThereIsNoPasteboard)
{
    const LogLines log;
    const Variable display("DISPLAY", ":nowhere");
    EXPECT_EQ(makePasteboard(), nullptr);
    EXPECT_EQ(log.count(), 1);
}

TEST(ServerLossTest, AServerThatGoesIsLoggedOnceAndEveryCallbackComes)
{
    const LogLines log;
    XServer server;
    const auto pasteboard = makePasteboard();
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
    ASSERT_TRUE(await([&] { return called == 2 && log.count() == 1; }));

    pasteboard->readText([&](const QString &text) {
        ++called;
        EXPECT_EQ(text, QStringLiteral("kept"));
    });
    pasteboard->whenSettled([&] { ++called; });
    pasteboard->ownPrimary();
    EXPECT_EQ(called, 4);
    pasteboard->write({textItem("still")});
    EXPECT_EQ(pasteboard->snapshot()->items, std::vector{textItem("still")});
    EXPECT_EQ(log.count(), 1);
}

TEST(ServerLossTest, AServerThatHangsHoldsNobody)
{
    const LogLines log;
    const XServer server;
    auto pasteboard = makePasteboard();
    ASSERT_TRUE(pasteboard);
    server.signal(SIGSTOP);
    QElapsedTimer time;
    time.start();
    pasteboard->write({textItem("mine")});
    pasteboard->ownPrimary();
    pasteboard->readText([](const QString &) {});
    pasteboard->whenSettled([] {});
    EXPECT_LT(time.elapsed(), 1000); // who waits here waits for ever
    pasteboard.reset();
    EXPECT_LT(time.elapsed(), 5000);
}
