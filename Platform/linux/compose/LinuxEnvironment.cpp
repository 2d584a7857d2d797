#include "Platform/linux/compose/LinuxPlatform.h"
#include "Platform/linux/dbus/BusProbe.h"
#include "Platform/linux/dbus/InstanceActions.h"
#include "Platform/linux/x11/XcbConnection.h"

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

std::shared_ptr<const void> reachDisplay(QString &problem)
{
    const QByteArray plugin = qgetenv("QT_QPA_PLATFORM");
    if (!plugin.isEmpty() && !plugin.startsWith("xcb")) // one that needs no X server
        return std::make_shared<const bool>(true);
    if (std::shared_ptr<const void> connection = XcbConnection::open())
        return connection;
    const QString display = qEnvironmentVariable("DISPLAY");
    if (!display.isEmpty())
        problem = QStringLiteral("the display \"%1\" cannot be reached").arg(display);
    else if (qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"))
        problem = QStringLiteral("there is no display: DISPLAY is not set");
    else
        problem =
            QStringLiteral("there is no X server, which is needed under Wayland too: DISPLAY is not set");
    return nullptr;
}
