#pragma once

#include <QDBusAbstractAdaptor>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QStringList>
#include <QVariantMap>
#include <functional>

// The org.freedesktop.Application interface, as freedesktop.org describes it for desktop entries. Every call
// becomes an action; platform data (start-up identifiers) is of no use to a panel and ignored.
class OpenApplication : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public:
    OpenApplication(QObject *object, const QDBusConnection &answeringConnection,
                    std::function<void(const QString &)> actionHandler);

public Q_SLOTS: // NOLINTBEGIN(readability-identifier-naming): the names are the interface's
    void Activate(const QVariantMap &platformData);
    void Open(const QStringList &addresses, const QVariantMap &platformData);
    void ActivateAction(const QString &action, const QVariantList &parameters,
                        const QVariantMap &platformData, const QDBusMessage &message);
    // NOLINTEND(readability-identifier-naming)

private:
    QDBusConnection connection;
    std::function<void(const QString &)> onAction;
};
