#pragma once

#include "Platform/WindowIdentity.h"
#include "Platform/linux/x11/XcbConnection.h"

#include <QTimer>
#include <functional>
#include <memory>

// The last active window that is neither a dock nor unmanaged (menus) nor our panel, kept at all times. With
// a window manager it is what the manager calls active; without one, what has the input focus. Main thread.
//
// It stays while no window is active (a window manager may say so while our panel has the keyboard), until it
// leaves the screen. In a Wayland session that says that a program is in front which the X server knows
// nothing of, so there is none after a moment: between two windows no window is active either.
class RememberedWindow {
public:
    explicit RememberedWindow(std::unique_ptr<XcbConnection> server);

    [[nodiscard]] XcbConnection &server() const { return *connection; }

    // In a Wayland session.
    [[nodiscard]] bool isUnderWayland() const { return underWayland; }

    // XCB_WINDOW_NONE on an empty desktop. Asks the server.
    [[nodiscard]] xcb_window_t window();
    [[nodiscard]] const WindowIdentity &identity() const { return known; }

    // The window, or a child of it, would receive keys now. Asks the server.
    [[nodiscard]] bool hasFocus() const;

    std::function<void()> onChange; // another window is in front
    std::function<void()> onGone;   // it left the screen

private:
    void handle(const xcb_generic_event_t &event);
    void refresh();
    void consider(xcb_window_t candidate);
    void forget(xcb_window_t gone);
    void noticeNoneActive();
    void watch(xcb_window_t which, uint32_t events) const;

    std::unique_ptr<XcbConnection> connection;
    const bool underWayland;
    QTimer noneActive; // under Wayland
    xcb_window_t current = XCB_WINDOW_NONE;
    WindowIdentity known;
};

// The window with the input focus, XCB_INPUT_FOCUS_POINTER_ROOT or none. One round trip.
[[nodiscard]] xcb_window_t focusWindow(XcbConnection &connection);

// The innermost child of the root under the pointer that has a WM_CLASS. A few round trips.
[[nodiscard]] xcb_window_t windowUnderPointer(XcbConnection &connection);

// A panel or taskbar of the desktop.
[[nodiscard]] bool isDock(XcbConnection &connection, xcb_window_t window);
