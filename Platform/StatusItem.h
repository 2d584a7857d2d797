#pragma once

#include "Platform/ClosureMenuItem.h"

#include <QPoint>
#include <vector>

// Our icon in the desktop's tray, with a menu. Main thread.
//
// It joins whatever tray there is, now or later, and leaves with it. No operation waits for the tray.
class StatusItem {
public:
    virtual ~StatusItem() = default;

    // Gives the rows of the menu. Asked when the menu is about to open and after menuChanged(); set before
    // show().
    std::function<std::vector<ClosureMenuItem>()> menuContents;

    // Appears as soon as there is a tray.
    virtual void show() = 0;

    // What menuContents gives has changed. The rows follow within 200 ms, or when the open menu has closed,
    // so that nobody chooses what they did not see.
    virtual void menuChanged() = 0;

    // The icon is dimmed while recording is paused.
    virtual void setPaused(bool paused) = 0;

    // There is a tray and the icon is in it. False until the first tray has answered.
    [[nodiscard]] virtual bool isAvailable() const = 0;

    // Opens the same menu with its lower right corner at a point of the screen (Qt's logical coordinates):
    // for desktops without a tray. Returns at once.
    virtual void popUpMenu(const QPoint &lowerRight) = 0;

    std::function<void()> onActivate;           // the icon was clicked with the main button
    std::function<void()> onAvailabilityChange; // isAvailable() has changed
};
