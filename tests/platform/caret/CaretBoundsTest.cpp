#include "Platform/linux/dbus/CaretBounds.h"

#include <gtest/gtest.h>
#include <vector>

namespace {

TEST(CaretBounds, ScalesByTheStepsOfTheToolkit)
{
    struct Case {
        double server, program;
        bool whole;
        double scale;
    };
    for (const auto &c : std::vector<Case>{{400, 400, false, 1},
                                           {400, 402, true, 1}, // with the frame of the window manager
                                           {800, 402, true, 2},
                                           {600, 400, false, 1.5},
                                           {500, 400, false, 1.25},
                                           {252, 200, true, 1}, // with a shadow of its own
                                           {800, 0, false, 1},
                                           {0, 800, false, 1},
                                           {100, 400, false, 1},
                                           {9000, 10, false, 4}})
        EXPECT_EQ(CaretBounds::scale(c.server, c.program, c.whole), c.scale)
            << c.server << " for " << c.program;
}

TEST(CaretBounds, KnowsAPlaceFromNone)
{
    for (const QRect &place : {QRect(10, 20, 0, 15), QRect(0, 0, 8, 15)})
        EXPECT_TRUE(CaretBounds::isPlace(place)) << place.x();
    for (const QRect &none : {QRect(0, 0, 0, 0), QRect(-1, 20, 0, 15), QRect(20, -1, 0, 15),
                              QRect(10, 20, 5, 0), QRect(10, 20, 5, -3)})
        EXPECT_FALSE(CaretBounds::isPlace(none)) << none.x();
}

TEST(CaretBounds, AcceptsACaretInsideItsWindowOnly)
{
    const QRect window(100, 100, 3000, 500);
    struct Case {
        QRectF caret;
        bool accepted;
    };
    for (const auto &c : std::vector<Case>{{{150, 150, 0, 18}, true},
                                           {{100, 100, 10, 18}, true},
                                           {{99, 582, 0, 18}, true}, // rounded
                                           {{150, 595, 0, 18}, false},
                                           {{90, 150, 0, 18}, false},
                                           {{150, 150, 0, 0}, false},
                                           {{150, 150, 1999, 18}, true},
                                           {{150, 150, 2000, 18}, false}})
        EXPECT_EQ(CaretBounds::isAcceptable(c.caret, window), c.accepted)
            << c.caret.x() << ',' << c.caret.y();
}

TEST(CaretBounds, PutsACaretWithoutAPlaceWhereTheTextGoesOn)
{
    const QRectF field(50, 100, 300, 200), line(50, 100, 300, 30), character(80, 110, 9, 18);
    EXPECT_EQ(CaretBounds::after(character, false, field), QRectF(89, 110, 0, 18));
    EXPECT_EQ(CaretBounds::after(character, true, field), QRectF(50, 128, 0, 18));
    EXPECT_EQ(CaretBounds::atStart(line), QRectF(50, 100, 0, 30));
    EXPECT_EQ(CaretBounds::atStart(field), QRectF(50, 100, 0, 20));
}

} // namespace
