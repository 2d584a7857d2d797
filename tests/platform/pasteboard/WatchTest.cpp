#include "tests/platform/pasteboard/PasteboardTest.h"

#include <QElapsedTimer>

// When the count moves, and whose content is published.

namespace {

class WatchTest : public PasteboardTest {
protected:
    // Waits until everything that was done is counted, a clear's grace included.
    qint64 count()
    {
        settle();
        return pasteboard->changeCount();
    }

    Owner owner;
};

} // namespace

TEST_F(WatchTest, WhatIsThereAtStartIsReadAsThePolicyHasItButCountsAsNoChange)
{
    owner.offer("UTF8_STRING", "already there");
    copy(owner);
    owner.asked.clear();
    for (const bool paused : {true, false}) {
        const auto second = makePasteboard();
        second->setPolicy(policyWith(&PasteboardPolicy::paused, paused));
        bool settled = false;
        second->whenSettled([&] { settled = true; });
        ASSERT_TRUE(await([&] { return settled; }));
        EXPECT_EQ(second->changeCount(), 0);
        EXPECT_EQ(owner.asked.isEmpty(), paused);
        EXPECT_EQ(second->snapshot()->items,
                  paused ? std::vector<PasteboardItem>() : std::vector{textItem("already there")});
    }
}

TEST_F(WatchTest, EveryCopyCountsTheSameBytesToo)
{
    owner.offer("UTF8_STRING", "same");
    const qint64 before = pasteboard->changeCount();
    owner.claim();
    EXPECT_EQ(count(), before + 1);
    owner.claim();
    EXPECT_EQ(count(), before + 2);
    EXPECT_EQ(pasteboard->snapshot()->changeCount, before + 2);
}

TEST_F(WatchTest, LettingGoAndClaimingAgainIsOneChange)
{
    owner.offer("UTF8_STRING", "writer");
    owner.claim();
    const qint64 before = count();
    owner.letGo();
    owner.claim();
    EXPECT_EQ(count(), before + 1);
    EXPECT_EQ(text(), QByteArray("writer"));
}

TEST_F(WatchTest, AClearOnPurposeAndAnEmptyTextAreAChangeWithoutItems)
{
    owner.offer("UTF8_STRING", "gone soon");
    owner.claim();
    const qint64 before = count();
    owner.letGo();
    EXPECT_EQ(count(), before + 1);
    EXPECT_TRUE(items().empty());
    owner.forgetOffers();
    owner.offer("UTF8_STRING", "").offer("x/refused", {"", Owner::Form::Manner::refuse});
    owner.claim();
    EXPECT_EQ(count(), before + 2);
    EXPECT_TRUE(items().empty());
}

TEST_F(WatchTest, WhatWasReadWhenTheOwnerLetsGoIsKeptUntilTheClear)
{
    owner.offer("UTF8_STRING", "first").offer("x/second", "second");
    owner.beforeAnswering = [&] { owner.letGo(); }; // as a file manager does after a cut
    const qint64 before = pasteboard->changeCount();
    owner.claim();
    ASSERT_TRUE(await([&] { return !items().empty(); }));
    EXPECT_EQ(text(), QByteArray("first")); // the answer that was under way
    EXPECT_EQ(bytes(u"x/second"), std::nullopt);
    EXPECT_EQ(count(), before + 2); // the copy and the clear
    EXPECT_TRUE(items().empty());
}

TEST_F(WatchTest, AWriteIsTheSnapshotBeforeItReturns)
{
    const qint64 before = pasteboard->changeCount();
    PasteboardItem item = textItem("mine");
    item.representations.push_back({QStringLiteral("x/none"), std::nullopt});
    EXPECT_EQ(pasteboard->write({item, PasteboardItem()}), before + 1);
    EXPECT_EQ(pasteboard->changeCount(), before + 1);
    EXPECT_EQ(items(), std::vector{textItem("mine")});
    EXPECT_EQ(count(), before + 1); // its own event adds nothing
    EXPECT_EQ(pasteboard->snapshot()->frontApplication->bundleIdentifier, QStringLiteral("com.norvane.app"));
    pasteboard->write({}); // empties the clipboard
    EXPECT_TRUE(items().empty());
    settle();
    EXPECT_EQ(requestor.convert("UTF8_STRING"), std::nullopt);
}

