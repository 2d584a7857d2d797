#include "Platform/linux/x11/PasteboardConnection.h"

#include "Platform/Log.h"
#include "Platform/linux/x11/WindowProperties.h"

#include <algorithm>
#include <sys/socket.h>
#include <xcb/xfixes.h>

std::unique_ptr<PasteboardConnection> PasteboardConnection::open()
{
    int screen = 0;
    std::unique_ptr<PasteboardConnection> opened(new PasteboardConnection(xcb_connect(nullptr, &screen)));
    if (opened->isGone()) {
        logLine(QStringLiteral("The clipboard is not available: no X server answers."));
        return nullptr;
    }
    if (!opened->prepare(screen)) {
        logLine(QStringLiteral("The clipboard is not available: the X server lacks XFixes."));
        return nullptr;
    }
    return opened;
}

PasteboardConnection::PasteboardConnection(xcb_connection_t *opened) : connection(opened) {}

PasteboardConnection::~PasteboardConnection()
{
    xcb_disconnect(connection);
}

bool PasteboardConnection::prepare(int screen)
{
    auto roots = xcb_setup_roots_iterator(xcb_get_setup(connection));
    for (; roots.rem > 1 && screen > 0; --screen)
        xcb_screen_next(&roots);
    rootWindow = roots.data->root;

    const xcb_query_extension_reply_t *extension = xcb_get_extension_data(connection, &xcb_xfixes_id);
    if (!extension || !extension->present)
        return false;
    const auto cookie =
        xcb_xfixes_query_version(connection, 1, 0); // must come before any use of the extension
    std::free(xcb_xfixes_query_version_reply(connection, cookie, nullptr));
    ownerChange = static_cast<uint8_t>(extension->first_event + XCB_XFIXES_SELECTION_NOTIFY);

    static const QByteArray names[] = {
        "CLIPBOARD", "TARGETS", "MULTIPLE",      "TIMESTAMP",          "SAVE_TARGETS",  "INCR",
        "ATOM_PAIR", "NULL",    "COMPOUND_TEXT", "_NET_ACTIVE_WINDOW", "_NORVANE_TIME", "CLIPBOARD_MANAGER"};
    const auto atoms = internAtoms(connection, names);
    known = {atoms[0], atoms[1], atoms[2], atoms[3], atoms[4],  atoms[5],
             atoms[6], atoms[7], atoms[8], atoms[9], atoms[10], atoms[11]};

    // A chunk goes out in a few writes then, where it took a turn of the X server for each 200 KiB. Less
    // where the system allows less.
    const int sendBuffer = 1024 * 1024;
    setsockopt(fileDescriptor(), SOL_SOCKET, SO_SNDBUF, &sendBuffer, sizeof(sendBuffer));

    ownWindow = xcb_generate_id(connection);
    const uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_create_window(connection, 0, ownWindow, rootWindow, -1, -1, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY,
                      XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &events);
    xcb_change_window_attributes(connection, rootWindow, XCB_CW_EVENT_MASK, &events);
    for (const xcb_atom_t selection : {known.clipboard, known.clipboardManager})
        xcb_xfixes_select_selection_input(connection, ownWindow, selection,
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                                              XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                                              XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
    synchronize();
    return !isGone();
}

qsizetype PasteboardConnection::maxPropertyBytes() const
{
    constexpr qsizetype requestHeader = 64;
    return qsizetype(xcb_get_maximum_request_length(connection)) * 4 - requestHeader;
}

bool PasteboardConnection::isOwnerChange(const xcb_generic_event_t &event) const
{
    return (event.response_type & 0x7f) == ownerChange;
}

XEvent PasteboardConnection::nextEvent()
{
    if (received.empty())
        return XEvent(xcb_poll_for_event(connection));
    XEvent event = std::move(received.front());
    received.pop_front();
    return event;
}

bool PasteboardConnection::flushedIntoEvents()
{
    xcb_flush(connection);
    receiveQueued();
    return !received.empty();
}

void PasteboardConnection::receiveQueued()
{
    while (XEvent event{xcb_poll_for_queued_event(connection)})
        received.push_back(std::move(event));
}

void PasteboardConnection::synchronize()
{
    std::free(xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
    receiveQueued();
}

xcb_timestamp_t PasteboardConnection::serverTime()
{
    xcb_change_property(connection, XCB_PROP_MODE_APPEND, ownWindow, known.time, XCB_ATOM_STRING, 8, 0,
                        nullptr);
    synchronize();
    const auto isTime = [this](const XEvent &event) {
        if ((event->response_type & 0x7f) != XCB_PROPERTY_NOTIFY)
            return false;
        const auto &notify = reinterpret_cast<const xcb_property_notify_event_t &>(*event);
        return notify.window == ownWindow && notify.atom == known.time;
    };
    const auto found = std::find_if(received.rbegin(), received.rend(), isTime);
    if (found == received.rend())
        return XCB_CURRENT_TIME; // the server is gone
    const auto time = reinterpret_cast<const xcb_property_notify_event_t &>(**found).time;
    std::erase_if(received, isTime);
    return time;
}

PasteboardConnection::Claim PasteboardConnection::claim(xcb_atom_t selection)
{
    Claim claim;
    claim.time = serverTime();
    claim.sequence = xcb_set_selection_owner(connection, ownWindow, selection, claim.time).sequence;
    claim.owner = ownerOf(selection);
    receiveQueued();
    if (claim.owner == ownWindow) {
        claim.result = Claim::Result::confirmed;
        return claim;
    }
    // Our own event is the proof that it was ours for a moment: no other program's event names our window.
    const bool wasOurs = std::any_of(received.begin(), received.end(), [&](const XEvent &event) {
        const auto &change = reinterpret_cast<const xcb_xfixes_selection_notify_event_t &>(*event);
        return isOwnerChange(*event) && change.owner == ownWindow && change.selection == selection &&
               !isBefore(sequenceOf(*event), claim.sequence);
    });
    claim.result = wasOurs ? Claim::Result::overtaken : Claim::Result::refused;
    return claim;
}

// Times do not tell who came last: a toolkit may claim with a time of long ago. So the server hears nobody
// else for the two answers that this takes.
PasteboardConnection::Claim PasteboardConnection::claimIfFree(xcb_atom_t selection)
{
    Claim claim;
    xcb_grab_server(connection);
    claim.owner = ownerOf(selection);
    if (claim.owner == XCB_WINDOW_NONE)
        claim = this->claim(selection);
    xcb_ungrab_server(connection);
    xcb_flush(connection);
    receiveQueued();
    return claim;
}

void PasteboardConnection::letGo(xcb_atom_t selection)
{
    xcb_grab_server(connection);
    if (ownerOf(selection) == ownWindow)
        xcb_set_selection_owner(connection, XCB_WINDOW_NONE, selection, XCB_CURRENT_TIME);
    xcb_ungrab_server(connection);
    xcb_flush(connection);
    receiveQueued();
}

xcb_window_t PasteboardConnection::ownerOf(xcb_atom_t selection) const
{
    xcb_get_selection_owner_reply_t *reply =
        xcb_get_selection_owner_reply(connection, xcb_get_selection_owner(connection, selection), nullptr);
    const xcb_window_t owner = reply ? reply->owner : xcb_window_t(XCB_WINDOW_NONE);
    std::free(reply);
    return owner;
}

bool PasteboardConnection::areOfOneClient(xcb_window_t a, xcb_window_t b) const
{
    const uint32_t own = xcb_get_setup(connection)->resource_id_mask;
    return a != XCB_WINDOW_NONE && (a & ~own) == (b & ~own);
}
