#pragma once

#include "Platform/linux/x11/XcbConnection.h"

#include <functional>
#include <memory>

// Whether a compositor draws the screen, so that windows can be translucent: it may come and go at any time.
// Main thread.
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
    bool told = false;                         // of changes, by XFixes
    bool present = false;
};
