#include "Platform/linux/x11/RememberedWindow.h"

#include "Platform/linux/x11/WindowProperties.h"
#include "Platform/linux/x11/Xwayland.h"

#include <QWidget>
#include <algorithm>

namespace {

constexpr int deepestWindow = 64;
constexpr int betweenWindows = 500; // milliseconds

bool isWithin(XcbConnection &connection, xcb_window_t inner, xcb_window_t outer)
{
    for (int depth = 0; depth < deepestWindow && inner > XCB_INPUT_FOCUS_POINTER_ROOT; ++depth) {
        if (inner == outer)
            return true;
        const XcbReply<xcb_query_tree_reply_t> tree(
            xcb_query_tree_reply(connection.raw(), xcb_query_tree(connection.raw(), inner), nullptr));
        inner = tree ? tree->parent : xcb_window_t(XCB_WINDOW_NONE);
    }
    return false;
}

} // namespace

xcb_window_t focusWindow(XcbConnection &connection)
{
    const XcbReply<xcb_get_input_focus_reply_t> focus(
        xcb_get_input_focus_reply(connection.raw(), xcb_get_input_focus(connection.raw()), nullptr));
    return focus ? focus->focus : xcb_window_t(XCB_WINDOW_NONE);
}

xcb_window_t windowUnderPointer(XcbConnection &connection)
{
    xcb_window_t named = XCB_WINDOW_NONE;
    xcb_window_t at = connection.root();
    for (int depth = 0; depth < deepestWindow && at != XCB_WINDOW_NONE; ++depth) {
        const XcbReply<xcb_query_pointer_reply_t> pointer(
            xcb_query_pointer_reply(connection.raw(), xcb_query_pointer(connection.raw(), at), nullptr));
        at = pointer ? pointer->child : xcb_window_t(XCB_WINDOW_NONE);
        if (at != XCB_WINDOW_NONE && !readWindowIdentity(connection.raw(), at).className.isEmpty())
            named = at;
    }
    return named;
}

bool isDock(XcbConnection &connection, xcb_window_t window)
{
    constexpr quint32 mostTypes = 16;
    const auto types =
        readUnits(connection.raw(), window, connection.atom("_NET_WM_WINDOW_TYPE"), XCB_ATOM_ATOM, mostTypes);
    return std::find(types.begin(), types.end(), connection.atom("_NET_WM_WINDOW_TYPE_DOCK")) != types.end();
}

RememberedWindow::RememberedWindow(std::unique_ptr<XcbConnection> server)
    : connection(std::move(server)), underWayland(isXwayland(connection->raw(), connection->root()))
{
    noneActive.setSingleShot(true);
    noneActive.setInterval(betweenWindows);
    QObject::connect(&noneActive, &QTimer::timeout, &noneActive, [this] { forget(current); });
    watch(connection->root(), XCB_EVENT_MASK_PROPERTY_CHANGE);
    refresh();
    connection->dispatch([this](const xcb_generic_event_t &event) { handle(event); });
}

xcb_window_t RememberedWindow::window()
{
    refresh();
    return current;
}

bool RememberedWindow::hasFocus() const
{
    if (current == XCB_WINDOW_NONE)
        return false;
    const xcb_window_t focus = focusWindow(*connection);
    if (focus == XCB_WINDOW_NONE)
        return false;
    if (focus == XCB_INPUT_FOCUS_POINTER_ROOT)
        return windowUnderPointer(*connection) == current;
    if (isWithin(*connection, focus, current))
        return true;
    // Some programs keep the focus on a window of their own beside the one that the manager calls active.
    return QWidget::find(focus) == nullptr && activeWindow(connection->raw(), connection->root()) == current;
}

void RememberedWindow::handle(const xcb_generic_event_t &event)
{
    switch (event.response_type & 0x7f) {
    case XCB_PROPERTY_NOTIFY:
        if (reinterpret_cast<const xcb_property_notify_event_t &>(event).atom ==
            connection->atom("_NET_ACTIVE_WINDOW"))
            refresh();
        break;
    case XCB_UNMAP_NOTIFY:
        forget(reinterpret_cast<const xcb_unmap_notify_event_t &>(event).window);
        break;
    case XCB_DESTROY_NOTIFY:
        forget(reinterpret_cast<const xcb_destroy_notify_event_t &>(event).window);
        break;
    default:
        break;
    }
}

void RememberedWindow::refresh()
{
    const auto active = activeWindow(connection->raw(), connection->root());
    if (active.value_or(XCB_WINDOW_NONE) != XCB_WINDOW_NONE) {
        noneActive.stop();
        consider(*active);
        return;
    }
    if (active && underWayland) {
        noticeNoneActive();
        return;
    }
    // No manager, or one that has not yet told of the window it has just given the focus.
    const xcb_window_t focused = focusedTopLevel(connection->raw());
    if (focused != XCB_WINDOW_NONE)
        consider(focused);
    else if (!active && focusWindow(*connection) == XCB_INPUT_FOCUS_POINTER_ROOT)
        consider(windowUnderPointer(*connection));
}

void RememberedWindow::noticeNoneActive()
{
    if (current != XCB_WINDOW_NONE && !noneActive.isActive())
        noneActive.start();
}

void RememberedWindow::consider(xcb_window_t candidate)
{
    if (candidate == XCB_WINDOW_NONE || candidate == current)
        return;
    watch(candidate, XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    const XcbReply<xcb_get_window_attributes_reply_t> attributes(xcb_get_window_attributes_reply(
        connection->raw(), xcb_get_window_attributes(connection->raw(), candidate), nullptr));
    if (!attributes || attributes->override_redirect != 0 || isDock(*connection, candidate) ||
        isMarkedAsPanel(connection->raw(), candidate)) {
        watch(candidate, XCB_EVENT_MASK_NO_EVENT);
        return;
    }
    if (current != XCB_WINDOW_NONE)
        watch(current, XCB_EVENT_MASK_NO_EVENT);
    current = candidate;
    known = readWindowIdentity(connection->raw(), candidate);
    if (onChange)
        onChange();
}

void RememberedWindow::forget(xcb_window_t gone)
{
    if (gone != current || current == XCB_WINDOW_NONE)
        return;
    watch(current, XCB_EVENT_MASK_NO_EVENT);
    current = XCB_WINDOW_NONE;
    known = WindowIdentity();
    if (onGone)
        onGone();
}

void RememberedWindow::watch(xcb_window_t which, uint32_t events) const
{
    xcb_change_window_attributes(connection->raw(), which, XCB_CW_EVENT_MASK, &events);
    connection->flush();
}
