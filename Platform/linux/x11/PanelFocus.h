#pragma once

#include "Platform/linux/x11/XcbConnection.h"

#include <QtGlobal>

// The X input focus on its way to the panel and back. Main thread; every operation waits for the X server
// only.
//
// Times are the server's; 0 is its current one. The server ignores a move that is older than the last one.
class PanelFocus {
public:
    explicit PanelFocus(XcbConnection &server) : connection(server) {}

    // Keeps what has the focus now, unless that is the panel.
    void remember(xcb_window_t panel);

    // Gives the focus to the panel, which must be on screen. False when the server or somebody else refuses
    // it.
    [[nodiscard]] bool take(xcb_window_t panel, quint32 time);

    // Makes the move known, for a panel that has taken the focus while a key grab was on: window managers
    // take no notice of a focus that moves then, and would act on the window in front as if nothing had
    // happened. It goes back for less than a moment and returns, at the time it came: a later one would
    // outdate what others have asked for since.
    void repeat(xcb_window_t panel);

    // What had the focus has it again.
    [[nodiscard]] bool isBack() const;

    // Gives the focus back to what had it, if the panel still has it: who moved it meanwhile knows better.
    // When what had it is gone, the window manager is asked for its topmost window.
    void giveBack(xcb_window_t panel, quint32 time);

private:
    [[nodiscard]] bool set(xcb_window_t window, uint8_t revertTo, quint32 time);
    [[nodiscard]] bool activateTopmost();

    XcbConnection &connection;
    quint32 takenAt = XCB_CURRENT_TIME;
    xcb_window_t savedFocus = XCB_INPUT_FOCUS_POINTER_ROOT;
    uint8_t savedRevertTo = XCB_INPUT_FOCUS_POINTER_ROOT;
};
