#include "Platform/linux/dbus/DBusAppearance.h"

#include "Platform/linux/dbus/SessionBus.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

namespace {

const QString connectionName = QStringLiteral("norvane-appearance");
const QString service = QStringLiteral("org.freedesktop.portal.Desktop");
const QString path = QStringLiteral("/org/freedesktop/portal/desktop");
const QString interface = QStringLiteral("org.freedesktop.portal.Settings");
const QString appearanceGroup = QStringLiteral("org.freedesktop.appearance");
const QString schemeKey = QStringLiteral("color-scheme");

constexpr int answerLimit = 500; // milliseconds; a portal that has to be started takes about 300

// Read() wraps the value twice, SettingChanged once; absent when there is no number in it.
std::optional<uint> unwrapped(QVariant value)
{
    for (int layer = 0; layer < 3 && value.canConvert<QDBusVariant>(); ++layer)
        value = value.value<QDBusVariant>().variant();
    return value.typeId() == QMetaType::UInt ? std::optional(value.toUInt()) : std::nullopt;
}

} // namespace

DBusAppearance::DBusAppearance() : bus(connectToSessionBus(connectionName))
{
    if (!bus)
        return;
    qRegisterMetaType<QDBusVariant>(); // or the slot is refused while no message has been sent yet
    bus->connect(service, path, interface, QStringLiteral("SettingChanged"), this,
                 SLOT(settingChanged(QString, QString, QDBusVariant)));
    starts.setConnection(*bus);
    starts.setWatchMode(QDBusServiceWatcher::WatchForRegistration);
    starts.addWatchedService(service);
    connect(&starts, &QDBusServiceWatcher::serviceRegistered, this, &DBusAppearance::read);
    read();
}

DBusAppearance::~DBusAppearance()
{
    bus.reset();
    QDBusConnection::disconnectFromBus(connectionName);
}

void DBusAppearance::read()
{
    auto question = QDBusMessage::createMethodCall(service, path, interface, QStringLiteral("Read"));
    question << appearanceGroup << schemeKey;
    auto *pending = new QDBusPendingCallWatcher(bus->asyncCall(question, answerLimit), this);
    connect(pending, &QDBusPendingCallWatcher::finished, this, [this, pending, asked = changes] {
        pending->deleteLater();
        const QDBusPendingReply<QDBusVariant> answer = *pending;
        if (answer.isValid() && asked == changes)
            take(QVariant::fromValue(answer.value()));
    });
}

void DBusAppearance::settingChanged(const QString &group, const QString &key, const QDBusVariant &value)
{
    if (group != appearanceGroup || key != schemeKey)
        return;
    ++changes;
    take(value.variant());
}

// What is no number leaves everything as it is; numbers without a meaning count as no preference.
void DBusAppearance::take(const QVariant &value)
{
    const auto number = unwrapped(value);
    if (!number)
        return;
    const auto told = *number == 1   ? ColorScheme::dark
                      : *number == 2 ? ColorScheme::light
                                     : ColorScheme::noPreference;
    if (told == scheme)
        return;
    scheme = told;
    if (onChange)
        onChange();
}
