#include "tests/platform/pasteboard/X11Client.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QTimer>
#include <cstdlib>
#include <cstring>

namespace {

using Event = std::unique_ptr<xcb_generic_event_t, decltype(&std::free)>;

} // namespace

bool await(const std::function<bool()> &condition, int milliseconds)
{
    const QDeadlineTimer deadline(milliseconds);
    QTimer tick; // what a client received while it waited for an answer wakes nobody
    tick.start(5);
    while (!condition()) {
        if (deadline.hasExpired())
            return false;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    return true;
}

X11Client::X11Client() : connection(xcb_connect(nullptr, nullptr)), ownWindow(xcb_generate_id(connection))
{
    const uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_create_window(connection, XCB_COPY_FROM_PARENT, ownWindow, root(), 0, 0, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &events);
    sync();
    notifier = std::make_unique<QSocketNotifier>(xcb_get_file_descriptor(connection), QSocketNotifier::Read);
    QObject::connect(notifier.get(), &QSocketNotifier::activated, notifier.get(), [this] { pump(); });
}

X11Client::~X11Client()
{
    die();
}

void X11Client::die()
{
    notifier.reset();
    if (connection)
        xcb_disconnect(std::exchange(connection, nullptr));
}

xcb_window_t X11Client::root() const
{
    return xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
}

xcb_atom_t X11Client::atom(const QByteArray &name)
{
    xcb_atom_t &known = atoms[name];
    if (known == XCB_ATOM_NONE) {
        const auto cookie =
            xcb_intern_atom(connection, 0, static_cast<uint16_t>(name.size()), name.constData());
        auto *reply = xcb_intern_atom_reply(connection, cookie, nullptr);
        known = reply->atom;
        std::free(reply);
    }
    return known;
}

QByteArray X11Client::name(xcb_atom_t atom)
{
    auto *reply = xcb_get_atom_name_reply(connection, xcb_get_atom_name(connection, atom), nullptr);
    if (!reply)
        return {};
    const QByteArray name(xcb_get_atom_name_name(reply), xcb_get_atom_name_name_length(reply));
    std::free(reply);
    return name;
}

void X11Client::sync()
{
    std::free(xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
}

xcb_timestamp_t X11Client::serverTime()
{
    const xcb_atom_t time = atom("TEST_TIME");
    xcb_change_property(connection, XCB_PROP_MODE_APPEND, ownWindow, time, XCB_ATOM_STRING, 8, 0, nullptr);
    xcb_flush(connection);
    while (Event event{xcb_wait_for_event(connection), &std::free}) { // the server always answers
        if ((event->response_type & 0x7f) == XCB_PROPERTY_NOTIFY &&
            as<xcb_property_notify_event_t>(*event).atom == time)
            return as<xcb_property_notify_event_t>(*event).time;
        handle(*event);
    }
    return 0;
}

void X11Client::pump()
{
    while (connection) {
        const Event event(xcb_poll_for_event(connection), &std::free);
        if (!event)
            break;
        handle(*event);
    }
    if (connection)
        xcb_flush(connection);
}
