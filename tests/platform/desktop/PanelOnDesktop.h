#pragma once

#include "Platform/KeyCodes.h"
#include "Platform/linux/x11/WindowProperties.h"
#include "Platform/linux/x11/X11HotKeys.h"
#include "Platform/linux/x11/X11PanelSurface.h"
#include "Platform/linux/x11/X11Workspace.h"
#include "Platform/memory/MemoryPlatform.h"
#include "tests/platform/desktop/DesktopHarness.h"
#include "tests/support/LogLines.h"

#include <array>
#include <gtest/gtest.h>

inline const QRect place(300, 300, 400, 200);
inline const QPoint outside(50, 900);

// The panel and all that is behind it, wired as the application wires it: the hot key toggles.
class PanelOnDesktop : public ::testing::TestWithParam<PanelKind> {
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
    void holdHotKey()
    {
        hand.press(Hand::control);
        hand.press(Hand::alt);
        hand.press(Hand::v);
    }
    void releaseHotKey(unsigned delay = 0)
    {
        hand.release(Hand::v, delay);
        hand.release(Hand::alt);
        hand.release(Hand::control);
    }
    bool waitForPanelText(const QString &wanted)
    {
        return QTest::qWaitFor([&] { return panel.field->text() == wanted; }, 3000);
    }
    // Under a grab the input focus stays where it was.
    bool hasKeys()
    {
        return panel.isActiveWindow() && panel.field->hasFocus() &&
               (GetParam() == PanelKind::grabbing || hand.focus() == panel.winId());
    }
    bool waitForPanelFocus()
    {
        return QTest::qWaitForWindowExposed(&panel, 3000) && QTest::qWaitFor([&] { return hasKeys(); }, 3000);
    }
    bool isUnmanaged()
    {
        return isOverrideRedirect(hand.server().raw(), static_cast<quint32>(panel.winId()));
    }
    bool isInItsPlace()
    {
        return waitForPanelFocus() &&
               QTest::qWaitFor([&] { return hand.geometry(static_cast<quint32>(panel.winId())) == place; },
                               3000);
    }
    bool waitForClosed()
    {
        return QTest::qWaitFor([&] { return !surface.isPresented() && !panel.isVisible(); }, 3000);
    }

    Hand hand;
    Panel panel;
    std::unique_ptr<X11HotKeys> hotKeys = X11HotKeys::create();
    X11Workspace workspace{std::make_shared<MemoryDesktopEntries>()};
    X11PanelSurface surface{*hotKeys, workspace, GetParam()};
    int presses = 0;
    int dismissRequests = 0;
    LogLines log;
};

// Of a kind of panel in the names of tests.
inline std::string nameOf(const ::testing::TestParamInfo<PanelKind> &kind)
{
    constexpr std::array names = {"automatic", "grabbing", "managed"};
    return names[static_cast<size_t>(kind.param)];
}
