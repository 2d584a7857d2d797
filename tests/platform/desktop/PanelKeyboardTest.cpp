#include "Platform/linux/x11/PanelKeyboard.h"

#include "tests/platform/desktop/PanelOnDesktop.h"

namespace {

class AutomaticPanel : public PanelOnDesktop {};

INSTANTIATE_TEST_SUITE_P(Kinds, AutomaticPanel, ::testing::Values(PanelKind::automatic), nameOf);

class GrabbingPanel : public PanelOnDesktop {};

INSTANTIATE_TEST_SUITE_P(Kinds, GrabbingPanel, ::testing::Values(PanelKind::grabbing), nameOf);

} // namespace

TEST_P(GrabbingPanel, IsClosedByAHotKeyThatWasHeldWhenItOpened)
{
    Neighbour neighbour;
    for (int round = 1; round <= 2; ++round) {
        holdHotKey();
        ASSERT_TRUE(waitForPanelFocus());
        releaseHotKey(); // no longer seen by who waits for the hot key
        hand.tap(Hand::x);
        EXPECT_TRUE(waitForPanelText(QStringLiteral("x")));
        pressHotKey();
        ASSERT_TRUE(waitForClosed());
        EXPECT_EQ(presses, 2 * round);
        EXPECT_TRUE(neighbour.waitForFocus());
        QTest::qWait(50); // a finger needs longer to press again
    }
    EXPECT_EQ(neighbour.report().keys, 0);
}

TEST_P(GrabbingPanel, BecomesManagedWhereTheGrabIsRefused)
{
    Neighbour neighbour;
    Hand other;
    const XcbReply<xcb_grab_keyboard_reply_t> grab(
        xcb_grab_keyboard_reply(other.server().raw(),
                                xcb_grab_keyboard(other.server().raw(), 1, other.server().root(),
                                                  XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC),
                                nullptr));
    ASSERT_TRUE(grab && grab->status == XCB_GRAB_STATUS_SUCCESS);
    open();
    if (!runsUnderWindowManager()) {
        EXPECT_TRUE(log.mention(QStringLiteral("stays without the keyboard")));
        surface.dismiss();
        return;
    }
    EXPECT_TRUE(log.mention(QStringLiteral("asks the window manager")));
    EXPECT_FALSE(isUnmanaged());
    EXPECT_TRUE(QTest::qWaitFor([&] { return hand.focus() == panel.winId(); }, 3000));
    EXPECT_EQ(workspace.rememberedWindow(), neighbour.window);
    xcb_ungrab_keyboard(other.server().raw(), XCB_CURRENT_TIME);
    other.settle();
    EXPECT_TRUE(waitForPanelFocus());
    hand.tap(Hand::x);
    EXPECT_TRUE(waitForPanelText(QStringLiteral("x")));
    EXPECT_TRUE(isInItsPlace());
    surface.dismiss();
    EXPECT_TRUE(neighbour.waitForFocus());
    // The manager takes its time to let go of the window too.
    const auto isUnmanagedAgain = [&] {
        surface.dismiss();
        open();
        return isUnmanaged();
    };
    EXPECT_TRUE(QTest::qWaitFor(isUnmanagedAgain, 3000)) << "the next time the grab is tried again";
}

TEST_P(AutomaticPanel, KeepsTheKeyboardFromAProgramThatTakesItBackAtOnce)
{
    Neighbour neighbour;
    // It closes where the machine is too busy for "at once".
    for (int tries = 0; tries < 10 && !log.mention(QStringLiteral("grabs the keyboard")); ++tries) {
        open();
        ASSERT_TRUE(waitForPanelFocus());
        hand.setFocus(neighbour.window);
        ASSERT_TRUE(QTest::qWaitFor([&] { return log.count() > 0 || !surface.isPresented(); }, 3000));
    }
    hand.tap(Hand::x);
    EXPECT_TRUE(waitForPanelText(QStringLiteral("x")));
    surface.dismiss();
    hand.tap(Hand::y);
    EXPECT_TRUE(neighbour.waitForText(QStringLiteral("y")));
}
