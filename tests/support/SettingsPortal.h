#pragma once

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusVariant>
#include <QObject>
#include <QThread>
#include <memory>

// A settings portal on the session bus, as a desktop runs one, with the one setting that matters here. It
// answers from a thread of its own, so that a test may block. Main thread.
class SettingsPortal {
public:
    // How it answers: as it should, never, with an error, or with a word where a number belongs.
    enum class Manner { right, silent, failing, nonsense };

    // Joins the bus; `scheme` as in the portal's "color-scheme": 0 no preference, 1 dark, 2 light.
    explicit SettingsPortal(uint scheme, Manner manner = Manner::right);
    ~SettingsPortal(); // leaves it
    SettingsPortal(const SettingsPortal &) = delete;
    SettingsPortal &operator=(const SettingsPortal &) = delete;

    [[nodiscard]] bool isOnTheBus() const { return owned; }
    [[nodiscard]] int questions() const; // asked so far

    // The user changes the setting: every listener is told.
    void change(uint scheme);

    // Another setting, or our key in another group, changes to a value.
    void changeOther(const QString &group, const QString &key, const QVariant &value);

private:
    class Service;

    QThread thread;
    std::unique_ptr<Service> service;
    bool owned = false;
};
