#include "Platform/linux/x11/FrontWindow.h"

#include "Platform/linux/x11/WindowProperties.h"

#include <unistd.h>

FrontWindow::FrontWindow(PasteboardConnection &connection, std::shared_ptr<const DesktopEntries> applications)
    : x(connection), entries(std::move(applications))
{
    noticeChange();
}

bool FrontWindow::counts(xcb_window_t window) const
{
    return window != XCB_WINDOW_NONE && !isOverrideRedirect(x.raw(), window);
}

void FrontWindow::noticeChange()
{
    const auto active = activeWindow(x.raw(), x.root());
    if (active && counts(*active))
        lastActive = *active;
}

xcb_window_t FrontWindow::window()
{
    const auto active = activeWindow(x.raw(), x.root());
    if (active && counts(*active))
        return lastActive = *active;
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
