#include "Platform/linux/x11/ManagerRequests.h"

#include "Platform/linux/x11/WindowProperties.h"

#include <array>

// The window that the root names must name itself: a manager that died leaves the root's word behind.
bool hasWindowManager(XcbConnection &connection)
{
    const auto named = [&connection](xcb_window_t by) {
        return readUnits(connection.raw(), by, connection.atom("_NET_SUPPORTING_WM_CHECK"), XCB_ATOM_WINDOW,
                         1);
    };
    const auto check = named(connection.root());
    return !check.empty() && named(check.front()) == check;
}

void askToActivate(XcbConnection &connection, xcb_window_t window, quint32 time)
{
    constexpr uint32_t fromPager = 2; // the source that managers obey without asking for user activity
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = connection.atom("_NET_ACTIVE_WINDOW");
    message.data.data32[0] = fromPager;
    message.data.data32[1] = time;
    xcb_send_event(connection.raw(), 0, connection.root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   reinterpret_cast<const char *>(&message));
    connection.flush();
}

// The manager takes the property away whenever the window leaves the screen.
void keepAboveUnlisted(XcbConnection &connection, xcb_window_t window)
{
    const std::array states = {connection.atom("_NET_WM_STATE_ABOVE"),
                               connection.atom("_NET_WM_STATE_SKIP_TASKBAR"),
                               connection.atom("_NET_WM_STATE_SKIP_PAGER")};
    xcb_request_check(connection.raw(),
                      xcb_change_property_checked(connection.raw(), XCB_PROP_MODE_REPLACE, window,
                                                  connection.atom("_NET_WM_STATE"), XCB_ATOM_ATOM, 32,
                                                  states.size(), states.data()));
}

// Only an event tells it, so a connection that gets no others asks.
quint32 serverTime()
{
    const auto connection = XcbConnection::open();
    if (!connection)
        return XCB_CURRENT_TIME;
    const xcb_window_t window = xcb_generate_id(connection->raw());
    const uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_create_window(connection->raw(), 0, window, connection->root(), 0, 0, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &events);
    xcb_change_property(connection->raw(), XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_NAME, XCB_ATOM_STRING,
                        8, 0, nullptr);
    connection->flush();
    const XcbReply<xcb_generic_event_t> event(xcb_wait_for_event(connection->raw()));
    if (!event || (event->response_type & 0x7f) != XCB_PROPERTY_NOTIFY)
        return XCB_CURRENT_TIME;
    return reinterpret_cast<const xcb_property_notify_event_t &>(*event).time;
}
