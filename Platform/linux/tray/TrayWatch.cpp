#include "Platform/linux/tray/TrayWatch.h"

#include <QDBusMessage>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QGuiApplication>
#include <cstdlib>
#include <xcb/xcb.h>

namespace {

constexpr int answerTime = 2000; // milliseconds
constexpr int askAgainAfter = 5000;

const QString connectionName = QStringLiteral("norvane-tray");
const QString watcherName = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString watcherPath = QStringLiteral("/StatusNotifierWatcher");

template <typename Value>
struct Freed {
    void operator()(Value *value) const { std::free(value); }
};
template <typename Value>
using Reply = std::unique_ptr<Value, Freed<Value>>;

xcb_connection_t *connection()
{
    const auto *x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 ? x11->connection() : nullptr;
}

int screenNumber()
{
    char *host = nullptr;
    int display = 0;
    int screen = 0;
    if (xcb_parse_display(nullptr, &host, &display, &screen) != 0)
        std::free(host);
    return screen;
}

} // namespace

// The names of the freedesktop.org system tray protocol: the tray owns the selection, and says so with a
// MANAGER message to the root window when it begins to.
struct TrayWatch::Atoms {
    xcb_atom_t selection = XCB_ATOM_NONE;
    xcb_atom_t manager = XCB_ATOM_NONE;
};

TrayWatch::TrayWatch(OpenTrayBus open) : openBus(std::move(open))
{
    askingAgain.setSingleShot(true);
    askingAgain.setInterval(askAgainAfter);
    connect(&askingAgain, &QTimer::timeout, this, &TrayWatch::askNotifier);
}

TrayWatch::~TrayWatch()
{
    question.reset();
    ownerWatch.reset();
    bus.reset();
    QDBusConnection::disconnectFromBus(connectionName);
}

void TrayWatch::start()
{
    watchEmbedder();
    watchNotifier();
}

void TrayWatch::watchNotifier()
{
    bus = openBus(connectionName);
    if (!bus) {
        setNotifier(Notifier::absent);
        return;
    }
    ownerWatch =
        std::make_unique<QDBusServiceWatcher>(watcherName, *bus, QDBusServiceWatcher::WatchForOwnerChange);
    connect(ownerWatch.get(), &QDBusServiceWatcher::serviceOwnerChanged, this, &TrayWatch::askNotifier);
    for (const auto &change :
         {QStringLiteral("StatusNotifierHostRegistered"), QStringLiteral("StatusNotifierHostUnregistered")})
        bus->connect(QString(), watcherPath, watcherName, change, this, SLOT(askNotifier()));
    askNotifier();
}

// A watcher alone shows nothing: it must have a host, the part that draws.
void TrayWatch::askNotifier()
{
    askingAgain.stop();
    auto message = QDBusMessage::createMethodCall(
        watcherName, watcherPath, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    message << watcherName << QStringLiteral("IsStatusNotifierHostRegistered");
    message.setAutoStartService(false);
    question = std::make_unique<QDBusPendingCallWatcher>(bus->asyncCall(message, answerTime));
    connect(question.get(), &QDBusPendingCallWatcher::finished, this, &TrayWatch::takeAnswer);
}

void TrayWatch::takeAnswer(QDBusPendingCallWatcher *answer)
{
    const QDBusPendingReply<QVariant> reply = *answer;
    if (reply.isValid()) {
        setNotifier(reply.value().toBool() ? Notifier::present : Notifier::absent);
    } else if (reply.error().type() == QDBusError::NoReply || reply.error().type() == QDBusError::Timeout) {
        setNotifier(Notifier::unknown);
        askingAgain.start();
    } else {
        setNotifier(Notifier::absent);
    }
}

void TrayWatch::setNotifier(Notifier state)
{
    const bool changed = notifier_ != state;
    notifier_ = state;
    if (changed && onChange)
        onChange();
}

void TrayWatch::watchEmbedder()
{
    xcb_connection_t *server = connection();
    if (!server)
        return;
    const QByteArray selection = "_NET_SYSTEM_TRAY_S" + QByteArray::number(screenNumber());
    const QByteArray manager = "MANAGER";
    const auto intern = [server](const QByteArray &name) {
        return xcb_intern_atom(server, 0, static_cast<quint16>(name.size()), name.constData());
    };
    const auto atomOf = [server](xcb_intern_atom_cookie_t cookie) {
        const Reply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(server, cookie, nullptr));
        return reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
    };
    const auto selectionCookie = intern(selection);
    const auto managerCookie = intern(manager);
    atoms = std::make_unique<Atoms>();
    atoms->selection = atomOf(selectionCookie);
    atoms->manager = atomOf(managerCookie);
    qGuiApp->installNativeEventFilter(this);
    findEmbedder();
}

void TrayWatch::findEmbedder()
{
    xcb_connection_t *server = connection();
    const Reply<xcb_get_selection_owner_reply_t> reply(
        xcb_get_selection_owner_reply(server, xcb_get_selection_owner(server, atoms->selection), nullptr));
    const quint32 found = reply ? reply->owner : 0;
    const bool changed = found != embedder;
    embedder = found;
    if (embedder) {
        // The same events that Qt's own tray icon selects on this window, so neither takes the other's away.
        constexpr quint32 events = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
        xcb_change_window_attributes(server, embedder, XCB_CW_EVENT_MASK, &events);
    }
    if (changed && onChange)
        onChange();
}

bool TrayWatch::nativeEventFilter(const QByteArray &eventType, void *message, qintptr *)
{
    if (eventType != "xcb_generic_event_t" || !atoms)
        return false;
    const auto *event = static_cast<const xcb_generic_event_t *>(message);
    const auto kind = event->response_type & 0x7f;
    bool concernsTray = false;
    if (kind == XCB_CLIENT_MESSAGE) {
        const auto *sent = reinterpret_cast<const xcb_client_message_event_t *>(event);
        concernsTray = sent->type == atoms->manager && sent->data.data32[1] == atoms->selection;
    } else if (kind == XCB_DESTROY_NOTIFY) {
        const auto *destroyed = reinterpret_cast<const xcb_destroy_notify_event_t *>(event);
        concernsTray = embedder != 0 && destroyed->window == embedder;
    }
    // After Qt has handled the event too.
    if (concernsTray)
        QMetaObject::invokeMethod(this, &TrayWatch::findEmbedder, Qt::QueuedConnection);
    return false;
}
