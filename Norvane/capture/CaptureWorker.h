#pragma once

#include "Norvane/capture/PasteboardReader.h"

#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <thread>

// Makes captures on a thread of its own, one after the other. Owned and called by one thread.
//
// Every order gives one result, in the order of the orders. `readyDescriptor` becomes readable when there are
// results to take; poll it or watch it with a notifier.
class CaptureWorker {
public:
    struct Order {
        std::shared_ptr<const PasteboardSnapshot> pasteboard;
        CaptureSettings prefs;
    };
    using Result = std::optional<CapturedClip>; // as captureFrom gives it; absent too when memory runs out

    CaptureWorker();
    ~CaptureWorker(); // waits for the order under way and drops those after it

    CaptureWorker(const CaptureWorker &) = delete;
    CaptureWorker &operator=(const CaptureWorker &) = delete;

    void add(Order order);
    [[nodiscard]] int readyDescriptor() const { return wakeUp; }
    [[nodiscard]] std::deque<Result> takeResults();

    // Waits until every order has its result.
    void finish();

private:
    void run();

    const int wakeUp; // eventfd
    std::mutex mutex; // guards what follows
    std::condition_variable changed;
    std::deque<Order> orders; // the first one stays until it has its result
    std::deque<Result> results;
    bool isStopping = false;
    std::thread thread; // last: runs on what stands above
};
