#pragma once

#include <QByteArray>
#include <QHash>
#include <QObject>
#include <cstdlib>
#include <functional>
#include <memory>
#include <xcb/xcb.h>
#include <xcb/xcbext.h>

class QSocketNotifier;

struct FreeDeleter {
    void operator()(void *memory) const { std::free(memory); }
};

// What an xcb *_reply function returns; null when the request failed.
template <typename Reply>
using XcbReply = std::unique_ptr<Reply, FreeDeleter>;

// A connection to the X server of our own, apart from Qt's. Belongs to the thread that made it.
//
// A lost server leaves it in place: requests go nowhere and replies are null.
class XcbConnection {
public:
    // To the server of $DISPLAY, and the screen that it names. Null when there is none.
    [[nodiscard]] static std::unique_ptr<XcbConnection> open();
    ~XcbConnection();
    XcbConnection(const XcbConnection &) = delete;
    XcbConnection &operator=(const XcbConnection &) = delete;

    [[nodiscard]] xcb_connection_t *raw() const { return connection; }
    [[nodiscard]] xcb_window_t root() const { return screen->root; }
    [[nodiscard]] int screenNumber() const { return number; }
    [[nodiscard]] const xcb_setup_t &setup() const { return *xcb_get_setup(connection); }

    // The atom of a name, created if need be. One round trip the first time.
    [[nodiscard]] xcb_atom_t atom(const char *name) const;

    // The extension's first event and major opcode; null when the server lacks it.
    [[nodiscard]] const xcb_query_extension_reply_t *extension(xcb_extension_t &which) const;

    // Runs `handler` for every event, from the event loop of the thread that calls this. Errors of unchecked
    // requests are dropped. Not with a Qt-less thread.
    void dispatch(std::function<void(const xcb_generic_event_t &)> handler);

    void flush() const { xcb_flush(connection); }

private:
    XcbConnection(xcb_connection_t *opened, xcb_screen_t *defaultScreen, int screenNumber);
    void deliver(xcb_generic_event_t *(*next)(xcb_connection_t *));

    xcb_connection_t *connection;
    xcb_screen_t *screen;
    int number; // of the screen
    mutable QHash<QByteArray, xcb_atom_t> atoms;
    std::function<void(const xcb_generic_event_t &)> handler;
    std::unique_ptr<QSocketNotifier> notifier;
};
