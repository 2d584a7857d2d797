#include "Norvane/capture/ClipboardMonitor.h"

#include "Norvane/app/Preferences.h"
#include "Norvane/capture/CaptureWorker.h"

#include <QPointer>
#include <QSocketNotifier>
#include <QTimer>
#include <deque>
#include <utility>

struct ClipboardMonitor::Private {
    // Due when `captures` captures have been delivered.
    struct CaughtUp {
        qint64 captures;
        std::function<void()> callback;
    };

    Private(Pasteboard &generalPasteboard, const Preferences &preferences)
        : pasteboard(generalPasteboard), prefs(preferences)
    {
    }

    void deliverReady(const QPointer<ClipboardMonitor> &monitor);
    [[nodiscard]] std::function<void()> takeDue();

    Pasteboard &pasteboard;
    const Preferences &prefs;
    qint64 lastChange = 0;
    qint64 ignoredChange = -1;
    QTimer timer;
    CaptureWorker worker;
    QSocketNotifier results{worker.readyDescriptor(), QSocketNotifier::Read};
    std::deque<CaptureWorker::Result> ready; // made, not delivered
    qint64 ordered = 0;                      // captures given to the worker so far
    qint64 delivered = 0;
    std::deque<CaughtUp> waiting;
};

ClipboardMonitor::ClipboardMonitor(Pasteboard &pasteboard, const Preferences &prefs)
    : d(std::make_unique<Private>(pasteboard, prefs))
{
    d->timer.setInterval(pollInterval);
    connect(&d->timer, &QTimer::timeout, this, &ClipboardMonitor::poll);
    connect(&d->results, &QSocketNotifier::activated, this, [this] { d->deliverReady(this); });

    connect(&prefs, &Preferences::saveImagesChanged, this, &ClipboardMonitor::applyPolicy);
    connect(&prefs, &Preferences::saveFilesChanged, this, &ClipboardMonitor::applyPolicy);
    connect(&prefs, &Preferences::maxClipMBChanged, this, &ClipboardMonitor::applyPolicy);
    connect(&prefs, &Preferences::ignoredAppsChanged, this, &ClipboardMonitor::applyPolicy);
    applyPolicy();
}

ClipboardMonitor::~ClipboardMonitor()
{
    d->waiting.clear();
    if (d->timer.isActive())
        poll(); // the copy made just before the end
    d->worker.finish();
    d->deliverReady(this);
}

void ClipboardMonitor::setPaused(bool paused)
{
    // A copy belongs to the state in which it was made, however soon the state changes after it.
    if (d->timer.isActive())
        poll();
    isPaused_ = paused;
    applyPolicy();
}

void ClipboardMonitor::start()
{
    d->lastChange = d->pasteboard.changeCount();
    d->timer.start();
}

void ClipboardMonitor::poll()
{
    const qint64 change = d->pasteboard.changeCount();
    if (change == d->lastChange)
        return;
    d->lastChange = change; // before every other test: what is skipped below is never looked at again
    if (isPaused_ || change == d->ignoredChange)
        return;
    auto snapshot = d->pasteboard.snapshot();
    const auto &front = snapshot->frontApplication;
    if (front && front->bundleIdentifier && d->prefs.ignoredApps().contains(*front->bundleIdentifier))
        return;
    ++d->ordered;
    d->worker.add({std::move(snapshot), {d->prefs.saveFiles(), d->prefs.saveImages(), d->prefs.maxClipMB()}});
}

void ClipboardMonitor::ignoreCurrentChange()
{
    d->lastChange = d->ignoredChange = d->pasteboard.changeCount();
}

void ClipboardMonitor::whenCaughtUp(std::function<void()> callback)
{
    const QPointer<ClipboardMonitor> guard(this);
    d->pasteboard.whenSettled([guard, callback = std::move(callback)] {
        if (!guard)
            return;
        auto &state = *guard->d;
        if (state.timer.isActive())
            guard->poll();
        if (state.delivered == state.ordered)
            callback();
        else
            state.waiting.push_back({state.ordered, callback});
    });
}

void ClipboardMonitor::applyPolicy()
{
    d->pasteboard.setPolicy({isPaused_, captureByteBudget(d->prefs.maxClipMB()), d->prefs.saveImages(),
                             d->prefs.saveFiles(), d->prefs.ignoredApps()});
}

// Any receiver may call back into the monitor or destroy it.
void ClipboardMonitor::Private::deliverReady(const QPointer<ClipboardMonitor> &monitor)
{
    for (auto &result : worker.takeResults())
        ready.push_back(std::move(result));
    while (monitor && !ready.empty()) {
        auto capture = std::move(ready.front());
        ready.pop_front();
        const auto receive = monitor->onCapture; // its own copy: it outlives the monitor while it runs
        if (capture && receive)
            receive(std::move(*capture));
        if (!monitor)
            return;
        ++delivered;
        while (const auto due = monitor ? takeDue() : nullptr)
            due();
    }
}

std::function<void()> ClipboardMonitor::Private::takeDue()
{
    if (waiting.empty() || waiting.front().captures > delivered)
        return {};
    auto callback = std::move(waiting.front().callback);
    waiting.pop_front();
    return callback;
}
