#include "Platform/linux/x11/PanelFocus.h"

#include "Platform/linux/x11/ManagerRequests.h"
#include "Platform/linux/x11/RememberedWindow.h"
#include "Platform/linux/x11/WindowProperties.h"

#include <algorithm>

namespace {

bool isViewable(XcbConnection &connection, xcb_window_t window)
{
    const XcbReply<xcb_get_window_attributes_reply_t> attributes(xcb_get_window_attributes_reply(
        connection.raw(), xcb_get_window_attributes(connection.raw(), window), nullptr));
    return attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE;
}

} // namespace

void PanelFocus::remember(xcb_window_t panel)
{
    const XcbReply<xcb_get_input_focus_reply_t> focus(
        xcb_get_input_focus_reply(connection.raw(), xcb_get_input_focus(connection.raw()), nullptr));
    if (!focus || focus->focus == panel)
        return;
    savedFocus = focus->focus;
    savedRevertTo = focus->revert_to;
}

bool PanelFocus::take(xcb_window_t panel, quint32 time)
{
    takenAt = time;
    return set(panel, XCB_INPUT_FOCUS_PARENT, time) && focusWindow(connection) == panel;
}

void PanelFocus::repeat(xcb_window_t panel)
{
    if (savedFocus <= XCB_INPUT_FOCUS_POINTER_ROOT || focusWindow(connection) != panel)
        return;
    // Nobody else's request comes in between. A window that is gone is refused, which leaves the focus here.
    xcb_grab_server(connection.raw());
    xcb_set_input_focus(connection.raw(), savedRevertTo, savedFocus, takenAt);
    xcb_set_input_focus(connection.raw(), XCB_INPUT_FOCUS_PARENT, panel, takenAt);
    xcb_ungrab_server(connection.raw());
    connection.flush();
}

bool PanelFocus::isBack() const
{
    return savedFocus > XCB_INPUT_FOCUS_POINTER_ROOT && focusWindow(connection) == savedFocus;
}

void PanelFocus::giveBack(xcb_window_t panel, quint32 time)
{
    if (focusWindow(connection) != panel)
        return;
    if (set(savedFocus, savedRevertTo, time) && focusWindow(connection) != panel)
        return;
    // Gone, hidden, or the time was too old for the server: the panel must not keep what it cannot use.
    if (set(savedFocus, savedRevertTo, XCB_CURRENT_TIME) || activateTopmost())
        return;
    static_cast<void>(set(XCB_INPUT_FOCUS_POINTER_ROOT, XCB_INPUT_FOCUS_POINTER_ROOT, XCB_CURRENT_TIME));
}

bool PanelFocus::set(xcb_window_t window, uint8_t revertTo, quint32 time)
{
    const XcbReply<xcb_generic_error_t> refused(xcb_request_check(
        connection.raw(), xcb_set_input_focus_checked(connection.raw(), revertTo, window, time)));
    return !refused && xcb_connection_has_error(connection.raw()) == 0;
}

// The window manager gives the focus when it gets to it; until then nothing has it.
bool PanelFocus::activateTopmost()
{
    constexpr quint32 mostWindows = 4096;
    const auto stack = readUnits(connection.raw(), connection.root(),
                                 connection.atom("_NET_CLIENT_LIST_STACKING"), XCB_ATOM_WINDOW, mostWindows);
    const auto topmost = std::find_if(stack.rbegin(), stack.rend(), [this](xcb_window_t window) {
        return isViewable(connection, window) && !isDock(connection, window);
    });
    if (topmost == stack.rend())
        return false;
    static_cast<void>(set(XCB_INPUT_FOCUS_POINTER_ROOT, XCB_INPUT_FOCUS_POINTER_ROOT, XCB_CURRENT_TIME));
    askToActivate(connection, *topmost, XCB_CURRENT_TIME);
    return true;
}
