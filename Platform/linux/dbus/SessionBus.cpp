#include "Platform/linux/dbus/SessionBus.h"

#include "Platform/linux/dbus/BusProbe.h"
#include "Platform/linux/dbus/InstanceActions.h"

#include <QFileInfo>

namespace {

// Where the session's bus is said to be. Never left to libdbus, which would start one where none is.
QString busAddress()
{
    const QString address = qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS");
    if (address.startsWith(u"autolaunch:"))
        return {};
    const QString runtimeFolder = qEnvironmentVariable("XDG_RUNTIME_DIR");
    if (!address.isEmpty() || runtimeFolder.isEmpty())
        return address;
    const QString socket = runtimeFolder + QStringLiteral("/bus");
    if (!QFileInfo::exists(socket))
        return {};
    return QStringLiteral("unix:path=") + QString::fromLatin1(socket.toUtf8().toPercentEncoding("/"));
}

} // namespace

std::optional<QDBusConnection> connectToSessionBus(const QString &name)
{
    static QString silentAddress;
    const QString address = busAddress();
    if (address.isEmpty() || address == silentAddress)
        return std::nullopt;
    if (!busAnswers(address, instanceAnswerLimit)) {
        silentAddress = address;
        return std::nullopt;
    }
    const auto bus = QDBusConnection::connectToBus(address, name);
    return bus.isConnected() ? std::optional(bus) : std::nullopt;
}
