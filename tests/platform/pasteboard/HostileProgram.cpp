#include "tests/platform/pasteboard/HostileProgram.h"

#include <cstdio>
#include <cstring>
#include <unistd.h>
#include <xcb/xfixes.h>

// An event has 32 bytes, of which its structure may name fewer.
template <typename Sent>
void HostileProgram::send(xcb_window_t to, const Sent &event)
{
    char padded[32] = {};
    static_assert(sizeof(event) <= sizeof(padded));
    std::memcpy(padded, &event, sizeof(event));
    xcb_send_event(connection, 0, to, XCB_EVENT_MASK_NO_EVENT, padded);
}

HostileProgram::HostileProgram()
    : connection(xcb_connect(nullptr, nullptr)), ownWindow(xcb_generate_id(connection))
{
    const uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_create_window(connection, 0, ownWindow, root(), 0, 0, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY, 0,
                      XCB_CW_EVENT_MASK, &events);
    sync();
}

HostileProgram::~HostileProgram()
{
    xcb_disconnect(connection);
}

xcb_window_t HostileProgram::root() const
{
    return xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
}

xcb_atom_t HostileProgram::atom(const std::string &name)
{
    xcb_atom_t &atom = known[name];
    if (atom != XCB_ATOM_NONE)
        return atom;
    const auto cookie = xcb_intern_atom(connection, 0, static_cast<uint16_t>(name.size()), name.c_str());
    auto *reply = xcb_intern_atom_reply(connection, cookie, nullptr);
    if (!reply)
        _exit(1);
    atom = reply->atom;
    std::free(reply);
    return atom;
}

std::string HostileProgram::atoms(const std::vector<std::string> &names)
{
    std::vector<uint32_t> list;
    list.reserve(names.size());
    for (const std::string &each : names)
        list.push_back(atom(each));
    return bytesOf(list);
}

std::string HostileProgram::bytesOf(const std::vector<uint32_t> &units)
{
    return {reinterpret_cast<const char *>(units.data()), units.size() * 4};
}

HostileProgram::Event HostileProgram::next()
{
    flush();
    Event event(xcb_wait_for_event(connection), &std::free);
    if (!event)
        _exit(1);
    return event;
}

void HostileProgram::flush()
{
    xcb_flush(connection);
}

void HostileProgram::sync()
{
    std::free(xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
}

void HostileProgram::watch(xcb_window_t other)
{
    const uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_change_window_attributes(connection, other, XCB_CW_EVENT_MASK, &events);
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

void HostileProgram::claim()
{
    xcb_set_selection_owner(connection, ownWindow, atom("CLIPBOARD"), XCB_CURRENT_TIME);
    flush();
}

void HostileProgram::put(const xcb_selection_request_event_t &request, const std::string &type,
                         uint8_t format, const std::string &bytes)
{
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, request.requestor, request.property, atom(type),
                        format, static_cast<uint32_t>(bytes.size() / (format / 8)), bytes.data());
}

void HostileProgram::notify(const xcb_selection_request_event_t &request)
{
    xcb_selection_notify_event_t event{};
    event.response_type = XCB_SELECTION_NOTIFY;
    event.time = request.time;
    event.requestor = request.requestor;
    event.selection = request.selection;
    event.target = request.target;
    event.property = request.property;
    send(request.requestor, event);
}

void HostileProgram::refuse(xcb_selection_request_event_t request)
{
    request.property = XCB_ATOM_NONE;
    notify(request);
}

void HostileProgram::ask(const std::string &target, const std::string &property)
{
    xcb_convert_selection(connection, ownWindow, atom("CLIPBOARD"), atom(target), atom(property),
                          XCB_CURRENT_TIME);
}

void HostileProgram::awaitNotifications(int count)
{
    while (count > 0)
        count -= (next()->response_type & 0x7f) == XCB_SELECTION_NOTIFY;
}

void HostileProgram::takeProperty(const std::string &property)
{
    const auto cookie =
        xcb_get_property(connection, 1, ownWindow, atom(property), XCB_GET_PROPERTY_TYPE_ANY, 0, 0x0fffffff);
    std::free(xcb_get_property_reply(connection, cookie, nullptr));
}

void HostileProgram::setOwnProperty(const std::string &property, const std::string &type,
                                    const std::string &bytes)
{
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, ownWindow, atom(property), atom(type), 32,
                        static_cast<uint32_t>(bytes.size() / 4), bytes.data());
}

xcb_window_t HostileProgram::ownerOfClipboard()
{
    const auto cookie = xcb_get_selection_owner(connection, atom("CLIPBOARD"));
    auto *reply = xcb_get_selection_owner_reply(connection, cookie, nullptr);
    const xcb_window_t owner = reply ? reply->owner : xcb_window_t(XCB_WINDOW_NONE);
    std::free(reply);
    return owner;
}

void HostileProgram::forgeRequest(xcb_window_t victim, xcb_window_t requestor, xcb_atom_t property)
{
    xcb_selection_request_event_t event{};
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
    const xcb_query_extension_reply_t *extension = xcb_get_extension_data(connection, &xcb_xfixes_id);
    xcb_xfixes_selection_notify_event_t event{};
    event.response_type = static_cast<uint8_t>(extension->first_event + XCB_XFIXES_SELECTION_NOTIFY);
    event.window = victim;
    event.owner = ownWindow;
    event.selection = atom("CLIPBOARD");
    send(victim, event);
}
