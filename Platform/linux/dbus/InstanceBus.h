#pragma once

#include "Platform/ApplicationInstance.h"

#include <QDBusConnection>
#include <QObject>
#include <memory>
#include <optional>

// The instance on a session bus: see DBusInstance. Main thread.
class InstanceBus : public ApplicationInstance {
public:
    // Absent when there is no bus, or none that answers.
    [[nodiscard]] static std::unique_ptr<InstanceBus> connect(const QString &displayName);
    ~InstanceBus() override;

    [[nodiscard]] bool claim() override;
    [[nodiscard]] bool ask(const QString &action) override;

private:
    InstanceBus(const QDBusConnection &connection, const QString &displayName);

    QDBusConnection connection;
    QString name; // of the instance on this display
    QString
        asked; // from a terminal or a timer without a display: the instance that the desktop's calls reach
    QObject object;
};
