#include "Platform/linux/x11/CompositorWatch.h"

#include <xcb/xfixes.h>

CompositorWatch::CompositorWatch() : connection(XcbConnection::open())
{
    if (!connection)
        return;
    const QByteArray name = "_NET_WM_CM_S" + QByteArray::number(connection->screenNumber());
    selection = connection->atom(name.constData());
    told = subscribe();
    present = ask();
    if (!told)
        return;
    const uint8_t firstEvent = connection->extension(xcb_xfixes_id)->first_event;
    connection->dispatch([this, firstEvent](const xcb_generic_event_t &event) {
        if ((event.response_type & 0x7f) != firstEvent + XCB_XFIXES_SELECTION_NOTIFY)
            return;
        // The owner in the event may be gone again: the server knows better.
        const bool now = ask();
        if (now == present)
            return;
        present = now;
        if (onChange)
            onChange();
    });
}

bool CompositorWatch::subscribe() const
{
    if (connection->extension(xcb_xfixes_id) == nullptr)
        return false;
    const XcbReply<xcb_xfixes_query_version_reply_t> version(xcb_xfixes_query_version_reply(
        connection->raw(), xcb_xfixes_query_version(connection->raw(), 5, 0), nullptr));
    if (!version)
        return false;
    xcb_xfixes_select_selection_input(connection->raw(), connection->root(), selection,
                                      XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
    return true;
}

bool CompositorWatch::isPresent() const
{
    return told ? present : connection && ask();
}

bool CompositorWatch::ask() const
{
    const XcbReply<xcb_get_selection_owner_reply_t> owner(xcb_get_selection_owner_reply(
        connection->raw(), xcb_get_selection_owner(connection->raw(), selection), nullptr));
    return owner && owner->owner != XCB_WINDOW_NONE;
}
