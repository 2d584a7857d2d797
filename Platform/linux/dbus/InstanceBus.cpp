#include "Platform/linux/dbus/InstanceBus.h"

#include "Platform/linux/dbus/InstanceActions.h"
#include "Platform/linux/dbus/OpenApplication.h"
#include "Platform/linux/dbus/SessionBus.h"

#include <QDBusConnectionInterface>
#include <QTimer>

namespace {

const QString sharedName = QStringLiteral("com.norvane.app");
const QString objectPath = QStringLiteral("/com/norvane/app");

} // namespace

std::unique_ptr<InstanceBus> InstanceBus::connect(const QString &displayName)
{
    static int connections = 0;
    const auto bus = connectToSessionBus(QStringLiteral("norvane-%1").arg(++connections));
    return bus ? std::unique_ptr<InstanceBus>(new InstanceBus(*bus, displayName)) : nullptr;
}

InstanceBus::InstanceBus(const QDBusConnection &busConnection, const QString &displayName)
    : connection(busConnection), name(sharedName + QStringLiteral(".display") + displayName),
      asked(displayName.isEmpty() ? sharedName : name)
{
    // From the event loop, so that the caller has its answer before a panel is shown.
    const auto handle = [this](const QString &action) {
        QTimer::singleShot(0, &object, [this, action] {
            if (onAction)
                onAction(action);
        });
    };
    new OpenApplication(&object, connection, handle);
}

InstanceBus::~InstanceBus()
{
    const QString connectionName = connection.name();
    connection.unregisterObject(objectPath);
    QDBusConnection::disconnectFromBus(connectionName);
}

bool InstanceBus::claim()
{
    if (!connection.registerObject(objectPath, &object, QDBusConnection::ExportAdaptors))
        return connection.objectRegisteredAt(objectPath) == &object; // claimed before
    const auto own = [this](const QString &wanted) {
        const auto reply =
            connection.interface()->registerService(wanted, QDBusConnectionInterface::DontQueueService,
                                                    QDBusConnectionInterface::DontAllowReplacement);
        return reply.value() == QDBusConnectionInterface::ServiceRegistered;
    };
    if (own(name)) {
        own(sharedName); // another display's instance may have it: the desktop's calls are for one only
        return true;
    }
    connection.unregisterObject(objectPath);
    return false;
}

bool InstanceBus::ask(const QString &action)
{
    auto message = QDBusMessage::createMethodCall(
        asked, objectPath, QStringLiteral("org.freedesktop.Application"), QStringLiteral("ActivateAction"));
    message << action << QVariantList() << QVariantMap();
    message.setAutoStartService(false);
    return connection.call(message, QDBus::Block, instanceAnswerLimit).type() == QDBusMessage::ReplyMessage;
}
