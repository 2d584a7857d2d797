#include "tests/platform/caret/ScriptedProgram.h"

#include <QDBusError>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusVariant>
#include <QRect>
#include <csignal>

namespace {

const QString properties = QStringLiteral("org.freedesktop.DBus.Properties");
const QString folder = QStringLiteral("/org/a11y/atspi/accessible/");

QString keyOf(const QString &path, const QString &interface, const QString &method)
{
    return path + u' ' + interface + u' ' + method;
}

struct Extents {
    int x = 0, y = 0, width = 0, height = 0;
};

QDBusArgument &operator<<(QDBusArgument &argument, const Extents &extents)
{
    argument.beginStructure();
    argument << extents.x << extents.y << extents.width << extents.height;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, Extents & /*extents*/)
{
    return argument; // none comes in
}

} // namespace

QDBusArgument &operator<<(QDBusArgument &argument, const AtSpiCacheItem &item)
{
    argument.beginStructure();
    argument << item.object << item.application << item.parent << item.indexInParent << item.childCount
             << item.interfaces << item.name << item.role << item.description << item.states;
    argument.endStructure();
    return argument;
}

Q_DECLARE_METATYPE(Extents)

bool ScriptedBus::start()
{
    daemon.setProcessChannelMode(QProcess::SeparateChannels);
    daemon.start(QStringLiteral("dbus-daemon"),
                 {QStringLiteral("--session"), QStringLiteral("--nofork"), QStringLiteral("--print-address"),
                  QStringLiteral("--address=") + qEnvironmentVariable("AT_SPI_BUS_ADDRESS")});
    return daemon.waitForReadyRead(10000);
}

void ScriptedBus::signal(int number) const
{
    if (const auto id = static_cast<pid_t>(daemon.processId()); id > 0)
        ::kill(id, number);
}

void ScriptedBus::kill()
{
    daemon.kill();
    daemon.waitForFinished(5000);
}

ScriptedProgram::ScriptedProgram()
    : connection(
          QDBusConnection::connectToBus(qEnvironmentVariable("AT_SPI_BUS_ADDRESS"), QStringLiteral("script")))
{
    AtSpi::registerTypes();
    qDBusRegisterMetaType<QList<AtSpiObject>>();
    qDBusRegisterMetaType<QList<uint>>();
    qDBusRegisterMetaType<Extents>();
    qDBusRegisterMetaType<AtSpiCacheItem>();
    qDBusRegisterMetaType<QList<AtSpiCacheItem>>();
    connection.registerService(AtSpi::registryBus);
    connection.registerVirtualObject(QStringLiteral("/org/a11y"), this, QDBusConnection::SubPath);
    moveToThread(&thread);
    thread.start();
    setChildren(QStringLiteral("root"), {QStringLiteral("program")}); // the registry's
    setProperty(QStringLiteral("program"), AtSpi::accessible, QStringLiteral("Name"),
                QStringLiteral("script"));
}

ScriptedProgram::~ScriptedProgram()
{
    connection.unregisterObject(QStringLiteral("/org/a11y"), QDBusConnection::UnregisterTree);
    QDBusConnection::disconnectFromBus(QStringLiteral("script"));
    thread.quit();
    thread.wait();
}

AtSpiObject ScriptedProgram::object(const QString &name) const
{
    return {connection.baseService(), QDBusObjectPath(name.startsWith(u'/') ? name : folder + name)};
}

void ScriptedProgram::set(const QString &name, const QString &interface, const QString &method,
                          const Answer &answer)
{
    const QMutexLocker locker(&mutex);
    answers.insert(keyOf(object(name).path.path(), interface, method), answer);
}

void ScriptedProgram::set(const QString &name, const QString &interface, const QString &method,
                          const QVariantList &answer)
{
    set(name, interface, method, [answer](const QVariantList &) { return std::optional(answer); });
}

void ScriptedProgram::setProperty(const QString &name, const QString &interface, const QString &property,
                                  const QVariant &value)
{
    set(name, interface, property, QVariantList{QVariant::fromValue(QDBusVariant(value))});
}

void ScriptedProgram::setChildren(const QString &name, const QStringList &children)
{
    QList<AtSpiObject> list;
    for (const QString &child : children)
        list.append(object(child));
    set(name, AtSpi::accessible, QStringLiteral("GetChildren"), QVariantList{QVariant::fromValue(list)});
}

void ScriptedProgram::setExtents(const QString &name, const QRect &rect)
{
    set(name, AtSpi::component, QStringLiteral("GetExtents"),
        QVariantList{QVariant::fromValue(Extents{rect.x(), rect.y(), rect.width(), rect.height()})});
}

void ScriptedProgram::setStates(const QString &name, std::initializer_list<uint> states)
{
    QList<uint> words{0, 0};
    for (const uint state : states)
        words[state / 32] |= 1U << (state % 32);
    set(name, AtSpi::accessible, QStringLiteral("GetState"), QVariantList{QVariant::fromValue(words)});
}

void ScriptedProgram::tellFocus(const QString &name)
{
    auto event =
        QDBusMessage::createSignal(object(name).path.path(), QStringLiteral("org.a11y.atspi.Event.Object"),
                                   QStringLiteral("StateChanged"));
    event << QStringLiteral("focused") << 1 << 0 << QVariant::fromValue(QDBusVariant(0)) << QVariantMap();
    connection.send(event);
}

QString ScriptedProgram::introspect(const QString & /*path*/) const
{
    return {};
}

bool ScriptedProgram::handleMessage(const QDBusMessage &message, const QDBusConnection &from)
{
    const QVariantList arguments = message.arguments();
    const bool isProperty = message.interface() == properties && arguments.size() == 2;
    const QString interface = isProperty ? arguments[0].toString() : message.interface();
    const QString method = isProperty ? arguments[1].toString() : message.member();
    ++calls;
    Answer scripted;
    {
        const QMutexLocker locker(&mutex);
        scripted = answers.value(keyOf(message.path(), interface, method));
    }
    const auto answer = scripted ? scripted(arguments) : std::nullopt;
    return from.send(answer ? message.createReply(*answer)
                            : message.createErrorReply(QDBusError::NotSupported, QStringLiteral("scripted")));
}
