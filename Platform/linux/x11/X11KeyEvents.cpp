#include "Platform/linux/x11/X11KeyEvents.h"

#include "Platform/Log.h"
#include "Platform/linux/x11/PasteStroke.h"
#include "Platform/linux/x11/RememberedWindow.h"
#include "Platform/linux/x11/SyntheticKeys.h"
#include "Platform/linux/x11/X11Workspace.h"

namespace {

constexpr int interval = 10; // milliseconds between two looks at the focus
constexpr int longestWait = 250;
constexpr int longestWaitForCompositor = 1000; // it draws all windows too, and was seen to take 800
// A compositor tells its X server of the modifiers that it believes are down some time after the focus, which
// lets go of ours.
constexpr int compositorSettles = 50;

xcb_window_t selectionOwner(XcbConnection &connection, xcb_atom_t selection)
{
    const XcbReply<xcb_get_selection_owner_reply_t> owner(xcb_get_selection_owner_reply(
        connection.raw(), xcb_get_selection_owner(connection.raw(), selection), nullptr));
    return owner ? owner->owner : xcb_window_t(XCB_WINDOW_NONE);
}

} // namespace

X11KeyEvents::X11KeyEvents(X11Workspace &desktop, std::function<void()> ownPrimary)
    : workspace(desktop), ownPrimarySelection(std::move(ownPrimary))
{
    if (RememberedWindow *front = workspace.remembered())
        keys = std::make_unique<SyntheticKeys>(front->server());
    retry.setInterval(interval);
    QObject::connect(&retry, &QTimer::timeout, &retry, [this] { tryToPaste(); });
}

X11KeyEvents::~X11KeyEvents() = default;

bool X11KeyEvents::canSynthesise() const
{
    return keys && keys->available() && workspace.rememberedWindow() != XCB_WINDOW_NONE;
}

void X11KeyEvents::postPaste()
{
    retry.stop();
    if (!canSynthesise())
        return;
    target = workspace.rememberedWindow();
    const bool underWayland = workspace.remembered()->isUnderWayland();
    triesLeft = (underWayland ? longestWaitForCompositor : longestWait) / interval;
    calmNeeded = underWayland ? compositorSettles / interval : 0;
    calmLeft = calmNeeded;
    askedForPrimary = false;
    retry.start();
    tryToPaste();
}

void X11KeyEvents::tryToPaste()
{
    RememberedWindow &front = *workspace.remembered();
    const bool sameWindow = front.window() == target;
    const PasteStroke paste = pasteStroke(front.identity());
    if (sameWindow && paste.pastesPrimary && !askedForPrimary && ownPrimarySelection) {
        askedForPrimary = true;
        ownPrimarySelection();
    }
    if (sameWindow && front.hasFocus() && (!paste.pastesPrimary || ownsPrimary())) {
        if (--calmLeft >= 0)
            return;
        retry.stop();
        keys->type(paste.stroke);
        return;
    }
    calmLeft = calmNeeded;
    if (sameWindow && --triesLeft > 0)
        return;
    retry.stop();
    logLine(QStringLiteral("Norvane: nothing was pasted; the window in front did not get the focus back"));
}

// The claim runs elsewhere: typed before it arrives, the stroke would paste what was selected last.
bool X11KeyEvents::ownsPrimary() const
{
    XcbConnection &connection = workspace.remembered()->server();
    const xcb_window_t clipboard = selectionOwner(connection, connection.atom("CLIPBOARD"));
    return clipboard != XCB_WINDOW_NONE && selectionOwner(connection, XCB_ATOM_PRIMARY) == clipboard;
}
