#pragma once

#include "Platform/Appearance.h"

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QDBusVariant>
#include <QObject>
#include <optional>

// The colour scheme that the desktop's settings portal tells. Main thread.
//
// A portal that starts later, or answers only on its next start, is heard then. Without a bus or a portal
// there is no preference, and nothing is said about it.
class DBusAppearance : public QObject, public Appearance {
    Q_OBJECT

public:
    DBusAppearance();
    ~DBusAppearance() override;

    [[nodiscard]] ColorScheme colorScheme() const override { return scheme; }

private Q_SLOTS:
    void settingChanged(const QString &group, const QString &key, const QDBusVariant &value);

private:
    void read();
    void take(const QVariant &value);

    std::optional<QDBusConnection> bus;
    QDBusServiceWatcher starts;
    ColorScheme scheme = ColorScheme::noPreference;
    int changes = 0; // told so far: an answer that was asked for before one is out of date
};
