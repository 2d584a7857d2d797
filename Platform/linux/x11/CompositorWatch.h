#pragma once

#include "Platform/linux/x11/XcbConnection.h"

#include <functional>
#include <memory>

// Whether a compositor draws the screen of $DISPLAY, so that windows there can be translucent: it may come
// and go at any time. Main thread.
class CompositorWatch {
public:
    CompositorWatch();

    // What is known from the server's last word; asks it where it does not tell of changes by itself.
    [[nodiscard]] bool isPresent() const;

    std::function<void()> onChange;

private:
    [[nodiscard]] bool ask() const;
    [[nodiscard]] bool subscribe() const;

    std::unique_ptr<XcbConnection> connection; // null without an X server
    xcb_atom_t selection = XCB_ATOM_NONE;      // that who draws the screen owns
    bool told = false;                         // of changes, by XFixes
    bool present = false;
};
