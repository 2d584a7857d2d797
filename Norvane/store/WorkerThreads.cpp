#include "Norvane/store/WorkerThreads.h"

#include <cstdint>
#include <pthread.h>
#include <sys/eventfd.h>
#include <unistd.h>
#include <utility>

WorkerThreads::WorkerThreads(const char *threadName, size_t threadCount)
    : name(threadName), count(threadCount), wakeUp(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
      notifier(wakeUp, QSocketNotifier::Read)
{
    QObject::connect(&notifier, &QSocketNotifier::activated, &notifier, [this] { deliver(); });
}

WorkerThreads::~WorkerThreads()
{
    {
        const std::lock_guard lock(mutex);
        isStopping = true;
    }
    changed.notify_all();
    for (auto &thread : threads)
        thread.join();
    notifier.setEnabled(false);
    ::close(wakeUp);
}

void WorkerThreads::start(Job job)
{
    {
        const std::lock_guard lock(mutex);
        jobs.push_back(std::move(job));
    }
    changed.notify_all();
    if (threads.size() < count)
        threads.emplace_back([this] { run(); });
}

void WorkerThreads::finish()
{
    std::unique_lock lock(mutex);
    changed.wait(lock, [this] { return jobs.empty() && running == 0; });
}

void WorkerThreads::run()
{
    ::pthread_setname_np(::pthread_self(), name);
    std::unique_lock lock(mutex);
    for (;;) {
        changed.wait(lock, [this] { return isStopping || !jobs.empty(); });
        if (isStopping)
            return;
        Job job = std::move(jobs.front());
        jobs.pop_front();
        ++running;
        lock.unlock();
        Answer answer = job();
        job = nullptr; // what it holds may be large
        lock.lock();
        --running;
        if (answer)
            answers.push_back(std::move(answer));
        const std::uint64_t one = 1;
        [[maybe_unused]] const auto put = ::write(wakeUp, &one, sizeof one);
        changed.notify_all();
    }
}

void WorkerThreads::deliver()
{
    std::deque<Answer> ready;
    {
        const std::lock_guard lock(mutex);
        std::uint64_t seen = 0;
        [[maybe_unused]] const auto got = ::read(wakeUp, &seen, sizeof seen);
        ready.swap(answers);
    }
    for (; !ready.empty(); ready.pop_front())
        ready.front()();
}
