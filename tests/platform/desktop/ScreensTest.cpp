#include "Platform/linux/x11/X11Screens.h"

#include "tests/platform/desktop/DesktopHarness.h"

#include <gtest/gtest.h>

TEST(Screens, ListTheOneThatIsThereAndKnowWhereThePointerIs)
{
    const X11Screens screens;
    Hand().click({321, 654});
    EXPECT_TRUE(QTest::qWaitFor([&] { return screens.pointer() == QPointF(321, 654); }, 2000));
    const auto areas = screens.screens();
    ASSERT_EQ(areas.size(), 1U);
    EXPECT_EQ(areas[0].frame, QRectF(0, 0, 1600, 1000));
    EXPECT_TRUE(areas[0].frame.contains(areas[0].visibleFrame)) << "a manager may have a taskbar of its own";
    EXPECT_GT(areas[0].visibleFrame.height(), 900);
}

TEST(Screens, LeaveOutADockOnItsEdge)
{
    if (!runsUnderWindowManager())
        GTEST_SKIP() << "without a window manager nobody lists the docks";
    const X11Screens screens;
    QWidget dock;
    dock.setGeometry(0, 0, 1600, 40);
    Hand hand;
    hand.makeDock(dock);
    const quint32 strut[12] = {0, 0, 40, 0, 0, 0, 0, 0, 0, 1599, 0, 0};
    xcb_change_property(hand.server().raw(), XCB_PROP_MODE_REPLACE, static_cast<quint32>(dock.winId()),
                        hand.server().atom("_NET_WM_STRUT_PARTIAL"), XCB_ATOM_CARDINAL, 32, 12, strut);
    hand.settle();
    dock.show();
    EXPECT_TRUE(
        QTest::qWaitFor([&] { return screens.screens()[0].visibleFrame == QRectF(0, 40, 1600, 960); }, 5000));
    EXPECT_EQ(screens.screens()[0].frame, QRectF(0, 0, 1600, 1000));
}
