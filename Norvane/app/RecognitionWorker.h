#pragma once

#include <QByteArray>
#include <QString>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>

class RecognitionService;

// Reads the text of one image at a time on a thread of its own, "com.norvane.text-recognition". Owned and
// called by one thread.
//
// An order gives one result. `readyDescriptor` becomes readable when there is one to take.
class RecognitionWorker {
public:
    struct Result {
        bool canRead = false; // now, after the order: without, the image is not at fault
        std::optional<QString> text;
    };

    explicit RecognitionWorker(std::shared_ptr<RecognitionService> service);
    ~RecognitionWorker(); // cancels the service and waits for the order under way

    RecognitionWorker(const RecognitionWorker &) = delete;
    RecognitionWorker &operator=(const RecognitionWorker &) = delete;

    // Without an image the order only asks whether images can be read. The last result must have been taken.
    void order(std::optional<QByteArray> image);
    [[nodiscard]] int readyDescriptor() const { return wakeUp; }
    [[nodiscard]] std::optional<Result> takeResult();

private:
    void run();
    [[nodiscard]] Result resultOf(const std::optional<QByteArray> &image) const;

    const std::shared_ptr<RecognitionService> service;
    const int wakeUp; // eventfd
    std::mutex mutex; // guards what follows
    std::condition_variable changed;
    bool isOrdered = false;
    std::optional<QByteArray> image;
    std::optional<Result> result;
    bool isStopping = false;
    std::thread thread; // last: runs on what stands above
};
