#pragma once

#include <QSocketNotifier>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

// Threads that do what takes long for the thread that owns this, and bring the answers back to it. They start
// with the first jobs.
class WorkerThreads {
public:
    using Answer = std::function<void()>;
    using Job = std::function<Answer()>;

    // `name` as the system lists the threads: 15 letters.
    WorkerThreads(const char *name, size_t count);
    ~WorkerThreads(); // waits for the jobs under way; drops those after them, and every answer
    WorkerThreads(const WorkerThreads &) = delete;
    WorkerThreads &operator=(const WorkerThreads &) = delete;

    // Jobs begin in the order of their calls. The answer that one returns, if any, is called from the owner's
    // event loop.
    void start(Job job);

    // Waits until no job is left. Their answers still come from the event loop.
    void finish();

private:
    void run();
    void deliver();

    const char *const name;
    const size_t count;
    const int wakeUp; // eventfd
    QSocketNotifier notifier;
    std::mutex mutex; // guards what follows
    std::condition_variable changed;
    std::deque<Job> jobs;
    std::deque<Answer> answers;
    size_t running = 0;
    bool isStopping = false;
    std::vector<std::thread> threads; // the owner's
};
