#pragma once

#include <QSocketNotifier>
#include <QString>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

// The search key of one clip: the keys of its text and of its application's name, each ended by keySeparator.
struct FoldingJob {
    quint32 record = 0; // whose key it is
    quint64 serial = 0; // and in which state: a key that comes too late is told by it
    QString text;
    QString appName;
};

// Keys of several clips one behind the other. `start` counts bytes.
struct FoldedKeys {
    struct Key {
        quint32 record = 0;
        quint64 serial = 0;
        quint32 start = 0;
    };
    QByteArray bytes;
    std::vector<Key> keys;
};

void appendKey(FoldedKeys &block, const FoldingJob &job);

// Folds texts on a thread of its own, in the order of submission. Main thread.
class FoldingWorker {
public:
    // `deliver` is called from the event loop when finished blocks wait to be taken.
    explicit FoldingWorker(std::function<void()> deliver);
    ~FoldingWorker(); // waits for the block under way, a few milliseconds
    FoldingWorker(const FoldingWorker &) = delete;
    FoldingWorker &operator=(const FoldingWorker &) = delete;

    void submit(std::vector<FoldingJob> jobs);

    // Drops what has not begun.
    void withdraw();

    [[nodiscard]] std::vector<FoldedKeys> takeFinished();

private:
    using Batch = std::vector<FoldingJob>;
    void run();
    void announce() const;

    std::function<void()> deliver;
    int wakeUp = -1; // an eventfd; -1 where there is none, then blocks are taken when the next search asks
    std::unique_ptr<QSocketNotifier> notifier;
    std::mutex mutex; // guards what follows
    std::condition_variable hasWork;
    std::vector<Batch> waiting; // last one first
    std::vector<FoldedKeys> finished;
    bool stopping = false;
    std::thread thread;
};
