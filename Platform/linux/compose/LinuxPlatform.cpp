#include "Platform/linux/compose/LinuxPlatform.h"

#include "Platform/Log.h"
#include "Platform/linux/compose/AbsentPasteboard.h"
#include "Platform/linux/dbus/AtSpiCaret.h"
#include "Platform/linux/dbus/DBusAppearance.h"
#include "Platform/linux/dbus/DBusInstance.h"
#include "Platform/linux/dbus/SessionBus.h"
#include "Platform/linux/tesseract/ProcessRecognition.h"
#include "Platform/linux/tray/TrayStatusItem.h"
#include "Platform/linux/x11/X11HotKeys.h"
#include "Platform/linux/x11/X11KeyEvents.h"
#include "Platform/linux/x11/X11KeyboardLayout.h"
#include "Platform/linux/x11/X11PanelSurface.h"
#include "Platform/linux/x11/X11Pasteboard.h"
#include "Platform/linux/x11/X11Screens.h"
#include "Platform/linux/x11/X11Workspace.h"
#include "Platform/linux/xdg/XdgDesktopEntries.h"
#include "Platform/linux/xdg/XdgUserDefaults.h"

namespace {

// The window whose caret is asked for; absent on an empty desktop.
std::optional<CaretWindow> caretWindow(const X11Workspace &workspace)
{
    const auto area = workspace.rememberedArea();
    if (!area)
        return std::nullopt;
    return CaretWindow{workspace.remembered()->identity().pid, *area};
}

void sayWhatWorks(const X11Workspace &workspace)
{
    if (workspace.remembered() == nullptr || !workspace.remembered()->isUnderWayland())
        return;
    logLine(QStringLiteral(
        "Norvane: in this Wayland session the program runs as an X11 program. It records every "
        "copy where the desktop shares the clipboard with X11 (GNOME does), elsewhere those of "
        "X11 programs; shortcut and pasting work while an X11 program is in front"));
}

} // namespace

std::unique_ptr<ApplicationInstance> makeApplicationInstance()
{
    return std::make_unique<DBusInstance>();
}

std::unique_ptr<Platform> makeLinuxPlatform()
{
    auto platform = std::make_unique<Platform>();
    auto entries = std::make_shared<XdgDesktopEntries>();
    entries->prewarm(); // before the first window asks on the main thread
    platform->desktopEntries = entries;
    platform->defaults = std::make_unique<XdgUserDefaults>();
    platform->keyboardLayout = std::make_unique<X11KeyboardLayout>();

    auto workspace = std::make_unique<X11Workspace>(entries);
    sayWhatWorks(*workspace);
    auto hotKeys = X11HotKeys::create();
    platform->panelSurface = std::make_unique<X11PanelSurface>(*hotKeys, *workspace);

    platform->accessibility =
        std::make_unique<AtSpiCaret>([desktop = workspace.get()] { return caretWindow(*desktop); });

    std::function<void()> ownPrimary = [] {};
    if (auto pasteboard = X11Pasteboard::create(entries)) {
        ownPrimary = [served = pasteboard.get()] { served->ownPrimary(); };
        platform->pasteboard = std::move(pasteboard);
    } else {
        platform->pasteboard = std::make_unique<AbsentPasteboard>();
    }
    // The platform destroys what was given the workspace, the hot keys and the pasteboard before these.
    platform->keyEvents = std::make_unique<X11KeyEvents>(*workspace, std::move(ownPrimary));
    platform->workspace = std::move(workspace);
    platform->hotKeys = std::move(hotKeys);
    platform->screens = std::make_unique<X11Screens>();
    platform->statusItem = std::make_unique<TrayStatusItem>(connectToSessionBus);
    platform->appearance = std::make_unique<DBusAppearance>();
    platform->recognition = std::make_shared<ProcessRecognition>(ProcessRecognition::Settings());
    return platform;
}
