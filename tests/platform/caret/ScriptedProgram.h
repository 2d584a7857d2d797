#pragma once

#include "Platform/linux/dbus/AtSpiProtocol.h"
#include "tests/support/Variable.h"

#include <QDBusConnection>
#include <QDBusVirtualObject>
#include <QHash>
#include <QMutex>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>
#include <atomic>
#include <csignal>
#include <functional>
#include <optional>

// An accessibility bus that the test starts, stops and ends; AT_SPI_BUS_ADDRESS names it.
class ScriptedBus {
public:
    ~ScriptedBus() { kill(); }

    [[nodiscard]] bool start();      // again, too, at the same address
    void stop() { signal(SIGSTOP); } // it hangs until `goOn`
    void goOn() { signal(SIGCONT); }
    void kill();

private:
    void signal(int number) const;

    QTemporaryDir folder;
    Variable address{"AT_SPI_BUS_ADDRESS", "unix:path=" + folder.filePath(QStringLiteral("bus")).toUtf8()};
    QProcess daemon;
};

Q_DECLARE_METATYPE(AtSpiCacheItem)

QDBusArgument &operator<<(QDBusArgument &argument, const AtSpiCacheItem &item);

// A program on that bus, and the registry that lists it, which answer with what the test sets. What nothing
// is set for is refused. In the test's process, on a thread of its own, which the answers that are functions
// run on.
class ScriptedProgram : public QDBusVirtualObject {
public:
    using Answer =
        std::function<std::optional<QVariantList>(const QVariantList &arguments)>; // absent: refused

    ScriptedProgram();
    ~ScriptedProgram() override;

    [[nodiscard]] AtSpiObject object(const QString &name) const; // "program" is the root

    void set(const QString &object, const QString &interface, const QString &method, const Answer &answer);
    void set(const QString &object, const QString &interface, const QString &method,
             const QVariantList &answer);
    void setProperty(const QString &object, const QString &interface, const QString &name,
                     const QVariant &value);
    void setChildren(const QString &object, const QStringList &children);
    void setExtents(const QString &object, const QRect &extents);
    void setStates(const QString &object, std::initializer_list<uint> states);

    // Tells that the object has got the focus.
    void tellFocus(const QString &object);

    std::atomic<int> calls{0};

    QString introspect(const QString &path) const override;
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override;

private:
    QDBusConnection connection;
    QMutex mutex;
    QHash<QString, Answer> answers; // by path, interface and method
    QThread thread;
};
