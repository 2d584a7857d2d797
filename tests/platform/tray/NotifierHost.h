#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QMutex>
#include <QObject>
#include <QSemaphore>
#include <QStringList>
#include <QThread>
#include <QVariant>
#include <atomic>
#include <memory>
#include <optional>
#include <vector>

// A desktop's side of the status notifier protocol: the watcher that items register with, on a bus connection
// and a thread of its own, as another program would be. Reads an item's menu as a panel does.
class NotifierWatcher : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")
    Q_PROPERTY(bool IsStatusNotifierHostRegistered READ isHostRegistered)
    Q_PROPERTY(int ProtocolVersion READ protocolVersion)

public:
    [[nodiscard]] bool isHostRegistered();
    [[nodiscard]] int protocolVersion() const { return 0; }

    std::atomic<bool> hasHost = true;
    std::atomic<bool> hung = false;
    std::atomic<int> questions = 0;
    [[nodiscard]] QStringList items() const; // services, one each registration
    QSemaphore release;                      // a hung watcher goes on

public Q_SLOTS: // NOLINTBEGIN(readability-identifier-naming): the names are the interface's
    void RegisterStatusNotifierItem(const QString &itemService);

Q_SIGNALS:
    void StatusNotifierHostRegistered();
    // NOLINTEND(readability-identifier-naming)

private:
    mutable QMutex mutex;
    QStringList items_;
};

// One row of an exported menu, its label as a panel shows it.
struct ExportedRow {
    int id = 0;
    QString text; // mnemonic marks resolved
    QString shortcut;
    bool hasPicture = false;
    bool enabled = true;
    bool separator = false;
};

class NotifierHost {
public:
    explicit NotifierHost(bool hasHost = true, bool hung = false);
    ~NotifierHost(); // the watcher leaves the bus

    [[nodiscard]] NotifierWatcher &watcher() { return *watcher_; }
    void registerHost();

    // The program's item: a property, and its menu's visible rows in order.
    [[nodiscard]] QVariant itemProperty(const QString &name);
    [[nodiscard]] std::vector<ExportedRow> menu();
    void activate();
    void open(); // tells the menu that it is about to show
    void send(int id, const QString &event);

private:
    [[nodiscard]] QDBusMessage call(const QString &path, const QString &interface, const QString &method,
                                    const QVariantList &arguments);

    QThread thread;
    QDBusConnection bus;
    QDBusConnection client;
    std::unique_ptr<NotifierWatcher> watcher_;
};
