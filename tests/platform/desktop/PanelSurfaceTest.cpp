#include "Platform/linux/x11/X11PanelSurface.h"

#include "Platform/linux/x11/X11KeyEvents.h"
#include "tests/platform/desktop/PanelOnDesktop.h"

#include <QApplication>
#include <QDialog>
#include <QMenu>

namespace {

using namespace Qt::StringLiterals;

// Without a window manager no panel is managed, in a Wayland session every one.
std::vector<PanelKind> panelKinds()
{
    if (qgetenv("NORVANE_WM") == "mutter-wayland")
        return {PanelKind::managed};
    if (runsUnderWindowManager())
        return {PanelKind::automatic, PanelKind::grabbing, PanelKind::managed};
    return {PanelKind::automatic, PanelKind::grabbing};
}

INSTANTIATE_TEST_SUITE_P(Kinds, PanelOnDesktop, ::testing::ValuesIn(panelKinds()), nameOf);

} // namespace

TEST_P(PanelOnDesktop, GetsTheKeysTypedRightBehindTheHotKeyAndWhileItIsHeld)
{
    Neighbour neighbour;
    struct Way {
        std::function<void()> release;
        QString text;
    };
    const Way ways[] = {
        {[this] { releaseHotKey(100); }, u"yz"_s},
        {[this] { releaseHotKey(); }, u"yz"_s},
        {[this] { // its modifiers first, and the key while one types
             hand.release(Hand::alt);
             hand.release(Hand::control);
             hand.tap(Hand::x);
             hand.release(Hand::v);
         },
         u"xyz"_s},
    };
    int wanted = 0;
    for (const Way &way : ways) {
        holdHotKey();
        way.release();
        hand.tap(Hand::y);
        hand.tap(Hand::z);
        ++wanted;
        EXPECT_TRUE(
            QTest::qWaitFor([&] { return presses == wanted && panel.field->text() == way.text; }, 3000))
            << presses << ' ' << panel.field->text().toStdString();
        EXPECT_EQ(neighbour.report().keys, 0);
        pressHotKey();
        EXPECT_TRUE(waitForClosed()) << "the next press is a press again";
        EXPECT_EQ(presses, ++wanted);
        EXPECT_TRUE(neighbour.waitForFocus());
        QTest::qWait(50); // a finger needs longer to press again
        if (GetParam() == PanelKind::grabbing)
            break; // the hot key's grab has to end before the panel's begins
    }
    EXPECT_EQ(neighbour.text, QString());
}

TEST_P(PanelOnDesktop, GivesTheKeyboardBackToTheSameField)
{
    Neighbour neighbour;
    for (int round = 0; round < 5; ++round) {
        pressHotKey();
        ASSERT_TRUE(waitForPanelFocus());
        ASSERT_TRUE(neighbour.waitForFocus(false));
        pressHotKey();
        ASSERT_TRUE(waitForClosed());
        ASSERT_TRUE(neighbour.waitForFocus());
        EXPECT_EQ(hand.focus(), neighbour.window);
    }
    hand.tap(Hand::z);
    EXPECT_TRUE(neighbour.waitForText(QStringLiteral("z")));
    EXPECT_EQ(dismissRequests, 0);
    EXPECT_EQ(workspace.rememberedWindow(), neighbour.window);
}

TEST_P(PanelOnDesktop, IsActiveAgainWhenReopenedAtOnce)
{
    Neighbour neighbour;
    for (const int pause : {0, 20, 80}) {
        open();
        ASSERT_TRUE(waitForPanelFocus());
        surface.dismiss();
        QTest::qWait(pause);
        open();
        EXPECT_TRUE(panel.isActiveWindow() && panel.field->hasFocus()) << pause;
        EXPECT_TRUE(GetParam() != PanelKind::managed || waitForPanelFocus()) << "the manager takes its time";
        hand.tap(Hand::x);
        EXPECT_TRUE(waitForPanelText(QStringLiteral("x"))) << pause;
        EXPECT_TRUE(panel.isActiveWindow() && panel.field->hasFocus()) << pause;
        surface.dismiss();
        ASSERT_TRUE(neighbour.waitForFocus());
    }
    EXPECT_EQ(dismissRequests, 0);
}

TEST_P(PanelOnDesktop, ClosesOnAClickOutsideThatReachesItsTarget)
{
    Neighbour neighbour;
    open();
    ASSERT_TRUE(waitForPanelFocus());
    hand.click(neighbour.middle());
    EXPECT_TRUE(waitForClosed());
    EXPECT_EQ(dismissRequests, 1);
    EXPECT_TRUE(neighbour.waitForFocus());
    EXPECT_TRUE(QTest::qWaitFor([&] { return neighbour.report().presses == 1; }, 3000));
}

