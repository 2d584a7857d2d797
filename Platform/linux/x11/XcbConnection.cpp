#include "Platform/linux/x11/XcbConnection.h"

#include <QAbstractEventDispatcher>
#include <QSocketNotifier>
#include <cstring>

std::unique_ptr<XcbConnection> XcbConnection::open()
{
    int preferredScreen = 0;
    xcb_connection_t *opened = xcb_connect(nullptr, &preferredScreen);
    if (xcb_connection_has_error(opened) != 0) {
        xcb_disconnect(opened);
        return nullptr;
    }
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(opened));
    int number = 0;
    for (; screens.rem > 1 && number < preferredScreen; ++number)
        xcb_screen_next(&screens);
    return std::unique_ptr<XcbConnection>(new XcbConnection(opened, screens.data, number));
}

XcbConnection::XcbConnection(xcb_connection_t *opened, xcb_screen_t *defaultScreen, int screenNumber)
    : connection(opened), screen(defaultScreen), number(screenNumber)
{
}

XcbConnection::~XcbConnection()
{
    notifier.reset();
    xcb_disconnect(connection);
}

xcb_atom_t XcbConnection::atom(const char *name) const
{
    const auto length = static_cast<uint16_t>(std::strlen(name));
    const auto known = atoms.constFind(QByteArray::fromRawData(name, length));
    if (known != atoms.constEnd())
        return *known;
    const XcbReply<xcb_intern_atom_reply_t> reply(
        xcb_intern_atom_reply(connection, xcb_intern_atom(connection, 0, length, name), nullptr));
    if (!reply)
        return XCB_ATOM_NONE;
    atoms.insert(QByteArray(name, length), reply->atom);
    return reply->atom;
}

const xcb_query_extension_reply_t *XcbConnection::extension(xcb_extension_t &which) const
{
    const xcb_query_extension_reply_t *data = xcb_get_extension_data(connection, &which);
    return data != nullptr && data->present != 0 ? data : nullptr;
}

void XcbConnection::dispatch(std::function<void(const xcb_generic_event_t &)> newHandler)
{
    handler = std::move(newHandler);
    notifier = std::make_unique<QSocketNotifier>(xcb_get_file_descriptor(connection), QSocketNotifier::Read);
    QObject::connect(notifier.get(), &QSocketNotifier::activated, notifier.get(), [this] {
        deliver(xcb_poll_for_event);
        if (xcb_connection_has_error(connection) != 0)
            notifier->setEnabled(false); // a lost server would wake us for ever
    });
    // Waiting for a reply moves events from the socket into xcb's queue, where no notifier sees them.
    auto *eventLoop = QAbstractEventDispatcher::instance();
    const auto deliverQueued = [this] { deliver(xcb_poll_for_queued_event); };
    QObject::connect(eventLoop, &QAbstractEventDispatcher::awake, notifier.get(), deliverQueued);
    QObject::connect(eventLoop, &QAbstractEventDispatcher::aboutToBlock, notifier.get(), deliverQueued);
    flush();
}

void XcbConnection::deliver(xcb_generic_event_t *(*next)(xcb_connection_t *))
{
    while (const XcbReply<xcb_generic_event_t> event{next(connection)}) {
        if ((event->response_type & 0x7f) != 0)
            handler(*event);
    }
}
