#pragma once

#include "Platform/linux/x11/XcbConnection.h"

#include <QSocketNotifier>
#include <vector>

using SelectionRequest = xcb_selection_request_event_t;

// The event as what its type says it is.
template <typename T>
const T &as(const xcb_generic_event_t &event)
{
    return reinterpret_cast<const T &>(event);
}

// The bytes of a property of 32-bit units.
[[nodiscard]] QByteArray bytesOf(const std::vector<quint32> &units);

// Another program on the X server: a connection and a window of its own.
class X11Client {
public:
    X11Client();
    virtual ~X11Client() = default;

    [[nodiscard]] xcb_atom_t atom(const QByteArray &name) const { return server->atom(name.constData()); }
    [[nodiscard]] QByteArray name(xcb_atom_t atom) const;
    [[nodiscard]] xcb_window_t window() const { return ownWindow; }
    [[nodiscard]] xcb_window_t root() const { return server->root(); }
    [[nodiscard]] xcb_connection_t *raw() const { return server->raw(); }
    [[nodiscard]] xcb_window_t holderOf(const QByteArray &selection) const;

    // Writes a property, of this window or another.
    void put(xcb_window_t window, xcb_atom_t property, const QByteArray &type, int format,
             const QByteArray &bytes);
    void put(const QByteArray &property, const QByteArray &type, int format, const QByteArray &bytes);
    void put(const SelectionRequest &request, const QByteArray &type, int format, const QByteArray &bytes);

    void beInFront(const QByteArray &className); // with the focus; no window manager runs here
    void claim(const QByteArray &selection = "CLIPBOARD");
    void watch(xcb_window_t other) const; // its properties
    // Tells the requestor that its answer is there, or that there is none; `target` where it has another
    // name.
    xcb_selection_notify_event_t notify(const SelectionRequest &request, bool answered = true,
                                        xcb_atom_t target = 0);

    void sync() const;                     // until the server has dealt with all that was asked
    virtual void die() { server.reset(); } // closes the connection as it is

protected:
    template <typename Sent>
    void send(xcb_window_t to, const Sent &event) const
    {
        char padded[32] = {}; // of which a structure may name fewer
        static_assert(sizeof(event) <= sizeof(padded));
        std::copy_n(reinterpret_cast<const char *>(&event), sizeof(event), padded);
        xcb_send_event(raw(), 0, to, XCB_EVENT_MASK_NO_EVENT, padded);
    }

    std::unique_ptr<XcbConnection> server = XcbConnection::open();
    xcb_window_t ownWindow = xcb_generate_id(raw());
};

// Runs the event loop until the condition holds; false when it does not in time.
bool await(const std::function<bool()> &condition, int milliseconds = 5000);

// One that the test's event loop runs.
class LiveClient : public X11Client {
public:
    LiveClient();
    void die() override;

protected:
    virtual void handle(const xcb_generic_event_t &event) = 0;

private:
    void pump();

    std::unique_ptr<QSocketNotifier> notifier;
};