TEST_P(PanelOnDesktop, StaysOnClicksInsideAndOnTheWheelOutside)
{
    Neighbour neighbour;
    open();
    ASSERT_TRUE(waitForPanelFocus());
    hand.click(place.center());
    if (!runsUnderWindowManager()) // many of them move the focus with the wheel
        hand.wheel(neighbour.middle());
    hand.click(place.center());
    hand.tap(Hand::x);
    EXPECT_TRUE(waitForPanelText(QStringLiteral("x")));
    EXPECT_FALSE(QTest::qWaitFor([&] { return dismissRequests > 0; }, 200));
    EXPECT_TRUE(surface.isPresented());
}

TEST_P(PanelOnDesktop, ClosesOnAClickOnTheEmptyDesktop)
{
    open();
    ASSERT_TRUE(waitForPanelFocus());
    hand.click(outside);
    EXPECT_TRUE(waitForClosed());
}

TEST_P(PanelOnDesktop, LetsClicksInItsRoundedCornersThrough)
{
    open();
    ASSERT_TRUE(waitForPanelFocus());
    hand.click(place.topLeft() + QPoint(1, 1));
    EXPECT_TRUE(waitForClosed());
}

TEST_P(PanelOnDesktop, DismissedAfterTheProgramInFrontDiedLeavesTheFocusNowhereDead)
{
    surface.onDismissRequest = nullptr; // so that the panel is still open when it is told to close
    auto first = std::make_unique<Neighbour>();
    auto second = std::make_unique<Neighbour>();
    open();
    ASSERT_TRUE(waitForPanelFocus());
    second->kill();
    ASSERT_TRUE(QTest::qWaitFor([&] { return workspace.rememberedWindow() != second->window; }, 3000));
    surface.dismiss();
    EXPECT_NE(hand.focus(), panel.winId());
    EXPECT_TRUE(!runsUnderWindowManager() || first->waitForFocus())
        << "the manager was not asked for its topmost window";
}

TEST_P(PanelOnDesktop, StaysOpenBeneathItsMenuAndTypesAfterwards)
{
    Neighbour neighbour;
    open();
    ASSERT_TRUE(waitForPanelFocus());
    QMenu menu(&panel);
    menu.addAction(QStringLiteral("Copy"));
    menu.popup(place.center());
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&menu));
    hand.click(outside);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !menu.isVisible(); }, 3000));
    hand.tap(Hand::x);
    EXPECT_TRUE(waitForPanelText(QStringLiteral("x")));
    EXPECT_EQ(dismissRequests, 0);
    surface.dismiss();
    EXPECT_TRUE(neighbour.waitForFocus());
}

TEST_P(PanelOnDesktop, TakesTheKeyboardBackFromItsDialog)
{
    Neighbour neighbour;
    open();
    ASSERT_TRUE(waitForPanelFocus());
    QDialog dialog(&panel);
    dialog.setWindowFlag(Qt::BypassWindowManagerHint);
    dialog.open();
    ASSERT_TRUE(QTest::qWaitFor([&] { return hand.focus() == dialog.winId(); }, 3000));
    hand.tap(Hand::escape);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !dialog.isVisible(); }, 3000));
    EXPECT_TRUE(waitForPanelFocus());
    hand.tap(Hand::x);
    EXPECT_TRUE(waitForPanelText(QStringLiteral("x")));
    EXPECT_EQ(dismissRequests, 0);
}

TEST_P(PanelOnDesktop, IsNeverInFrontAndPastesIntoWhatIs)
{
    Neighbour neighbour;
    X11KeyEvents keys(workspace, {});
    ASSERT_TRUE(neighbour.own("chosen"));
    for (const QString &expected : {QStringLiteral("chosen"), QStringLiteral("chosenchosen")}) {
        pressHotKey();
        ASSERT_TRUE(waitForPanelFocus());
        EXPECT_EQ(workspace.rememberedWindow(), neighbour.window);
        EXPECT_FALSE(workspace.isThisApplicationActive());
        EXPECT_EQ(isUnmanaged(), GetParam() != PanelKind::managed);
        EXPECT_TRUE(isInItsPlace());
        const auto identity = readWindowIdentity(hand.server().raw(), static_cast<quint32>(panel.winId()));
        EXPECT_EQ(identity.instanceName, QStringLiteral("norvane")); // whatever the executable is called
        EXPECT_EQ(identity.className, QStringLiteral("Norvane"));
        surface.dismiss();
        EXPECT_TRUE(keys.canSynthesise());
        QTimer::singleShot(50, &panel, [&] { keys.postPaste(); });
        EXPECT_TRUE(neighbour.waitForText(expected));
    }
    EXPECT_FALSE(panel.isVisible());
}
