#include "tests/platform/tray/NotifierHost.h"

#include <QDBusArgument>
#include <QDBusPendingCall>
#include <QTest>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

constexpr int patience = 5000; // milliseconds
const QString menuInterface = u"com.canonical.dbusmenu"_s;

QDBusConnection newConnection()
{
    static int count = 0;
    return QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"test%1"_s.arg(++count));
}

QString shown(const QString &label)
{
    QString text;
    for (qsizetype i = 0; i < label.size(); ++i) {
        if (label[i] == u'_' && ++i == label.size())
            break;
        if (label[i] != u'\u2060') // has no width
            text += label[i];
    }
    return text;
}

QString joined(const QDBusArgument &shortcut)
{
    QStringList keys;
    shortcut.beginArray();
    while (!shortcut.atEnd()) {
        QStringList stroke;
        shortcut >> stroke;
        keys << stroke.join(u'+');
    }
    shortcut.endArray();
    return keys.join(u',');
}

std::optional<ExportedRow> readRow(const QDBusArgument &node)
{
    ExportedRow row;
    QVariantMap properties;
    node.beginStructure();
    node >> row.id >> properties;
    node.endStructure();
    if (!properties.value(u"visible"_s, true).toBool())
        return std::nullopt;
    row.text = shown(properties.value(u"label"_s).toString());
    row.hasPicture = !properties.value(u"icon-data"_s).toByteArray().isEmpty();
    row.enabled = properties.value(u"enabled"_s, true).toBool();
    row.separator = properties.value(u"type"_s).toString() == u"separator";
    if (properties.contains(u"shortcut"_s))
        row.shortcut = joined(properties.value(u"shortcut"_s).value<QDBusArgument>());
    return row;
}

} // namespace

bool NotifierWatcher::isHostRegistered()
{
    ++questions;
    if (hung)
        release.acquire();
    return hasHost;
}

void NotifierWatcher::RegisterStatusNotifierItem(const QString &itemService)
{
    const QMutexLocker lock(&mutex);
    items_ << itemService;
}

QStringList NotifierWatcher::items() const
{
    const QMutexLocker lock(&mutex);
    return items_;
}

NotifierHost::NotifierHost(bool hasHost, bool hung)
    : bus(newConnection()), client(newConnection()), watcher_(std::make_unique<NotifierWatcher>())
{
    watcher_->hasHost = hasHost;
    watcher_->hung = hung;
    bus.registerObject(u"/StatusNotifierWatcher"_s, watcher_.get(),
                       QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllProperties |
                           QDBusConnection::ExportAllSignals);
    watcher_->moveToThread(&thread);
    thread.start();
    bus.registerService(u"org.kde.StatusNotifierWatcher"_s);
}

NotifierHost::~NotifierHost()
{
    bus.unregisterService(u"org.kde.StatusNotifierWatcher"_s);
    watcher_->hung = false;
    watcher_->release.release(100);
    QMetaObject::invokeMethod(
        watcher_.get(), [this, home = QThread::currentThread()] { watcher_->moveToThread(home); },
        Qt::BlockingQueuedConnection);
    thread.quit();
    thread.wait();
    const QStringList names{bus.name(), client.name()};
    watcher_.reset();
    for (const auto &name : names)
        QDBusConnection::disconnectFromBus(name);
}

void NotifierHost::registerHost()
{
    watcher_->hasHost = true;
    QMetaObject::invokeMethod(watcher_.get(), [this] { Q_EMIT watcher_->StatusNotifierHostRegistered(); });
}

QDBusMessage NotifierHost::call(const QString &path, const QString &interface, const QString &method,
                                const QVariantList &arguments)
{
    auto message = QDBusMessage::createMethodCall(watcher_->items().value(0), path, interface, method);
    message.setArguments(arguments);
    QDBusPendingCall pending = client.asyncCall(message, patience);
    EXPECT_TRUE(QTest::qWaitFor([&] { return pending.isFinished(); }, patience)) << method.toStdString();
    EXPECT_FALSE(pending.isError()) << pending.error().message().toStdString();
    return pending.reply();
}

QVariant NotifierHost::itemProperty(const QString &name)
{
    const auto reply = call(u"/StatusNotifierItem"_s, u"org.freedesktop.DBus.Properties"_s, u"Get"_s,
                            {u"org.kde.StatusNotifierItem"_s, name});
    return reply.arguments().value(0).value<QDBusVariant>().variant();
}

std::vector<ExportedRow> NotifierHost::menu()
{
    const auto reply = call(u"/MenuBar"_s, menuInterface, u"GetLayout"_s, {0, -1, QStringList()});
    std::vector<ExportedRow> rows;
    if (reply.arguments().size() < 2)
        return rows;
    const auto root = reply.arguments()[1].value<QDBusArgument>();
    int id = 0;
    QVariantMap properties;
    root.beginStructure();
    root >> id >> properties;
    root.beginArray();
    while (!root.atEnd()) {
        QDBusVariant child;
        root >> child;
        if (const auto row = readRow(child.variant().value<QDBusArgument>()))
            rows.push_back(*row);
    }
    root.endArray();
    root.endStructure();
    return rows;
}

void NotifierHost::activate()
{
    (void)call(u"/StatusNotifierItem"_s, u"org.kde.StatusNotifierItem"_s, u"Activate"_s, {0, 0});
}

void NotifierHost::open()
{
    (void)call(u"/MenuBar"_s, menuInterface, u"AboutToShow"_s, {0});
}

void NotifierHost::send(int id, const QString &event)
{
    (void)call(u"/MenuBar"_s, menuInterface, u"Event"_s,
               {id, event, QVariant::fromValue(QDBusVariant(QString())), 0U});
}
