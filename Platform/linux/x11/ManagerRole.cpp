#include "Platform/linux/x11/ManagerRole.h"

ManagerRole::ManagerRole(PasteboardConnection &connection, Serve serveTargets)
    : x(connection), serve(std::move(serveTargets))
{
}

void ManagerRole::handleOwnerChange(const xcb_xfixes_selection_notify_event_t &event)
{
    if (event.selection != x.atoms().clipboardManager)
        return;
    if (event.subtype == XCB_XFIXES_SELECTION_EVENT_SET_SELECTION_OWNER && event.owner != XCB_WINDOW_NONE)
        holder = event.owner;
    else
        takeIfFree();
}

bool ManagerRole::isAnothers() const
{
    return holder != XCB_WINDOW_NONE && holder != x.window();
}

void ManagerRole::takeIfFree()
{
    const auto claim = x.claimIfFree(x.atoms().clipboardManager);
    holder = claim.owner;
    if (claim.result == PasteboardConnection::Claim::Result::confirmed)
        serve(x.atoms().clipboardManager, claim, {});
}
