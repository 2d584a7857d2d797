#pragma once

#include <QDBusConnection>
#include <optional>

// A connection of its own to the session's bus, under this name in this process; absent when there is no bus,
// or none that answers within a second. A bus that once did not answer is not asked again.
//
// The caller ends it with QDBusConnection::disconnectFromBus(name).
[[nodiscard]] std::optional<QDBusConnection> connectToSessionBus(const QString &name);
