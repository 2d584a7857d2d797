#include "Norvane/PanelPlacement.h"

#include <gtest/gtest.h>

using PanelPlacement::Rect;
using PanelPlacement::Screen;

TEST(PanelPlacementTest, SizeComesFromTheSettingsWithinItsLimits)
{
    EXPECT_EQ(PanelPlacement::initialSize(0, 0), QSizeF(780, 470));
    EXPECT_EQ(PanelPlacement::initialSize(300, 200), QSizeF(460, 300));
    EXPECT_EQ(PanelPlacement::initialSize(900, 0), QSizeF(900, 470));
    EXPECT_EQ(PanelPlacement::initialSize(1e300, -5), QSizeF(32767, 300));
}

TEST(PanelPlacementTest, OpensAtItsAnchorAndStaysInsideTheScreen)
{
    // A 1920 × 1080 screen with a 30-point bar at its top, and a smaller one to its right.
    const std::vector<Screen> screens{{{0, 0, 1920, 1080}, {0, 0, 1920, 1050}},
                                      {{1920, 0, 1250, 750}, {1920, 0, 1250, 750}}};
    const Rect middle{400, 600, 2, 18}, low{400, 20, 2, 18};
    const QSizeF size(780, 470);
    using enum PopupPosition;
    const struct {
        const char *what;
        QSizeF size;
        PopupPosition position;
        std::optional<Rect> caretPlace;
        QPointF pointer;
        Rect expected;
    } cases[] = {
        {"below the pointer", size, mouse, {}, {300, 800}, {300, 324, 780, 470}},
        {"a caret is no matter there", size, mouse, middle, {300, 800}, {300, 324, 780, 470}},
        {"below the caret", size, caret, middle, {0, 0}, {400, 124, 780, 470}},
        {"no caret: the pointer", size, caret, {}, {300, 800}, {300, 324, 780, 470}},
        {"above a low caret", size, caret, low, {0, 0}, {400, 44, 780, 470}},
        {"pushed in", size, mouse, {}, {1919, 1079}, {1132, 572, 780, 470}},
        {"8 % above the centre", size, center, {}, {10, 10}, {570, 374, 780, 470}},
        {"at most 80 % of the screen", {1200, 800}, mouse, {}, {2000, 700}, {2000, 94, 1000, 600}},
        {"beyond every screen: the main one", size, center, {}, {-500, 4000}, {570, 374, 780, 470}},
    };
    for (const auto &each : cases) {
        const Rect placed =
            PanelPlacement::place(each.size, each.position, each.caretPlace, each.pointer, screens);
        EXPECT_EQ(PanelPlacement::flipped(placed, 0), PanelPlacement::flipped(each.expected, 0)) << each.what;
    }
}
