#include "tests/platform/pasteboard/HostileProgram.h"

#include <cstdio>
#include <unistd.h>
#include <xcb/xfixes.h>

XcbReply<xcb_generic_event_t> HostileProgram::next()
{
    xcb_flush(raw());
    XcbReply<xcb_generic_event_t> event(xcb_wait_for_event(raw()));
    if (!event)
        _exit(1);
    return event;
}

QByteArray HostileProgram::atoms(const QByteArrayList &names) const
{
    std::vector<quint32> list;
    list.reserve(static_cast<size_t>(names.size()));
    for (const QByteArray &each : names)
        list.push_back(atom(each));
    return bytesOf(list);
}

void HostileProgram::actedOnce(bool now)
{
    if (!now || acted)
        return;
    sync();
    acted = true;
    std::puts("acted");
    std::fflush(stdout);
}

void HostileProgram::actAndDie()
{
    actedOnce(true);
    _exit(0);
}

void HostileProgram::ask(const QByteArray &target, const QByteArray &property)
{
    xcb_convert_selection(raw(), window(), atom("CLIPBOARD"), atom(target), atom(property), XCB_CURRENT_TIME);
}

void HostileProgram::awaitNotifications(int count)
{
    while (count > 0)
        count -= (next()->response_type & 0x7f) == XCB_SELECTION_NOTIFY;
}

void HostileProgram::takeProperty(const QByteArray &property)
{
    const auto cookie =
        xcb_get_property(raw(), 1, window(), atom(property), XCB_GET_PROPERTY_TYPE_ANY, 0, 0x0fffffff);
    std::free(xcb_get_property_reply(raw(), cookie, nullptr));
}

void HostileProgram::forgeRequest(xcb_window_t victim, xcb_window_t requestor, xcb_atom_t property)
{
    SelectionRequest event{};
    event.response_type = XCB_SELECTION_REQUEST;
    event.owner = victim;
    event.requestor = requestor;
    event.selection = atom("CLIPBOARD");
    event.target = atom("UTF8_STRING");
    event.property = property;
    send(victim, event);
}

void HostileProgram::forgeClear(xcb_window_t victim)
{
    xcb_selection_clear_event_t event{};
    event.response_type = XCB_SELECTION_CLEAR;
    event.owner = victim;
    event.selection = atom("CLIPBOARD");
    send(victim, event);
}

void HostileProgram::forgeOwnerChange(xcb_window_t victim)
{
    xcb_xfixes_selection_notify_event_t event{};
    const auto *extension = server->extension(xcb_xfixes_id);
    event.response_type = static_cast<uint8_t>(extension->first_event + XCB_XFIXES_SELECTION_NOTIFY);
    event.window = victim;
    event.owner = window();
    event.selection = atom("CLIPBOARD");
    send(victim, event);
}
