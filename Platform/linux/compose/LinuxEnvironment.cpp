#include "Platform/linux/compose/LinuxPlatform.h"
#include "Platform/linux/dbus/BusProbe.h"
#include "Platform/linux/dbus/InstanceActions.h"

#include <pwd.h>
#include <unistd.h>

namespace {

// Started without one (by a service manager, by cron), the toolkit would keep the history in the root folder.
void findHome()
{
    if (!qEnvironmentVariableIsEmpty("HOME"))
        return;
    const passwd *user = ::getpwuid(::getuid());
    if (user && user->pw_dir && *user->pw_dir == '/')
        qputenv("HOME", user->pw_dir);
}

// The toolkit connects to the session's bus too (for screen readers, for the tray), and would wait for ever
// for one that hangs; without an address it would start one. So it is told that there is none. Programs that
// we start are told the same.
void leaveDeadBusAlone()
{
    const QString address = sessionBusAddress();
    if (address.isEmpty() || !busAnswers(address, instanceAnswerLimit))
        qputenv("DBUS_SESSION_BUS_ADDRESS", "disabled:");
}

} // namespace

// Our windows and services are X11's: a Wayland session serves them through its X server for such programs.
void prepareLinuxEnvironment()
{
    findHome();
    leaveDeadBusAlone();
    const bool isWayland =
        !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") || qgetenv("XDG_SESSION_TYPE") == "wayland";
    const QByteArray plugin = qgetenv("QT_QPA_PLATFORM");
    const bool isChosen =
        !plugin.isEmpty() && !plugin.startsWith("wayland"); // by a test, or by somebody who knows
    if (isWayland && !isChosen)
        qputenv("QT_QPA_PLATFORM", "xcb");
}
