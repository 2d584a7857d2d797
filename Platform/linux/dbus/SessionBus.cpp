#include "Platform/linux/dbus/SessionBus.h"

#include "Platform/linux/dbus/BusProbe.h"
#include "Platform/linux/dbus/InstanceActions.h"

std::optional<QDBusConnection> connectToSessionBus(const QString &name)
{
    static QString silentAddress;
    const QString address = sessionBusAddress();
    if (address.isEmpty() || address == silentAddress)
        return std::nullopt;
    if (!busAnswers(address, instanceAnswerLimit)) {
        silentAddress = address;
        return std::nullopt;
    }
    const auto bus = QDBusConnection::connectToBus(address, name);
    return bus.isConnected() ? std::optional(bus) : std::nullopt;
}
