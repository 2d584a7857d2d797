#include "Platform/linux/x11/FrontWindow.h"

#include "Platform/linux/x11/WindowProperties.h"
#include "Platform/linux/x11/Xwayland.h"

#include <unistd.h>

FrontWindow::FrontWindow(PasteboardConnection &connection, std::shared_ptr<const DesktopEntries> applications)
    : x(connection), entries(std::move(applications)), othersMayBeInFront(isXwayland(x.raw(), x.root()))
{
    noticeChange();
}

bool FrontWindow::counts(xcb_window_t window) const
{
    return window != XCB_WINDOW_NONE && !isOverrideRedirect(x.raw(), window) &&
           !isMarkedAsPanel(x.raw(), window);
}

void FrontWindow::noticeChange()
{
    const auto active = activeWindow(x.raw(), x.root());
    if (active && counts(*active))
        lastActive = *active;
    else if (othersMayBeInFront && active == xcb_window_t(XCB_WINDOW_NONE))
        lastActive = XCB_WINDOW_NONE;
}

xcb_window_t FrontWindow::window()
{
    const auto active = activeWindow(x.raw(), x.root());
    if (active && counts(*active))
        return lastActive = *active;
    if (othersMayBeInFront && active == xcb_window_t(XCB_WINDOW_NONE))
        return XCB_WINDOW_NONE; // a program that does not speak X11
    if (active && lastActive != XCB_WINDOW_NONE)
        return lastActive; // our panel has the focus, or nothing has
    const xcb_window_t focused = focusedTopLevel(x.raw());
    return counts(focused) ? focused : xcb_window_t(XCB_WINDOW_NONE);
}

std::optional<FrontApplication> FrontWindow::application()
{
    const WindowIdentity identity = readWindowIdentity(x.raw(), window());
    if (identity.pid == getpid())
        return FrontApplication{QStringView(ownBundleIdentifier).toString(), QStringLiteral("Norvane")};
    const bool silent = identity.className.isEmpty() && identity.instanceName.isEmpty() &&
                        identity.gtkApplicationID.isEmpty() && identity.pid == 0;
    if (silent)
        return std::nullopt;
    return entries->application(identity);
}
