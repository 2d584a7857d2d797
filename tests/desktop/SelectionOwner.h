#pragma once

#include "tests/desktop/Desktop.h"

#include <QByteArrayList>
#include <atomic>
#include <mutex>
#include <thread>

// A program that owns the CLIPBOARD with content of our choosing and remembers all that it was asked for.
//
// Its requests are answered on a thread of its own with a connection of its own. Contents are served whole,
// so they have to fit into one request (some 100 KiB).
class SelectionOwner {
public:
    using Content = QList<std::pair<QByteArray, QByteArray>>; // target and bytes, in the offered order

    explicit SelectionOwner(Content offered) : content(std::move(offered)) {}
    ~SelectionOwner();
    SelectionOwner(const SelectionOwner &) = delete;
    SelectionOwner &operator=(const SelectionOwner &) = delete;

    // Maps a small managed window with this WM_CLASS, which stands for the program on the screen.
    void showWindow(const QByteArray &instance, const QByteArray &className, const QByteArray &title);

    // Takes the selection; true when the server agreed.
    [[nodiscard]] bool claim();

    // The targets that were asked for so far, in order, TARGETS among them.
    [[nodiscard]] QByteArrayList requested() const;

    [[nodiscard]] bool lost() const { return over; } // somebody else has the selection now

private:
    void serve();
    void answer(const xcb_selection_request_event_t &request);
    bool fill(const xcb_selection_request_event_t &request, xcb_atom_t property, const QByteArray &target);
    [[nodiscard]] QByteArray nameOf(xcb_atom_t atom) const;
    [[nodiscard]] xcb_window_t makeWindow(QSize size) const;

    const Content content;
    const Desktop server;
    xcb_connection_t *const xcb = server.connection();
    const xcb_window_t window = makeWindow({1, 1});
    std::atomic<bool> over = false;
    mutable std::mutex mutex;
    QByteArrayList asked;
    std::thread thread;
};
