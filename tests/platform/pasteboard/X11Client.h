#pragma once

#include <QByteArray>
#include <QSocketNotifier>
#include <functional>
#include <map>
#include <memory>
#include <xcb/xcb.h>

// Runs the event loop until the condition holds; false when it does not in time.
bool await(const std::function<bool()> &condition, int milliseconds = 5000);

// Another program on the X server: a connection and a window of its own, run by the test's event loop.
class X11Client {
public:
    X11Client();
    virtual ~X11Client();

    [[nodiscard]] xcb_atom_t atom(const QByteArray &name);
    [[nodiscard]] QByteArray name(xcb_atom_t atom);
    [[nodiscard]] xcb_window_t window() const { return ownWindow; }
    [[nodiscard]] xcb_window_t root() const;
    [[nodiscard]] xcb_connection_t *raw() const { return connection; }
    [[nodiscard]] xcb_timestamp_t serverTime();

    void sync(); // until the server has dealt with all that was asked
    void die();  // closes the connection as it is

protected:
    virtual void handle(const xcb_generic_event_t &event) = 0;
    void pump();

    xcb_connection_t *connection;
    xcb_window_t ownWindow;

private:
    std::unique_ptr<QSocketNotifier> notifier;
    std::map<QByteArray, xcb_atom_t> atoms;
};

// The event as what its type says it is.
template <typename T>
const T &as(const xcb_generic_event_t &event)
{
    return reinterpret_cast<const T &>(event);
}
