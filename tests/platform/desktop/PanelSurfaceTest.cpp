#include "Platform/linux/x11/X11PanelSurface.h"

#include "Platform/KeyCodes.h"
#include "Platform/linux/x11/WindowProperties.h"
#include "Platform/linux/x11/X11HotKeys.h"
#include "Platform/linux/x11/X11Workspace.h"
#include "tests/platform/desktop/DesktopHarness.h"

#include <QApplication>
#include <QDialog>
#include <QMenu>
#include <gtest/gtest.h>

namespace {

class NoEntries : public DesktopEntries {
public:
    FrontApplication application(const WindowIdentity &window) const override
    {
        return {window.className, window.className};
    }
    std::optional<QString> iconName(const QString &) const override { return std::nullopt; }
};

const QRect place(300, 300, 400, 200);
const QPoint outside(50, 900);

// The panel and all that is behind it, wired as the application wires it: the hot key toggles.
class PanelOnDesktop : public ::testing::Test {
protected:
    PanelOnDesktop()
    {
        EXPECT_EQ(hand.modifiers(), 0) << "the test before left something pressed or locked";
        surface.adopt(&panel);
        surface.onDismissRequest = [this] {
            ++dismissRequests;
            surface.dismiss();
        };
        hotKeys->onPress = [this] {
            ++presses;
            if (surface.isPresented())
                surface.dismiss();
            else
                open();
        };
        EXPECT_EQ(hotKeys->registerHotKey(KeyCode::v, ModifierFlag::command | ModifierFlag::option), 0);
    }
    void open()
    {
        panel.field->clear();
        panel.field->setFocus();
        surface.present(place);
    }
    void pressHotKey() { hand.chord({Hand::control, Hand::alt, Hand::v}); }
    bool waitForPanelText(const QString &wanted)
    {
        return QTest::qWaitFor([&] { return panel.field->text() == wanted; }, 3000);
    }
    bool waitForPanelFocus()
    {
        return QTest::qWaitForWindowExposed(&panel, 3000) && QTest::qWaitFor(
                                                                 [&] {
                                                                     return panel.isActiveWindow() &&
                                                                            panel.field->hasFocus() &&
                                                                            hand.focus() == panel.winId();
                                                                 },
                                                                 3000);
    }
    bool waitForClosed()
    {
        return QTest::qWaitFor([&] { return !surface.isPresented() && !panel.isVisible(); }, 3000);
    }

    Hand hand;
    Panel panel;
    std::unique_ptr<X11HotKeys> hotKeys = X11HotKeys::create();
    X11Workspace workspace{std::make_shared<NoEntries>()};
    X11PanelSurface surface{*hotKeys, workspace};
    int presses = 0;
    int dismissRequests = 0;
};

} // namespace

TEST_F(PanelOnDesktop, GetsTheKeysTypedRightBehindTheHotKey)
{
    Neighbour neighbour;
    pressHotKey();
    hand.tap(Hand::x);
    hand.tap(Hand::y);
    hand.tap(Hand::z);
    EXPECT_TRUE(waitForPanelText(QStringLiteral("xyz")));
    EXPECT_EQ(presses, 1);
    EXPECT_EQ(neighbour.report().keys, 0);
    EXPECT_EQ(neighbour.text, QString());
}

TEST_F(PanelOnDesktop, OpensOnceWhenTheHotKeyIsHeld)
{
    Neighbour neighbour;
    hand.press(Hand::control);
    hand.press(Hand::alt);
    hand.press(Hand::v);
    hand.release(Hand::v, 100);
    hand.release(Hand::alt);
    hand.release(Hand::control);
    hand.tap(Hand::x);
    hand.tap(Hand::y);
    EXPECT_TRUE(waitForPanelText(QStringLiteral("xy")));
    EXPECT_EQ(presses, 1);
    EXPECT_EQ(neighbour.report().keys, 0);
}

TEST_F(PanelOnDesktop, GetsKeysTypedWhileTheHotKeyIsStillDown)
{
    Neighbour neighbour;
    hand.press(Hand::control);
    hand.press(Hand::alt);
    hand.press(Hand::v);
    hand.release(Hand::alt);
    hand.release(Hand::control);
    hand.tap(Hand::x);
    hand.tap(Hand::y);
    hand.release(Hand::v);
    hand.tap(Hand::z);
    EXPECT_TRUE(waitForPanelText(QStringLiteral("xyz")));
    EXPECT_EQ(neighbour.report().keys, 0);
    pressHotKey();
    EXPECT_TRUE(waitForClosed()) << "the next press is a press again";
    EXPECT_EQ(presses, 2);
}

