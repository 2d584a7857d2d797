#pragma once

#include <QByteArray>
#include <chrono>
#include <cstdlib>
#include <deque>
#include <memory>
#include <vector>
#include <xcb/xcb.h>

using Clock = std::chrono::steady_clock;
using TimePoint = Clock::time_point;

struct FreeEvent {
    void operator()(xcb_generic_event_t *event) const { std::free(event); }
};
using XEvent = std::unique_ptr<xcb_generic_event_t, FreeEvent>;

// The clipboard's own connection to the X server, with the one window that owns, asks and answers. The window
// lives as long as the connection: an owner that answers late to a window that is gone would die of it.
//
// Opened on any thread, then used by the clipboard's thread only.
class PasteboardConnection {
public:
    // Null, with a line in the log, when there is no X server or it lacks XFixes.
    static std::unique_ptr<PasteboardConnection> open();
    ~PasteboardConnection();
    PasteboardConnection(const PasteboardConnection &) = delete;
    PasteboardConnection &operator=(const PasteboardConnection &) = delete;

    struct Atoms {
        xcb_atom_t clipboard, targets, multiple, timestamp, saveTargets, incr, atomPair, null, compoundText;
        xcb_atom_t activeWindow, time, clipboardManager;
    };

    [[nodiscard]] xcb_connection_t *raw() const { return connection; }
    [[nodiscard]] xcb_window_t root() const { return rootWindow; }
    [[nodiscard]] xcb_window_t window() const { return ownWindow; }
    [[nodiscard]] const Atoms &atoms() const { return known; }
    [[nodiscard]] int fileDescriptor() const { return xcb_get_file_descriptor(connection); }
    [[nodiscard]] bool isGone() const { return xcb_connection_has_error(connection) != 0; }

    // The longest property that one request can write, in bytes.
    [[nodiscard]] qsizetype maxPropertyBytes() const;

    // Whether an event tells of a changed selection owner.
    [[nodiscard]] bool isOwnerChange(const xcb_generic_event_t &event) const;

    // The next event, in the server's order; null when none has come.
    XEvent nextEvent();

    // Whether events wait that were received while something else was read. Sends what is unsent.
    bool flushedIntoEvents();

    // Waits until the server has dealt with everything asked so far: every event before it has then been
    // received.
    void synchronize();

    // The server's time now. Asks the server.
    xcb_timestamp_t serverTime();

    // What came of wanting to own a selection.
    struct Claim {
        enum class Result { confirmed, overtaken, refused } result = Result::refused;
        xcb_timestamp_t time = 0;
        uint32_t sequence = 0;                // events with a lower one were sent before the claim
        xcb_window_t owner = XCB_WINDOW_NONE; // who owns it now
    };

    // Claims a selection for our window and makes sure. Overtaken: it was ours, and already is another's.
    Claim claim(xcb_atom_t selection);

    // Claims a selection that nobody owns. Refused where somebody does: nothing can come in between.
    Claim claimIfFree(xcb_atom_t selection);

    // Gives up a selection that is ours; one that is not is left alone.
    void letGo(xcb_atom_t selection);

    // Whether two windows are one program's.
    [[nodiscard]] bool areOfOneClient(xcb_window_t a, xcb_window_t b) const;

private:
    explicit PasteboardConnection(xcb_connection_t *opened);
    bool prepare(int screen);
    void receiveQueued();
    [[nodiscard]] xcb_window_t ownerOf(xcb_atom_t selection) const;

    xcb_connection_t *connection;
    xcb_window_t rootWindow = XCB_WINDOW_NONE;
    xcb_window_t ownWindow = XCB_WINDOW_NONE;
    uint8_t ownerChange = 0;
    Atoms known{};
    std::deque<XEvent> received;
};

// Whether an event or request of one sequence number came before another; the numbers wrap around.
[[nodiscard]] inline bool isBefore(uint32_t a, uint32_t b)
{
    return static_cast<int32_t>(a - b) < 0;
}

// The sequence number of the last request that the server had dealt with when it sent this event.
[[nodiscard]] inline uint32_t sequenceOf(const xcb_generic_event_t &event)
{
    return event.full_sequence;
}
