#include "tests/platform/pasteboard/PasteboardTest.h"
#include "tests/support/Heartbeat.h"

#include <atomic>
#include <thread>

// Many changes at once, from threads that know nothing of each other.

namespace {

// Qt's own X11 event thread is not built for the thread sanitizer, and no window of Qt's is needed here.
const bool withoutQtOnX11 = qputenv("QT_QPA_PLATFORM", "offscreen");

class StormTest : public PasteboardTest {};

// Claims again and again, and answers nobody.
void claimOften(int times)
{
    X11Client client;
    for (int i = 0; i < times; ++i)
        client.claim();
}

} // namespace

TEST_F(StormTest, AThousandClaimsAreCountedAndDoNotStallTheMainThread)
{
    const qint64 before = pasteboard->changeCount();
    std::atomic<bool> over = false;
    std::thread storm([&] {
        claimOften(1000);
        over = true;
    });
    Heartbeat heartbeat;
    EXPECT_TRUE(await([&] { return over.load(); }, 20000));
    storm.join();

    Owner last;
    last.offer("UTF8_STRING", "after the storm");
    copy(last);
    EXPECT_EQ(text(), QByteArray("after the storm"));
    EXPECT_EQ(pasteboard->changeCount(), before + 1001);
    EXPECT_LT(heartbeat.longest(), 500) << "a wait for one of these owners";
}

TEST_F(StormTest, WritesInAStormEndWithTheRealOwnersContent)
{
    for (int round = 0; round < 5; ++round) {
        std::thread storm([] { claimOften(200); });
        for (int i = 0; i < 100; ++i)
            pasteboard->write({textItem(QByteArray::number(i))});
        storm.join();
        pasteboard->write({textItem("mine")});
        settle();
        EXPECT_EQ(text(), QByteArray("mine"));
        EXPECT_EQ(requestor.text(), QByteArray("mine"));
    }
}

TEST_F(StormTest, APictureUnderWayGivesWayToTheNextCopy)
{
    Owner first;
    first.offer("image/bmp", encoded(filledImage(1200, 1200, Qt::darkGreen), "bmp"));
    Owner second;
    second.offer("UTF8_STRING", "second");
    const qint64 before = pasteboard->changeCount();
    for (int round = 0; round < 5; ++round) {
        first.claim();
        EXPECT_TRUE(await([&] { return first.wasAskedFor("image/bmp"); }));
        first.asked.clear();
        if (round % 2) {
            settle();
            EXPECT_EQ(types(), (QStringList{"image/bmp", "public.png"}));
        }
        second.claim();
        settle();
        EXPECT_EQ(types(), QStringList{"public.utf8-plain-text"});
    }
    EXPECT_EQ(pasteboard->changeCount(), before + 10);
}

TEST_F(StormTest, ManyPasteboardsComeAndGo)
{
    Owner owner;
    owner.offer("UTF8_STRING", "steady");
    owner.claim();
    for (int i = 0; i < 20; ++i) {
        auto another = makePasteboard();
        ASSERT_TRUE(another);
        another->readText([](const QString &) {});
        if (i % 2)
            another->write({textItem("x")});
        if (i % 3)
            another->ownPrimary();
    }
    settle();
}
