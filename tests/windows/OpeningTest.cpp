// From the press of the hot key to the panel.
#include "Norvane/AppDelegate.h"
#include "tests/windows/MemoryDesktop.h"

#include <QElapsedTimer>

namespace {

class OpeningTest : public MemoryDesktop {
protected:
    static constexpr QPoint belowCaret{300, 224};   // 6 below its bottom, its left edge
    static constexpr QPoint belowPointer{700, 406}; // 6 below

    OpeningTest()
    {
        screens.pointerPosition = {700, 400};
        accessibility.caret = QRectF(300, 200, 2, 18);
        delegate.finishLaunching();
    }

    void press() { delegate.togglePopup(); }

    void expectPanelAt(QPoint corner)
    {
        ASSERT_TRUE(QTest::qWaitFor([this] { return surface.isPresented(); }));
        EXPECT_EQ(surface.lastGeometry.topLeft(), corner);
    }

    AppDelegate delegate{*platform, prefs, folder.path()};
};

TEST_F(OpeningTest, AnAnswerThatDoesNotComeIsWaitedForATenthOfASecondOnly)
{
    accessibility.manner = MemoryAccessibility::Manner::told;
    QElapsedTimer sincePress;
    sincePress.start();
    press();
    expectPanelAt(belowPointer);
    EXPECT_GE(sincePress.elapsed(), 95);
    accessibility.answer();
    expectPanelAt(belowPointer); // an open panel stays where it is
    EXPECT_EQ(surface.presentCount, 1);
}

TEST_F(OpeningTest, APressInBetweenCancels)
{
    accessibility.manner = MemoryAccessibility::Manner::told;
    press();
    press();
    EXPECT_FALSE(accessibility.isAsked());
    EXPECT_FALSE(QTest::qWaitFor([this] { return surface.isPresented(); }, 150));
    press();
    accessibility.answer();
    EXPECT_TRUE(surface.isPresented()) << "the third one opens, without delay";
    expectPanelAt(belowCaret);
}

TEST_F(OpeningTest, TheLastCopyAndTheCaretAreWaitedForTogether)
{
    accessibility.manner = MemoryAccessibility::Manner::told;
    pasteboard.beginRead();
    pasteboard.copyText("appena copiato");
    press();
    EXPECT_FALSE(surface.isPresented());
    accessibility.answer();
    EXPECT_FALSE(surface.isPresented());
    pasteboard.finishRead();
    expectPanelAt(belowCaret);
}

TEST_F(OpeningTest, OnlyTheCaretSettingAsksForIt)
{
    EXPECT_TRUE(accessibility.caretWanted);
    prefs.setPosition(PopupPosition::mouse);
    EXPECT_FALSE(accessibility.caretWanted);
    press();
    EXPECT_TRUE(surface.isPresented()) << "there is nothing to wait for";
    expectPanelAt(belowPointer);
    press();
    prefs.setPosition(PopupPosition::caret);
    EXPECT_TRUE(accessibility.caretWanted);
    accessibility.available = false;
    press();
    EXPECT_TRUE(surface.isPresented());
    EXPECT_EQ(accessibility.requestCount, 0);
}

} // namespace
