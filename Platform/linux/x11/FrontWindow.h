#pragma once

#include "Platform/DesktopEntries.h"
#include "Platform/linux/x11/PasteboardConnection.h"

#include <memory>
#include <optional>

// Which application is in front, as the user sees it: our panel never counts. Used on the clipboard's thread.
class FrontWindow {
public:
    FrontWindow(PasteboardConnection &connection, std::shared_ptr<const DesktopEntries> applications);

    // The window manager has named another active window.
    void noticeChange();

    // Asks the X server. Absent when nothing is in front.
    [[nodiscard]] std::optional<FrontApplication> application();

private:
    [[nodiscard]] xcb_window_t window();
    [[nodiscard]] bool counts(xcb_window_t window) const;

    PasteboardConnection &x;
    std::shared_ptr<const DesktopEntries> entries;
    const bool othersMayBeInFront; // in a Wayland session
    xcb_window_t lastActive = XCB_WINDOW_NONE;
};
