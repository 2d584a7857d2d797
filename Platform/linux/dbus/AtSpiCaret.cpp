#include "Platform/linux/dbus/AtSpiCaret.h"

#include "Platform/linux/dbus/AtSpiBus.h"
#include "Platform/linux/dbus/AtSpiFocus.h"
#include "Platform/linux/dbus/CaretBounds.h"

#include <QGuiApplication>
#include <QScreen>
#include <chrono>
#include <utility>

namespace {

using namespace std::chrono_literals;

constexpr auto longestHunt = 100ms;
constexpr auto focusHunt = 500ms; // nobody waits for it

// From the server's pixels to Qt's: it keeps a screen's origin and scales what lies within.
QRectF toLogical(const QRectF &native)
{
    for (const QScreen *screen : QGuiApplication::screens()) {
        const double scale = screen->devicePixelRatio();
        const QRectF frame(screen->geometry().topLeft(), QSizeF(screen->geometry().size()) * scale);
        if (frame.contains(native.center()))
            return {frame.topLeft() + (native.topLeft() - frame.topLeft()) / scale, native.size() / scale};
    }
    return native;
}

} // namespace

// Lives on the service's thread.
class CaretWorker : public QObject {
public:
    explicit CaretWorker(std::shared_ptr<AtSpiCaret::Shared> sharedState) : shared(std::move(sharedState)) {}

    std::function<void()> onConnected; // set before the thread starts

    // Without a want there is no connection: asking for the bus may be what starts it.
    void setWanted(bool wanted)
    {
        retry.reset();
        focus.reset();
        bus.reset();
        shared->connected = false;
        pause = shortestPause;
        if (!wanted)
            return;
        bus = std::make_unique<AtSpiBus>();
        bus->onConnected = [this] { begin(); };
        bus->onLost = [this] { end(); };
        retry = std::make_unique<QTimer>();
        retry->setSingleShot(true);
        retry->callOnTimeout(this, [this] { connect(); });
        connect();
    }

    // The program that is in front when the listening begins does not tell what has its focus already.
    void learnFocus(qint64 pid)
    {
        if (focus)
            static_cast<void>(
                focus->find(AtSpiInquiry(bus->bus(), QDeadlineTimer(focusHunt), [] { return true; }), pid));
    }

    std::optional<QRectF> caret(int number, const CaretWindow &window, QDeadlineTimer deadline)
    {
        if (!focus || !bus->isConnected())
            return std::nullopt;
        const AtSpiInquiry inquiry(bus->bus(), deadline,
                                   [this, number] { return shared->current == number; });
        const auto focused = focus->find(inquiry, window.pid);
        return focused ? CaretBounds::find(inquiry, *focused, window.area) : std::nullopt;
    }

private:
    void connect()
    {
        retry->start(pause);
        pause = std::min(pause * 2, longestPause);
        bus->connect(); // a success stops the timer
    }

    void begin()
    {
        retry->stop();
        pause = shortestPause;
        focus = std::make_unique<AtSpiFocus>(bus->bus());
        shared->connected = true;
        onConnected();
    }

    void end()
    {
        shared->connected = false;
        focus.reset();
        retry->start(pause);
    }

    static constexpr std::chrono::milliseconds shortestPause = 1s, longestPause = 1024s;

    std::shared_ptr<AtSpiCaret::Shared> shared;
    std::unique_ptr<AtSpiBus> bus;     // null while none is wanted
    std::unique_ptr<AtSpiFocus> focus; // null without a connection
    std::unique_ptr<QTimer> retry;
    std::chrono::milliseconds pause = shortestPause;
};

AtSpiCaret::AtSpiCaret(std::function<std::optional<CaretWindow>()> front)
    : frontWindow(std::move(front)), worker(new CaretWorker(shared))
{
    watchdog.setSingleShot(true);
    watchdog.setInterval(longestHunt);
    watchdog.setTimerType(Qt::PreciseTimer);
    watchdog.callOnTimeout(this, [this] { answer(shared->current, std::nullopt); });
    worker->onConnected = [this] { QMetaObject::invokeMethod(this, [this] { learnFocus(); }); };
    worker->moveToThread(&thread);
    connect(&thread, &QThread::finished, worker, &QObject::deleteLater);
    thread.setObjectName(QStringLiteral("accessibility"));
    thread.start();
}

AtSpiCaret::~AtSpiCaret()
{
    cancel();
    thread.quit();
    thread.wait();
}

void AtSpiCaret::setCaretWanted(bool wanted)
{
    if (isWanted == wanted)
        return;
    isWanted = wanted;
    QMetaObject::invokeMethod(worker, [target = worker, wanted] { target->setWanted(wanted); });
}

void AtSpiCaret::learnFocus()
{
    const auto window = frontWindow();
    if (isWanted && shared->connected && window)
        QMetaObject::invokeMethod(worker, [target = worker, pid = window->pid] { target->learnFocus(pid); });
}

void AtSpiCaret::requestCaretRect(std::function<void(std::optional<QRectF>)> callback)
{
    cancel();
    pending = std::move(callback);
    watchdog.start();
    const int number = shared->current;
    const auto window = frontWindow();
    if (!window || !caretAvailable()) {
        QTimer::singleShot(0, this, [this, number] { answer(number, std::nullopt); });
        return;
    }
    QMetaObject::invokeMethod(
        worker, [this, target = worker, number, front = *window, deadline = QDeadlineTimer(longestHunt)] {
            const auto caret = target->caret(number, front, deadline);
            QMetaObject::invokeMethod(this, [this, number, caret] { answer(number, caret); });
        });
}

void AtSpiCaret::cancel()
{
    ++shared->current;
    pending = nullptr;
    watchdog.stop();
}

void AtSpiCaret::answer(int number, const std::optional<QRectF> &caret)
{
    if (number != shared->current || !pending)
        return;
    const auto callback = std::exchange(pending, nullptr);
    cancel();
    callback(caret ? std::optional(toLogical(*caret)) : std::nullopt);
}