TEST_F(PanelOnDesktop, GivesTheKeyboardBackToTheSameField)
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

TEST_F(PanelOnDesktop, OpensWithTheKeyboardWithoutAHotKeyToo)
{
    Neighbour neighbour;
    open();
    EXPECT_TRUE(waitForPanelFocus());
    hand.tap(Hand::x);
    EXPECT_TRUE(waitForPanelText(QStringLiteral("x")));
}

TEST_F(PanelOnDesktop, IsActiveAgainWhenReopenedAtOnce)
{
    Neighbour neighbour;
    for (const int pause : {0, 20, 80}) {
        open();
        ASSERT_TRUE(waitForPanelFocus());
        surface.dismiss();
        QTest::qWait(pause);
        open();
        EXPECT_TRUE(panel.isActiveWindow() && panel.field->hasFocus()) << pause;
        hand.tap(Hand::x);
        EXPECT_TRUE(waitForPanelText(QStringLiteral("x"))) << pause;
        EXPECT_TRUE(panel.isActiveWindow() && panel.field->hasFocus()) << pause;
        surface.dismiss();
        ASSERT_TRUE(neighbour.waitForFocus());
    }
    EXPECT_EQ(dismissRequests, 0);
}

TEST_F(PanelOnDesktop, ClosesOnAClickOutsideThatReachesItsTarget)
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

TEST_F(PanelOnDesktop, ClosesOnAClickOnTheEmptyDesktop)
{
    open();
    ASSERT_TRUE(waitForPanelFocus());
    hand.click(outside);
    EXPECT_TRUE(waitForClosed());
}

TEST_F(PanelOnDesktop, StaysOnClicksInsideAndOnTheWheelOutside)
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

TEST_F(PanelOnDesktop, LetsClicksInItsRoundedCornersThrough)
{
    open();
    ASSERT_TRUE(waitForPanelFocus());
    hand.click(place.topLeft() + QPoint(1, 1));
    EXPECT_TRUE(waitForClosed());
}

TEST_F(PanelOnDesktop, ClosesWhenTheProgramInFrontDies)
{
    auto neighbour = std::make_unique<Neighbour>();
    open();
    ASSERT_TRUE(waitForPanelFocus());
    neighbour->kill();
    EXPECT_TRUE(waitForClosed());
    EXPECT_NE(hand.focus(), panel.winId());
    EXPECT_EQ(workspace.rememberedWindow(), 0U);
    open();
    if (!waitForPanelFocus())
        open(); // the window manager was handing the dead program's focus on in that very moment
    EXPECT_TRUE(waitForPanelFocus()) << "and opens again on the empty desktop";
}

TEST_F(PanelOnDesktop, DismissedAfterTheProgramInFrontDiedLeavesTheFocusNowhereDead)
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

TEST_F(PanelOnDesktop, ClosesWhenAnotherWindowBecomesActive)
{
    Neighbour first;
    Neighbour second;
    open();
    ASSERT_TRUE(waitForPanelFocus());
    first.order("activate");
    if (!runsUnderWindowManager())
        hand.setFocus(first.window);
    else
        QProcess::execute(QStringLiteral("xdotool"),
                          {QStringLiteral("windowactivate"), QString::number(first.window)});
    EXPECT_TRUE(waitForClosed());
    EXPECT_TRUE(first.waitForFocus()) << "and does not take the focus from it";
}

TEST_F(PanelOnDesktop, StaysOpenBeneathItsMenuAndTypesAfterwards)
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

TEST_F(PanelOnDesktop, TakesTheKeyboardBackFromItsDialog)
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

TEST_F(PanelOnDesktop, CarriesItsNameWhateverTheExecutableIsCalled)
{
    open();
    const WindowIdentity identity =
        readWindowIdentity(hand.server().raw(), static_cast<quint32>(panel.winId()));
    EXPECT_EQ(identity.instanceName, QStringLiteral("norvane"));
    EXPECT_EQ(identity.className, QStringLiteral("Norvane"));
    EXPECT_TRUE(isOverrideRedirect(hand.server().raw(), static_cast<quint32>(panel.winId())));
    EXPECT_EQ(panel.geometry(), place);
}

TEST_F(PanelOnDesktop, DismissedWithoutBeingOpenLetsTheKeyboardGo)
{
    Neighbour neighbour;
    hotKeys->onPress = [this] {
        ++presses;
        surface.dismiss();
    };
    pressHotKey();
    hand.tap(Hand::x);
    EXPECT_TRUE(neighbour.waitForText(QStringLiteral("x")));
    EXPECT_EQ(presses, 1);
}
