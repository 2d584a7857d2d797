#pragma once

#include <QRect>
#include <QString>
#include <array>
#include <chrono>
#include <functional>
#include <optional>
#include <vector>
#include <xcb/xcb.h>

// What a window says about itself. Titles match by containing, everything else exactly; an empty field
// matches all.
struct WindowMatch {
    QString className = {}; // the second string of WM_CLASS
    QString title = {};
    std::optional<bool> overrideRedirect = {};
    int minimumWidth = 0; // pixels: tells a panel from its menus and tooltips
    int depth = 3;        // below the root: a client stands at most two frames below it, a tray's icon deeper
};

// The running X session, seen as a user sees it: which windows are there, where, and who has the keyboard.
//
// Owns one connection. Every wait is bounded and looks again whenever the server says something, at the
// latest after 10 ms, since other programs change files and buses without telling the server.
class Desktop {
public:
    using Milliseconds = std::chrono::milliseconds;
    static constexpr Milliseconds patience{8000}; // two busy cores and a cold start

    // Connects to $DISPLAY. A test without a server cannot go on: ends the process with a message.
    Desktop();
    ~Desktop();
    Desktop(const Desktop &) = delete;
    Desktop &operator=(const Desktop &) = delete;

    [[nodiscard]] xcb_connection_t *connection() const { return xcb; }
    [[nodiscard]] const xcb_screen_t &screen() const { return *shown; }
    [[nodiscard]] xcb_atom_t atom(const QByteArray &name) const;

    // True as soon as `condition` is; false when it was not within `bound`.
    bool waitFor(const std::function<bool()> &condition, Milliseconds bound = patience) const;

    // True when `condition` stayed false all the time: what must not happen did not.
    bool staysFalse(const std::function<bool()> &condition, Milliseconds span) const;

    // A viewable window that matches; the one on top when there are several.
    [[nodiscard]] std::optional<xcb_window_t> findWindow(const WindowMatch &match) const;
    [[nodiscard]] std::optional<xcb_window_t> awaitWindow(const WindowMatch &match,
                                                          Milliseconds bound = patience) const;

    // The owner of CLIPBOARD is another than before, and not none.
    [[nodiscard]] bool awaitNewOwner(xcb_window_t before) const;

    // Makes a window the active one, through the window manager where there is one, and waits until it has
    // the keyboard.
    bool activate(xcb_window_t window) const;

    // The keyboard goes to the window or to one inside it.
    [[nodiscard]] bool hasKeyboard(xcb_window_t window) const;

    // Asks the window manager for something in the user's name, as a pager does.
    void askManager(xcb_window_t window, const QByteArray &type, const std::array<uint32_t, 4> &data) const;

    // Moves a window, or gives it another size too, as a program does.
    void place(xcb_window_t window, QPoint where, QSize size = {}) const;

    [[nodiscard]] bool isViewable(xcb_window_t window) const;
    [[nodiscard]] QRect geometry(xcb_window_t window) const; // root coordinates, without the frame
    [[nodiscard]] QString title(xcb_window_t window) const;
    [[nodiscard]] QString className(xcb_window_t window) const;
    [[nodiscard]] bool hasWindowManager() const;
    [[nodiscard]] xcb_window_t activeWindow() const; // what the window manager says, 0 without one
    [[nodiscard]] xcb_window_t selectionOwner(const QByteArray &selection) const;

    // Paints the root window, which is black on a bare server.
    void paintBackground(quint32 rgb) const;

private:
    void drainEvents() const;
    void collect(xcb_window_t parent, int depth, std::vector<xcb_window_t> &found) const;
    [[nodiscard]] bool matches(xcb_window_t window, const WindowMatch &match) const;
    [[nodiscard]] QByteArray property(xcb_window_t window, xcb_atom_t name, xcb_atom_t type) const;

    xcb_connection_t *xcb = nullptr;
    xcb_screen_t *shown = nullptr;
};
