#include "Platform/Log.h"
#include "Platform/linux/compose/LinuxPlatform.h"

// Our windows and services are X11's: a Wayland session serves them through its X server for such programs.
void prepareLinuxEnvironment()
{
    const bool isWayland =
        !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") || qgetenv("XDG_SESSION_TYPE") == "wayland";
    const QByteArray plugin = qgetenv("QT_QPA_PLATFORM");
    const bool isChosen =
        !plugin.isEmpty() && !plugin.startsWith("wayland"); // by a test, or by somebody who knows
    if (!isWayland || isChosen)
        return;
    qputenv("QT_QPA_PLATFORM", "xcb");
    logLine(QStringLiteral(
        "Norvane: in this Wayland session the program runs as an X11 program. It records every "
        "copy where the desktop shares the clipboard with X11 (GNOME does), elsewhere those of "
        "X11 programs; shortcut and pasting work while an X11 program is in front"));
}
