#include "Norvane/PanelEdges.h"

#include <QGuiApplication>
#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <QWindow>
#include <gtest/gtest.h>

namespace {

const QRect frame(200, 150, 500, 400);
const QSize minimum(460, 300);

// A window with a button over its whole left half and a label at the right.
class PanelEdgesTest : public ::testing::Test {
protected:
    PanelEdgesTest()
    {
        panel.setWindowFlags(Qt::FramelessWindowHint);
        panel.setMinimumSize(minimum);
        panel.setGeometry(frame);
        button.setGeometry(0, 0, 250, 400);
        label.setGeometry(300, 100, 100, 30);
        QObject::connect(&button, &QPushButton::pressed, &panel, [this] { ++presses; });
        panel.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&panel));
    }

    void drag(QPoint from, QPoint by)
    {
        const QPoint start = panel.mapToGlobal(from);
        mouse(QEvent::MouseMove, start, Qt::NoButton);
        mouse(QEvent::MouseButtonPress, start, Qt::LeftButton);
        mouse(QEvent::MouseMove, start + by / 2, Qt::LeftButton);
        mouse(QEvent::MouseMove, start + by, Qt::LeftButton);
        mouse(QEvent::MouseButtonRelease, start + by, Qt::NoButton);
    }

    // At a place of the screen: the panel moves beneath the pointer.
    void mouse(QEvent::Type type, QPoint place, Qt::MouseButtons held)
    {
        QMouseEvent event(type, panel.mapFromGlobal(place), place,
                          type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton, held, Qt::NoModifier);
        QCoreApplication::sendEvent(panel.windowHandle(), &event);
    }

    QWidget panel;
    QPushButton button{&panel};
    QLabel label{"Hint", &panel};
    PanelEdges edges{&panel};
    int presses = 0;
};

} // namespace

TEST_F(PanelEdgesTest, EachEdgeAndCornerResizesAsThePointerShowsAndLeavesTheOppositeOneWhereItIs)
{
    const struct {
        QPoint from, by;
        QMargins grown;
        Qt::CursorShape shape;
    } cases[] = {
        {{5, 200}, {-30, 40}, {30, 0, 0, 0}, Qt::SizeHorCursor},
        {{494, 200}, {30, 40}, {0, 0, 30, 0}, Qt::SizeHorCursor},
        {{240, 5}, {30, -40}, {0, 40, 0, 0}, Qt::SizeVerCursor},
        {{240, 394}, {30, 40}, {0, 0, 0, 40}, Qt::SizeVerCursor},
        {{0, 0}, {-30, -20}, {30, 20, 0, 0}, Qt::SizeFDiagCursor},
        {{499, 0}, {30, -20}, {0, 20, 30, 0}, Qt::SizeBDiagCursor},
        {{1, 398}, {-30, 20}, {30, 0, 0, 20}, Qt::SizeBDiagCursor},
        {{499, 399}, {30, 20}, {0, 0, 30, 20}, Qt::SizeFDiagCursor},
        {{499, 385}, {30, 20}, {0, 0, 30, 20}, Qt::SizeFDiagCursor}, // near the corner is the corner
    };
    for (const auto &each : cases) {
        SCOPED_TRACE(testing::Message() << each.from.x() << ' ' << each.from.y());
        panel.setGeometry(frame);
        mouse(QEvent::MouseMove, panel.mapToGlobal(each.from), Qt::NoButton);
        ASSERT_NE(QGuiApplication::overrideCursor(), nullptr);
        EXPECT_EQ(QGuiApplication::overrideCursor()->shape(), each.shape);
        drag(each.from, each.by);
        EXPECT_EQ(panel.geometry(), frame.marginsAdded(each.grown));
    }
    EXPECT_EQ(presses, 0) << "the edges lie over the views";
    panel.setGeometry(frame);
    mouse(QEvent::MouseMove, panel.mapToGlobal(QPoint(6, 200)), Qt::NoButton);
    EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr) << "one point further in";
}

TEST_F(PanelEdgesTest, NeverSmallerThanTheMinimumAndNeverPushedAway)
{
    drag({499, 399}, {-2000, -2000});
    EXPECT_EQ(panel.geometry(), QRect(frame.topLeft(), minimum));
    panel.setGeometry(frame);
    drag({0, 0}, {2000, 2000});
    EXPECT_EQ(panel.size(), minimum);
    EXPECT_EQ(panel.geometry().bottomRight(), frame.bottomRight());
}

TEST_F(PanelEdgesTest, TheBackgroundAndLabelsMoveThePanelAndControlsDoNot)
{
    drag({280, 300}, {70, -30});
    EXPECT_EQ(panel.geometry(), frame.translated(70, -30));
    drag({320, 110}, {-70, 30});
    EXPECT_EQ(panel.geometry(), frame);
    drag({100, 200}, {70, 70});
    EXPECT_EQ(presses, 1);
    label.setTextInteractionFlags(Qt::TextSelectableByMouse); // no background any more
    drag({320, 110}, {-70, 30});
    EXPECT_EQ(panel.geometry(), frame);
}

TEST_F(PanelEdgesTest, HidingInTheMiddleOfADragEndsIt)
{
    const QPoint start = panel.mapToGlobal(QPoint(499, 200));
    mouse(QEvent::MouseMove, start, Qt::NoButton);
    mouse(QEvent::MouseButtonPress, start, Qt::LeftButton);
    panel.hide();
    EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
    panel.show();
    mouse(QEvent::MouseMove, start + QPoint(80, 0), Qt::LeftButton);
    EXPECT_EQ(panel.geometry(), frame);
}

TEST_F(PanelEdgesTest, ADragWhoseReleaseWentElsewhereIsOver)
{
    const QPoint start = panel.mapToGlobal(QPoint(280, 300));
    mouse(QEvent::MouseButtonPress, start, Qt::LeftButton);
    mouse(QEvent::MouseMove, start + QPoint(40, 0), Qt::LeftButton);
    mouse(QEvent::MouseMove, start + QPoint(90, 0), Qt::NoButton);
    EXPECT_EQ(panel.geometry(), frame.translated(40, 0));
    drag({280, 300}, {-40, 0});
    EXPECT_EQ(panel.geometry(), frame);
}
