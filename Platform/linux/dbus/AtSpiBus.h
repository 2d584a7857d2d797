#pragma once

#include <QDBusConnection>
#include <QObject>
#include <functional>
#include <optional>

// The way to the accessibility bus. Lives on a thread that may wait: setting up a connection has no time
// limit of its own, so each bus is asked for a sign of life before.
//
// The session's bus names the accessibility bus, and starts it if need be; without a session bus there is
// none. Nothing is switched on for the user.
class AtSpiBus : public QObject {
    Q_OBJECT

public:
    AtSpiBus() = default;
    ~AtSpiBus() override;

    // Begins to connect, unless connected or doing so. A try that failed is not repeated by itself.
    void connect();

    [[nodiscard]] bool isConnected() const { return connection && connection->isConnected(); }
    [[nodiscard]] const QDBusConnection &bus() const { return *connection; } // once connected

    std::function<void()> onConnected;
    std::function<void()> onLost;

private Q_SLOTS: // called by name
    void lose();

private:
    void askSessionBus();
    void open(const QString &address);

    std::optional<QDBusConnection> connection;
    std::optional<QDBusConnection> session; // while it is asked
};
