#include "Platform/linux/x11/ClipboardWatch.h"
#include "Platform/memory/MemoryPlatform.h"
#include "tests/platform/pasteboard/PasteboardTest.h"

// Claims that another program was faster than, step by step.

namespace {

using Result = PasteboardConnection::Claim::Result;

class ClaimTest : public ::testing::Test {
protected:
    // What the clipboard's thread does between two waits.
    void turn()
    {
        while (const XEvent event = x->nextEvent()) {
            const TimePoint now = Clock::now();
            const auto type = event->response_type & 0x7f;
            if (x->isOwnerChange(*event))
                watch.handleOwnerChange(as<xcb_xfixes_selection_notify_event_t>(*event), sequenceOf(*event),
                                        now);
            else if (type == XCB_SELECTION_NOTIFY)
                watch.handleAnswer(as<xcb_selection_notify_event_t>(*event), now);
            else if (type == XCB_PROPERTY_NOTIFY)
                watch.handleProperty(as<xcb_property_notify_event_t>(*event), now);
        }
        watch.advance(Clock::now());
        x->flushedIntoEvents();
    }

    // The one copy that is told, in the end.
    void expectCopy(const QByteArray &text, qint64 writesSeen)
    {
        ASSERT_TRUE(await([&] {
            turn();
            return !copies.empty();
        }));
        turn();
        ASSERT_EQ(copies.size(), 1u);
        EXPECT_EQ(copies.front().changes, 1);
        EXPECT_EQ(copies.front().writesSeen, writesSeen);
        EXPECT_EQ(copies.front().items.front().data(PasteboardType::plainText), text);
    }

    std::unique_ptr<PasteboardConnection> x = PasteboardConnection::open();
    std::vector<ForeignCopy> copies;
    ClipboardWatch watch{*x,
                         std::make_shared<MemoryDesktopEntries>(),
                         {[this](ForeignCopy copy) { copies.push_back(std::move(copy)); },
                          [](auto, const auto &, const auto &) {}, [] {}}};
};

} // namespace

TEST_F(ClaimTest, WhatCameBeforeAConfirmedClaimIsForgotten)
{
    Owner owner;
    owner.offer("UTF8_STRING", "before");
    owner.claim();
    const auto claim = x->claim(x->atoms().clipboard); // the owner's event is still unseen
    ASSERT_EQ(claim.result, Result::confirmed);
    watch.noticeClaim(claim, 1);
    turn();
    EXPECT_FALSE(owner.wasAskedFor("TARGETS"));

    Owner next;
    next.offer("UTF8_STRING", "next");
    next.claim();
    expectCopy("next", 1);
}

TEST_F(ClaimTest, ARefusedClaimIsFollowedByTheRealOwnersContentOnce)
{
    Owner owner;
    owner.offer("UTF8_STRING", "later than our time");
    owner.claim();
    PasteboardConnection::Claim claim; // as the server leaves it when the owner's time is later than ours
    claim.result = Result::refused;
    claim.sequence = xcb_no_operation(x->raw()).sequence;
    claim.owner = owner.window();
    x->synchronize();
    watch.noticeClaim(claim, 7);
    expectCopy("later than our time", 7);
    EXPECT_EQ(owner.asked.count("TARGETS"), 1);
}

TEST_F(ClaimTest, EventsOfManyRequestsLaterAreStillInOrder)
{
    EXPECT_TRUE(isBefore(1, 2));
    EXPECT_FALSE(isBefore(2, 2));
    EXPECT_FALSE(isBefore(3, 2));
    EXPECT_TRUE(isBefore(0xfffffff0u, 5)); // the numbers wrap around
}
