#include "Platform/linux/dbus/AtSpiBus.h"

#include "Platform/linux/dbus/AtSpiProtocol.h"
#include "Platform/linux/dbus/BusProbe.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

namespace {

constexpr int signOfLifeLimit = 500; // milliseconds
constexpr int addressLimit = 5000;   // milliseconds; the session's bus may have to start the other one

QString freshName()
{
    static int connections = 0;
    return QStringLiteral("norvane-accessibility-%1").arg(++connections);
}

void close(std::optional<QDBusConnection> &connection)
{
    if (!connection)
        return;
    const QString name = connection->name();
    connection.reset();
    QDBusConnection::disconnectFromBus(name);
}

} // namespace

AtSpiBus::~AtSpiBus()
{
    close(session);
    close(connection);
}

void AtSpiBus::connect()
{
    if (isConnected() || session)
        return;
    AtSpi::registerTypes();
    close(connection);
    // Where a desktop sets this, it is the address for all programs.
    const QString given = qEnvironmentVariable("AT_SPI_BUS_ADDRESS");
    if (given.isEmpty())
        askSessionBus();
    else
        open(given);
}

void AtSpiBus::askSessionBus()
{
    const QString address = sessionBusAddress();
    if (address.isEmpty() || !busAnswers(address, signOfLifeLimit))
        return;
    session = QDBusConnection::connectToBus(address, freshName());
    if (!session->isConnected()) {
        close(session);
        return;
    }
    const auto question =
        QDBusMessage::createMethodCall(QStringLiteral("org.a11y.Bus"), QStringLiteral("/org/a11y/bus"),
                                       QStringLiteral("org.a11y.Bus"), QStringLiteral("GetAddress"));
    auto *watcher = new QDBusPendingCallWatcher(session->asyncCall(question, addressLimit), this);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        const QDBusPendingReply<QString> reply = *watcher;
        watcher->deleteLater();
        close(session);
        if (reply.isValid())
            open(reply.value());
    });
}

void AtSpiBus::open(const QString &address)
{
    if (address.isEmpty() || !busAnswers(address, signOfLifeLimit))
        return;
    connection = QDBusConnection::connectToBus(address, freshName());
    if (!connection->isConnected()) {
        close(connection);
        return;
    }
    connection->connect(QString(), QStringLiteral("/org/freedesktop/DBus/Local"),
                        QStringLiteral("org.freedesktop.DBus.Local"), QStringLiteral("Disconnected"), this,
                        SLOT(lose()));
    if (onConnected)
        onConnected();
}

void AtSpiBus::lose()
{
    close(connection);
    if (onLost)
        onLost();
}
