#include "Norvane/store/FoldingWorker.h"

#include "Vesmo/Text.h"

#include <algorithm>
#include <sys/eventfd.h>
#include <unistd.h>

namespace {

// UTF-16 units folded in one go: about a millisecond, so that a search never has long to wait for its turn.
constexpr qsizetype batchLength = 1 << 20;

} // namespace

void appendKey(FoldedKeys &block, const FoldingJob &job)
{
    block.keys.push_back({job.record, job.serial, static_cast<quint32>(block.bytes.size())});
    block.bytes += foldedKey(job.text);
    block.bytes += keySeparator;
    block.bytes += foldedKey(job.appName);
    block.bytes += keySeparator;
}

FoldingWorker::FoldingWorker(std::function<void()> onFinished)
    : deliver(std::move(onFinished)), wakeUp(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
{
    if (wakeUp >= 0) {
        notifier = std::make_unique<QSocketNotifier>(wakeUp, QSocketNotifier::Read);
        QObject::connect(notifier.get(), &QSocketNotifier::activated, notifier.get(), [this] {
            quint64 count = 0;
            [[maybe_unused]] const auto read = ::read(wakeUp, &count, sizeof count);
            deliver();
        });
    }
    thread = std::thread([this] { run(); });
}

FoldingWorker::~FoldingWorker()
{
    {
        const std::lock_guard lock(mutex);
        stopping = true;
    }
    hasWork.notify_one();
    thread.join();
    notifier.reset();
    if (wakeUp >= 0)
        ::close(wakeUp);
}

void FoldingWorker::submit(std::vector<FoldingJob> jobs)
{
    if (jobs.empty())
        return;
    std::vector<Batch> batches(1);
    qsizetype length = 0;
    for (auto &job : jobs) {
        if (length > batchLength) {
            batches.emplace_back();
            length = 0;
        }
        length += job.text.size() + job.appName.size();
        batches.back().push_back(std::move(job));
    }
    std::reverse(batches.begin(), batches.end());
    {
        const std::lock_guard lock(mutex);
        waiting.insert(waiting.begin(), std::make_move_iterator(batches.begin()),
                       std::make_move_iterator(batches.end()));
    }
    hasWork.notify_one();
}

void FoldingWorker::withdraw()
{
    std::vector<Batch> dropped;
    const std::lock_guard lock(mutex);
    dropped.swap(waiting);
}

std::vector<FoldedKeys> FoldingWorker::takeFinished()
{
    const std::lock_guard lock(mutex);
    return std::exchange(finished, {});
}

void FoldingWorker::run()
{
    std::unique_lock lock(mutex);
    while (true) {
        hasWork.wait(lock, [this] { return stopping || !waiting.empty(); });
        if (stopping)
            return;
        const Batch batch = std::move(waiting.back());
        waiting.pop_back();
        lock.unlock();
        FoldedKeys block;
        for (const auto &job : batch)
            appendKey(block, job);
        block.bytes.squeeze();
        lock.lock();
        finished.push_back(std::move(block));
        announce();
    }
}

void FoldingWorker::announce() const
{
    const quint64 one = 1;
    if (wakeUp >= 0) [[maybe_unused]]
        const auto written = ::write(wakeUp, &one, sizeof one);
}
