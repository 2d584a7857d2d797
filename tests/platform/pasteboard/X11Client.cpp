#include "tests/platform/pasteboard/X11Client.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QTimer>

QByteArray bytesOf(const std::vector<quint32> &units)
{
    return {reinterpret_cast<const char *>(units.data()), static_cast<qsizetype>(units.size() * 4)};
}

X11Client::X11Client()
{
    xcb_create_window(raw(), XCB_COPY_FROM_PARENT, ownWindow, root(), 0, 0, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    watch(ownWindow);
    sync();
}

QByteArray X11Client::name(xcb_atom_t atom) const
{
    const XcbReply<xcb_get_atom_name_reply_t> reply(
        xcb_get_atom_name_reply(raw(), xcb_get_atom_name(raw(), atom), nullptr));
    return reply ? QByteArray(xcb_get_atom_name_name(reply.get()), xcb_get_atom_name_name_length(reply.get()))
                 : QByteArray();
}

xcb_window_t X11Client::holderOf(const QByteArray &selection) const
{
    const XcbReply<xcb_get_selection_owner_reply_t> reply(
        xcb_get_selection_owner_reply(raw(), xcb_get_selection_owner(raw(), atom(selection)), nullptr));
    return reply ? reply->owner : xcb_window_t(XCB_WINDOW_NONE);
}

void X11Client::put(xcb_window_t window, xcb_atom_t property, const QByteArray &type, int format,
                    const QByteArray &bytes)
{
    xcb_change_property(raw(), XCB_PROP_MODE_REPLACE, window, property, atom(type),
                        static_cast<uint8_t>(format), static_cast<uint32_t>(bytes.size() / (format / 8)),
                        bytes.constData());
}

void X11Client::put(const QByteArray &property, const QByteArray &type, int format, const QByteArray &bytes)
{
    put(ownWindow, atom(property), type, format, bytes);
    sync();
}

void X11Client::put(const SelectionRequest &request, const QByteArray &type, int format,
                    const QByteArray &bytes)
{
    put(request.requestor, request.property, type, format, bytes);
}

void X11Client::beInFront(const QByteArray &className)
{
    put("WM_CLASS", "STRING", 8, className.toLower() + '\0' + className + '\0');
    xcb_map_window(raw(), ownWindow);
    xcb_set_input_focus(raw(), XCB_INPUT_FOCUS_POINTER_ROOT, ownWindow, XCB_CURRENT_TIME);
    sync();
}

void X11Client::claim(const QByteArray &selection)
{
    xcb_set_selection_owner(raw(), ownWindow, atom(selection), XCB_CURRENT_TIME);
    sync();
}

void X11Client::watch(xcb_window_t other) const
{
    const uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_change_window_attributes(raw(), other, XCB_CW_EVENT_MASK, &events);
}

xcb_selection_notify_event_t X11Client::notify(const SelectionRequest &request, bool answered,
                                               xcb_atom_t target)
{
    xcb_selection_notify_event_t event{};
    event.response_type = XCB_SELECTION_NOTIFY;
    event.time = request.time;
    event.requestor = request.requestor;
    event.selection = request.selection;
    event.target = target != XCB_ATOM_NONE ? target : request.target;
    event.property = answered ? request.property : xcb_atom_t(XCB_ATOM_NONE);
    send(request.requestor, event);
    server->flush();
    return event;
}

void X11Client::sync() const
{
    std::free(xcb_get_input_focus_reply(raw(), xcb_get_input_focus(raw()), nullptr));
}

bool await(const std::function<bool()> &condition, int milliseconds)
{
    const QDeadlineTimer deadline(milliseconds);
    QTimer tick; // conditions change without an event
    tick.start(5);
    while (!condition()) {
        if (deadline.hasExpired())
            return false;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    return true;
}

LiveClient::LiveClient()
    : notifier(std::make_unique<QSocketNotifier>(xcb_get_file_descriptor(raw()), QSocketNotifier::Read))
{
    QObject::connect(notifier.get(), &QSocketNotifier::activated, notifier.get(), [this] { pump(); });
    // What came while an answer was waited for wakes no notifier.
    QObject::connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock,
                     notifier.get(), [this] { pump(); });
}

void LiveClient::die()
{
    notifier.reset();
    X11Client::die();
}

void LiveClient::pump()
{
    while (server) {
        const XcbReply<xcb_generic_event_t> event(xcb_poll_for_event(raw()));
        if (!event)
            break;
        handle(*event);
    }
    if (server)
        server->flush();
}
