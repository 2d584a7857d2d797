#pragma once

#include "tests/platform/pasteboard/X11Client.h"

#include <QByteArrayList>

// A client of the X server that can send whatever it likes, and that may wait: it runs in a process of its
// own. Ends the process when the server goes.
class HostileProgram : public X11Client {
public:
    [[nodiscard]] XcbReply<xcb_generic_event_t> next();
    [[nodiscard]] QByteArray atoms(const QByteArrayList &names) const; // as the bytes of a property

    void actedOnce(bool now); // says so, the first time that it is true
    [[noreturn]] void actAndDie();

    // As an owner.
    SelectionRequest lastRequest{};
    int chunks = 0; // or whatever the fault counts

    // As a requestor.
    void ask(const QByteArray &target, const QByteArray &property);
    void awaitNotifications(int count);
    void takeProperty(const QByteArray &property); // and deletes it

    void forgeRequest(xcb_window_t victim, xcb_window_t requestor, xcb_atom_t property);
    void forgeClear(xcb_window_t victim);
    void forgeOwnerChange(xcb_window_t victim);

private:
    bool acted = false;
};
