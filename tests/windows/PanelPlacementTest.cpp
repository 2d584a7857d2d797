#include "Norvane/PanelPlacement.h"

#include <gtest/gtest.h>

using PanelPlacement::Rect;
using PanelPlacement::Screen;

namespace {

// A 1920 × 1080 screen with a 30-point bar at its top, and a smaller one to its right.
const Screen large{{0, 0, 1920, 1080}, {0, 0, 1920, 1050}};
const Screen small{{1920, 0, 1250, 750}, {1920, 0, 1250, 750}};

struct PlacementCase {
    const char *what;
    QSizeF size;
    PopupPosition position;
    std::optional<Rect> caret;
    QPointF pointer;
    Rect expected;
};

} // namespace

TEST(PanelPlacementTest, SizeComesFromTheSettingsWithinItsLimits)
{
    EXPECT_EQ(PanelPlacement::initialSize(0, 0), QSizeF(780, 470));
    EXPECT_EQ(PanelPlacement::initialSize(300, 200), QSizeF(460, 300));
    EXPECT_EQ(PanelPlacement::initialSize(900, 0), QSizeF(900, 470));
    EXPECT_EQ(PanelPlacement::initialSize(1e300, -5), QSizeF(32767, 300));
}

TEST(PanelPlacementTest, OpensAtItsAnchorAndStaysInsideTheScreen)
{
    const Rect caretInTheMiddle{400, 600, 2, 18};
    const std::vector<PlacementCase> cases = {
        {"below the pointer", {780, 470}, PopupPosition::mouse, {}, {300, 800}, {300, 324, 780, 470}},
        {"a caret is no matter at the pointer",
         {780, 470},
         PopupPosition::mouse,
         caretInTheMiddle,
         {300, 800},
         {300, 324, 780, 470}},
        {"below the caret", {780, 470}, PopupPosition::caret, caretInTheMiddle, {0, 0}, {400, 124, 780, 470}},
        {"without a caret at the pointer",
         {780, 470},
         PopupPosition::caret,
         {},
         {300, 800},
         {300, 324, 780, 470}},
        {"above a caret near the bottom",
         {780, 470},
         PopupPosition::caret,
         Rect{400, 20, 2, 18},
         {0, 0},
         {400, 44, 780, 470}},
        {"pushed in from the top right corner",
         {780, 470},
         PopupPosition::mouse,
         {},
         {1919, 1079},
         {1132, 572, 780, 470}},
        {"8 % above the centre", {780, 470}, PopupPosition::center, {}, {10, 10}, {570, 374, 780, 470}},
        {"at most 80 % of the screen",
         {1200, 800},
         PopupPosition::mouse,
         {},
         {2000, 700},
         {2000, 94, 1000, 600}},
        {"outside every screen the main one counts",
         {780, 470},
         PopupPosition::center,
         {},
         {-500, 4000},
         {570, 374, 780, 470}},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        const Rect placed = PanelPlacement::place(c.size, c.position, c.caret, c.pointer, {large, small});
        EXPECT_DOUBLE_EQ(placed.x, c.expected.x);
        EXPECT_DOUBLE_EQ(placed.y, c.expected.y);
        EXPECT_DOUBLE_EQ(placed.width, c.expected.width);
        EXPECT_DOUBLE_EQ(placed.height, c.expected.height);
    }
}

TEST(PanelPlacementTest, FlippingThereAndBackChangesNothing)
{
    const QRectF qt(100, 200, 300, 400);
    const Rect flipped = PanelPlacement::flipped(qt, 1080);
    EXPECT_DOUBLE_EQ(flipped.y, 480);
    EXPECT_EQ(PanelPlacement::flipped(flipped, 1080), qt);
}
