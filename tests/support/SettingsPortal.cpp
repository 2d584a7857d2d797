#include "tests/support/SettingsPortal.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <atomic>

namespace {

const QString connectionName = QStringLiteral("settings-portal");
const QString busName = QStringLiteral("org.freedesktop.portal.Desktop");
const QString objectPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString interfaceName = QStringLiteral("org.freedesktop.portal.Settings");
const QString appearanceGroup = QStringLiteral("org.freedesktop.appearance");
const QString schemeKey = QStringLiteral("color-scheme");

} // namespace

class SettingsPortal::Service : public QDBusVirtualObject {
public:
    Service(uint initialScheme, Manner chosenManner) : scheme(initialScheme), manner(chosenManner) {}

    [[nodiscard]] QString introspect(const QString &) const override { return {}; }

    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override
    {
        if (message.interface() != interfaceName || message.member() != u"Read")
            return false;
        ++questions;
        if (manner == Manner::silent)
            return true;
        const bool known = message.arguments() == QVariantList{appearanceGroup, schemeKey};
        if (manner == Manner::failing || !known)
            return connection.send(message.createErrorReply(
                QStringLiteral("org.freedesktop.portal.Error.NotFound"), QStringLiteral("No such setting")));
        const QVariant value =
            manner == Manner::nonsense ? QVariant(QStringLiteral("dark")) : QVariant(scheme.load());
        const QVariant inner = QVariant::fromValue(QDBusVariant(value));
        return connection.send(
            message.createReply(QVariant::fromValue(QDBusVariant(inner)))); // wrapped twice
    }

    std::atomic<uint> scheme;
    std::atomic<int> questions = 0;

private:
    Manner manner;
};

SettingsPortal::SettingsPortal(uint scheme, Manner manner)
    : service(std::make_unique<Service>(scheme, manner))
{
    service->moveToThread(&thread);
    thread.start();
    auto bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, connectionName);
    owned = bus.registerVirtualObject(objectPath, service.get()) && bus.registerService(busName);
}

SettingsPortal::~SettingsPortal()
{
    {
        auto bus = QDBusConnection(connectionName);
        bus.unregisterService(busName);
        bus.unregisterObject(objectPath);
    }
    QDBusConnection::disconnectFromBus(connectionName);
    thread.quit();
    thread.wait();
}

int SettingsPortal::questions() const
{
    return service->questions;
}

void SettingsPortal::change(uint scheme)
{
    service->scheme = scheme;
    changeOther(appearanceGroup, schemeKey, scheme);
}

void SettingsPortal::changeOther(const QString &group, const QString &key, const QVariant &value)
{
    auto signal = QDBusMessage::createSignal(objectPath, interfaceName, QStringLiteral("SettingChanged"));
    signal << group << key << QVariant::fromValue(QDBusVariant(value));
    QDBusConnection(connectionName).send(signal);
}
