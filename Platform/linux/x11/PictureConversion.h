#pragma once

#include <QByteArray>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>

// A picture that readImageFile (Platform/ImageFile.h) can read, upright and as PNG; absent for any other.
// Takes as long as the picture is large: for a worker. Any thread.
[[nodiscard]] std::optional<QByteArray> pngFromPicture(const QByteArray &picture);

// Makes PNGs on a thread of its own, which starts with the first picture. One at a time: a picture that still
// waits is replaced by the next. Destroying it waits for the picture under way.
class PictureWorker {
public:
    // `wake` is called on the worker when a result is there.
    explicit PictureWorker(std::function<void()> wake);
    ~PictureWorker();
    PictureWorker(const PictureWorker &) = delete;
    PictureWorker &operator=(const PictureWorker &) = delete;

    // The number under which the result can be taken.
    quint64 start(const QByteArray &picture);

    struct Result {
        std::optional<QByteArray> png;
    };
    // Absent while there is no result.
    std::optional<Result> take(quint64 number);

private:
    void run();

    std::function<void()> wake;
    std::mutex mutex;
    std::condition_variable changed;
    bool stopping = false;
    quint64 lastNumber = 0;
    std::optional<QByteArray> waiting;
    quint64 resultNumber = 0;
    Result result;
    std::thread thread;
};
