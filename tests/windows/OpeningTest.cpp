// From the press of the hot key to the panel.

#include "Norvane/AppDelegate.h"
#include "Norvane/app/Preferences.h"
#include "Platform/memory/MemoryPlatform.h"

#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

namespace {

constexpr QRectF caretPlace(300, 200, 2, 18);
constexpr QPoint belowCaret(300, 224); // 6 below its bottom, its left edge

class OpeningTest : public ::testing::Test {
protected:
    OpeningTest()
    {
        screens().pointerPosition = {700, 400};
        accessibility().caret = caretPlace;
        delegate.finishLaunching();
    }

    MemoryAccessibility &accessibility()
    {
        return static_cast<MemoryAccessibility &>(*platform->accessibility);
    }
    MemoryPanelSurface &surface() { return static_cast<MemoryPanelSurface &>(*platform->panelSurface); }
    MemoryPasteboard &pasteboard() { return static_cast<MemoryPasteboard &>(*platform->pasteboard); }
    MemoryScreens &screens() { return static_cast<MemoryScreens &>(*platform->screens); }

    void press() { delegate.togglePopup(); }
    bool waitForPanel()
    {
        return QTest::qWaitFor([this] { return surface().isPresented(); }, 2000);
    }
    QPoint panelCorner() { return surface().lastGeometry.topLeft(); }
    QPoint belowPointer() { return screens().pointerPosition.toPoint() + QPoint(0, 6); }

    QTemporaryDir folder;
    std::unique_ptr<Platform> platform = makeMemoryPlatform();
    Preferences prefs{*platform->defaults};
    AppDelegate delegate{*platform, prefs, folder.path()};
};

TEST_F(OpeningTest, ThePanelOpensAtTheCaret)
{
    press();
    EXPECT_FALSE(surface().isPresented()) << "before the answer";
    ASSERT_TRUE(waitForPanel());
    EXPECT_EQ(panelCorner(), belowCaret);
}

TEST_F(OpeningTest, WithoutACaretThePanelOpensAtThePointer)
{
    accessibility().caret = std::nullopt;
    press();
    ASSERT_TRUE(waitForPanel());
    EXPECT_EQ(panelCorner(), belowPointer());
}

TEST_F(OpeningTest, AnAnswerThatDoesNotComeIsWaitedForATenthOfASecondOnly)
{
    accessibility().manner = MemoryAccessibility::Manner::told;
    QElapsedTimer sincePress;
    sincePress.start();
    press();
    ASSERT_TRUE(waitForPanel());
    EXPECT_GE(sincePress.elapsed(), 95);
    EXPECT_LT(sincePress.elapsed(), 200);
    EXPECT_EQ(panelCorner(), belowPointer());
    accessibility().answer();
    EXPECT_EQ(panelCorner(), belowPointer()) << "an open panel stays where it is";
    EXPECT_EQ(surface().presentCount, 1);
}

TEST_F(OpeningTest, APressInBetweenCancels)
{
    accessibility().manner = MemoryAccessibility::Manner::told;
    press();
    press();
    EXPECT_FALSE(accessibility().isAsked());
    EXPECT_FALSE(QTest::qWaitFor([this] { return surface().isPresented(); }, 150));
    press();
    accessibility().answer();
    EXPECT_TRUE(surface().isPresented()) << "the third one opens, without delay";
    EXPECT_EQ(panelCorner(), belowCaret);
}

TEST_F(OpeningTest, TheLastCopyAndTheCaretAreWaitedForTogether)
{
    accessibility().manner = MemoryAccessibility::Manner::told;
    pasteboard().beginRead();
    pasteboard().copyText(QStringLiteral("appena copiato"));
    press();
    accessibility().answer();
    EXPECT_FALSE(surface().isPresented());
    pasteboard().finishRead();
    ASSERT_TRUE(waitForPanel());
    EXPECT_EQ(panelCorner(), belowCaret);
}

TEST_F(OpeningTest, OnlyTheCaretSettingAsksForIt)
{
    EXPECT_TRUE(accessibility().caretWanted);
    prefs.setPosition(PopupPosition::mouse);
    EXPECT_FALSE(accessibility().caretWanted);
    press();
    EXPECT_TRUE(surface().isPresented()) << "there is nothing to wait for";
    EXPECT_EQ(accessibility().requestCount, 0);
    EXPECT_EQ(panelCorner(), belowPointer());
    press();
    prefs.setPosition(PopupPosition::caret);
    EXPECT_TRUE(accessibility().caretWanted);

    accessibility().available = false;
    press();
    EXPECT_TRUE(surface().isPresented());
    EXPECT_EQ(accessibility().requestCount, 0);
}

} // namespace
