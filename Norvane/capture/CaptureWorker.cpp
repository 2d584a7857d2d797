#include "Norvane/capture/CaptureWorker.h"

#include "Platform/Log.h"

#include <cstdint>
#include <exception>
#include <sys/eventfd.h>
#include <unistd.h>
#include <utility>

namespace {

CaptureWorker::Result resultOf(const CaptureWorker::Order &order)
{
    try {
        return captureFrom(*order.pasteboard, order.pasteboard->frontApplication, order.prefs);
    } catch (const std::exception &) {
        logLine(QStringLiteral("Norvane: a copy could not be read for lack of memory"));
        return std::nullopt;
    }
}

} // namespace

CaptureWorker::CaptureWorker()
    : wakeUp(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)), thread(&CaptureWorker::run, this)
{
}

CaptureWorker::~CaptureWorker()
{
    {
        const std::lock_guard lock(mutex);
        isStopping = true;
    }
    changed.notify_all();
    thread.join();
    close(wakeUp);
}

void CaptureWorker::add(Order order)
{
    {
        const std::lock_guard lock(mutex);
        orders.push_back(std::move(order));
    }
    changed.notify_all();
}

std::deque<CaptureWorker::Result> CaptureWorker::takeResults()
{
    const std::lock_guard lock(mutex);
    std::uint64_t count = 0;
    [[maybe_unused]] const auto got = read(wakeUp, &count, sizeof count);
    return std::exchange(results, {});
}

void CaptureWorker::finish()
{
    std::unique_lock lock(mutex);
    changed.wait(lock, [this] { return orders.empty(); });
}

void CaptureWorker::run()
{
    std::unique_lock lock(mutex);
    for (;;) {
        changed.wait(lock, [this] { return isStopping || !orders.empty(); });
        if (isStopping)
            return;
        const Order &order = orders.front(); // only this thread takes it away
        lock.unlock();
        Result result = resultOf(order);
        lock.lock();
        results.push_back(std::move(result));
        orders.pop_front();
        const std::uint64_t one = 1;
        [[maybe_unused]] const auto put = write(wakeUp, &one, sizeof one);
        changed.notify_all();
    }
}