TEST_F(WatchTest, AWriteNeverWaitsForAHungOwnerAndReplacesIt)
{
    owner.hangs = true;
    owner.claim();
    ASSERT_TRUE(await([&] { return owner.wasAskedFor("TARGETS"); }));
    QElapsedTimer time;
    time.start();
    const qint64 written = pasteboard->write({textItem("mine")});
    EXPECT_LT(time.elapsed(), 400) << "not the half second that its silence may last";
    EXPECT_EQ(count(), written);
    EXPECT_EQ(text(), QByteArray("mine"));
}

TEST_F(WatchTest, AReadThatBeganBeforeAWriteIsDroppedAndOneAfterItIsNot)
{
    owner.offer("UTF8_STRING", "before");
    owner.claim();
    owner.beforeAnswering = [&] { pasteboard->write({textItem("mine")}); };
    ASSERT_TRUE(await([&] { return items() == std::vector{textItem("mine")}; }));
    const qint64 written = pasteboard->changeCount();
    EXPECT_EQ(count(), written);
    EXPECT_EQ(text(), QByteArray("mine"));

    Owner after;
    after.offer("UTF8_STRING", "after");
    after.claim();
    EXPECT_EQ(count(), written + 1);
    EXPECT_EQ(text(), QByteArray("after"));
}

TEST_F(WatchTest, ACopyThatWaitsToBePublishedGivesWayToAWrite)
{
    // Copies are published without their owner, which has no turn here.
    pasteboard->setPolicy(policyWith(&PasteboardPolicy::paused, true));
    for (int delay = 0; delay < 60; ++delay) {
        owner.claim();
        for (int i = 0; i < delay; ++i)
            owner.sync();
        const qint64 written = pasteboard->write({textItem("mine")});
        EXPECT_EQ(count(), written);
        EXPECT_EQ(text(), QByteArray("mine"));
    }
}

TEST_F(WatchTest, CopiesThatWereNotTakenInTimeAreAllCounted)
{
    pasteboard->setPolicy(policyWith(&PasteboardPolicy::paused, true));
    const qint64 before = count();
    for (int i = 0; i < 100; ++i) { // without a turn of the main loop
        owner.claim();
        for (int pause = 0; pause < 20; ++pause)
            owner.sync();
    }
    EXPECT_EQ(count(), before + 100);
}

TEST_F(WatchTest, SettledIsImmediateWhenNothingIsRead)
{
    settle();
    bool settled = false;
    pasteboard->whenSettled([&] { settled = true; });
    EXPECT_TRUE(settled);

    owner.offer("UTF8_STRING", "now");
    owner.claim();
    settled = false;
    pasteboard->whenSettled([&] { settled = true; });
    EXPECT_FALSE(settled); // the copy is known, though its event may have been on its way
    ASSERT_TRUE(await([&] { return settled; }));
    EXPECT_EQ(text(), QByteArray("now"));
}

TEST_F(WatchTest, NobodyWaitsWhenThePasteboardIsDestroyedInTheMiddleOfAHungRead)
{
    owner.hangs = true;
    owner.claim();
    pasteboard->readText([](const QString &) { ADD_FAILURE() << "called back after the end"; });
    ASSERT_TRUE(await([&] { return owner.wasAskedFor("TARGETS"); }));
    QElapsedTimer time;
    time.start();
    pasteboard.reset();
    EXPECT_LT(time.elapsed(), 450) << "not the half second that its silence may last";
}
