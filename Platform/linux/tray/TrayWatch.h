#pragma once

#include <QAbstractNativeEventFilter>
#include <QDBusConnection>
#include <QObject>
#include <QTimer>
#include <functional>
#include <memory>
#include <optional>

class QDBusPendingCallWatcher;
class QDBusServiceWatcher;

// Opens a connection of its own to the session's bus under this name; absent when there is none that answers.
using OpenTrayBus = std::function<std::optional<QDBusConnection>(const QString &name)>;

// Which trays the desktop has: one that takes StatusNotifierItems over the session bus, one that embeds
// windows, or both. Knows of trays that come and go. Main thread; no question waits for its answer.
class TrayWatch : public QObject, public QAbstractNativeEventFilter {
    Q_OBJECT

public:
    explicit TrayWatch(OpenTrayBus openBus);
    ~TrayWatch() override;

    // Finds out what is there now, then calls onChange at every change.
    void start();

    enum class Notifier { unknown, absent, present }; // unknown: asked, and no answer yet
    [[nodiscard]] Notifier notifier() const { return notifier_; }
    [[nodiscard]] bool hasEmbeddingTray() const { return embedder != 0; }

    std::function<void()> onChange;

    bool nativeEventFilter(const QByteArray &eventType, void *message, qintptr *result) override;

private Q_SLOTS:
    void askNotifier();

private:
    void watchNotifier();
    void takeAnswer(QDBusPendingCallWatcher *answer);
    void setNotifier(Notifier state);
    void watchEmbedder();
    void findEmbedder();

    OpenTrayBus openBus;
    std::optional<QDBusConnection> bus;
    Notifier notifier_ = Notifier::unknown;
    std::unique_ptr<QDBusServiceWatcher> ownerWatch;
    std::unique_ptr<QDBusPendingCallWatcher> question;
    QTimer askingAgain;
    struct Atoms;
    std::unique_ptr<Atoms> atoms; // null without an X server
    quint32 embedder = 0;         // the tray's window
};
