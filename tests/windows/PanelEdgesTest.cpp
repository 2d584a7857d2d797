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
    QLabel label{QStringLiteral("Hint"), &panel};
    PanelEdges edges{&panel};
    int presses = 0;
};

} // namespace

TEST_F(PanelEdgesTest, EachEdgeAndCornerResizesAndLeavesTheOppositeOneWhereItIs)
{
    struct Case {
        QPoint from, by;
        QMargins grown;
    };
    const Case cases[] = {
        {{2, 200}, {-30, 40}, {30, 0, 0, 0}},   {{497, 200}, {30, 40}, {0, 0, 30, 0}},
        {{240, 0}, {30, -40}, {0, 40, 0, 0}},   {{240, 399}, {30, 40}, {0, 0, 0, 40}},
        {{0, 0}, {-30, -20}, {30, 20, 0, 0}},   {{499, 0}, {30, -20}, {0, 20, 30, 0}},
        {{1, 398}, {-30, 20}, {30, 0, 0, 20}},  {{499, 399}, {30, 20}, {0, 0, 30, 20}},
        {{499, 385}, {30, 20}, {0, 0, 30, 20}}, // near the corner is the corner
    };
    for (const Case &each : cases) {
        panel.setGeometry(frame);
        drag(each.from, each.by);
        EXPECT_EQ(panel.geometry(), frame.marginsAdded(each.grown)) << each.from.x() << ' ' << each.from.y();
    }
    EXPECT_EQ(presses, 0) << "the edges lie over the views";
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
    EXPECT_EQ(panel.geometry(), frame);
    EXPECT_EQ(presses, 1);
}

TEST_F(PanelEdgesTest, ATextThatCanBeSelectedIsNoBackground)
{
    label.setTextInteractionFlags(Qt::TextSelectableByMouse);
    drag({320, 110}, {-70, 30});
    EXPECT_EQ(panel.geometry(), frame);
}

TEST_F(PanelEdgesTest, ThePointerShowsWhatADragWouldDo)
{
    const std::pair<QPoint, Qt::CursorShape> cases[] = {
        {{0, 0}, Qt::SizeFDiagCursor},   {{499, 399}, Qt::SizeFDiagCursor}, {{499, 0}, Qt::SizeBDiagCursor},
        {{0, 399}, Qt::SizeBDiagCursor}, {{5, 200}, Qt::SizeHorCursor},     {{494, 200}, Qt::SizeHorCursor},
        {{250, 5}, Qt::SizeVerCursor},   {{250, 394}, Qt::SizeVerCursor},
    };
    for (const auto &[place, shape] : cases) {
        mouse(QEvent::MouseMove, panel.mapToGlobal(place), Qt::NoButton);
        ASSERT_NE(QGuiApplication::overrideCursor(), nullptr) << place.x() << ' ' << place.y();
        EXPECT_EQ(QGuiApplication::overrideCursor()->shape(), shape) << place.x() << ' ' << place.y();
    }
    mouse(QEvent::MouseMove, panel.mapToGlobal(QPoint(6, 200)), Qt::NoButton);
    EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr) << "one point further in";
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
