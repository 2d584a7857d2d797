#pragma once

#include "Platform/linux/x11/PasteboardConnection.h"
#include "Platform/linux/x11/ServedContent.h"

#include <functional>
#include <xcb/xfixes.h>

// The desktop's clipboard manager: who owns CLIPBOARD_MANAGER is asked by programs that quit to keep what
// they copied. Taken when nobody has it, left to another that has it, taken again when that one goes.
class ManagerRole {
public:
    // `serve` makes targets the content of a selection that was claimed.
    using Serve = std::function<void(xcb_atom_t selection, const PasteboardConnection::Claim &claim,
                                     const std::vector<ServedTarget> &targets)>;

    ManagerRole(PasteboardConnection &connection, Serve serve);

    void begin() { takeIfFree(); }
    // Events of other selections are ignored.
    void handleOwnerChange(const xcb_xfixes_selection_notify_event_t &event);

    // Whether another program has it.
    [[nodiscard]] bool isAnothers() const;

private:
    void takeIfFree();

    PasteboardConnection &x;
    Serve serve;
    xcb_window_t holder = XCB_WINDOW_NONE;
};
