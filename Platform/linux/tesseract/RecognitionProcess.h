#pragma once

#include "Platform/linux/tesseract/FrameChannel.h"

#include <QString>
#include <QStringList>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <sys/types.h>
#include <thread>

namespace RecognitionProtocol {
struct ReadAnswer;
}

// One running recognition process, as its program sees it. Any one thread at a time.
//
// A process that dies, hangs or says what makes no sense is over: it has been ended and every question to it
// is absent. Destroying this ends it. One that ends by itself, between two questions too, is reaped at once,
// by a thread that waits for that.
class RecognitionProcess {
public:
    using Milliseconds = std::chrono::milliseconds;
    enum class End {
        none,      // it runs
        byItself,  // as after a minute without work
        crash,     // a signal, a status other than 0, or nonsense
        tooLong,   // more processor time than it was given, or stood still for minutes
        cancelled, // isCancelled became true
    };

    // Starts a program file and waits until it is ready; null when that does not happen.
    [[nodiscard]] static std::unique_ptr<RecognitionProcess> start(const QString &program,
                                                                   const std::atomic<bool> &isCancelled);
    ~RecognitionProcess();
    RecognitionProcess(const RecognitionProcess &) = delete;
    RecognitionProcess &operator=(const RecognitionProcess &) = delete;

    // Whether the languages of these codes could be loaded, which takes the place of what was loaded before.
    [[nodiscard]] std::optional<bool> load(const QString &dataFolder, const QStringList &codes);

    // Reads an image within so much time of a processor.
    [[nodiscard]] std::optional<RecognitionProtocol::ReadAnswer> read(const QByteArray &image,
                                                                      Milliseconds cpu);

    [[nodiscard]] End end() const { return ended; }
    [[nodiscard]] QString endText() const; // for the log

private:
    RecognitionProcess(pid_t child, int socket, const std::atomic<bool> &isCancelled);

    template <typename Answer>
    [[nodiscard]] std::optional<Answer> ask(const QList<QByteArray> &frames, Milliseconds cpu);
    [[nodiscard]] Milliseconds cpuUsed() const;
    void finish(End reason, bool isSilent);
    void reap();
    void kill();
    [[nodiscard]] bool awaitEnd();

    const pid_t pid;
    FrameChannel channel;
    const std::atomic<bool> &cancelled;
    End ended = End::none;

    std::mutex mutex; // guards what follows
    std::condition_variable changed;
    bool isReaped = false; // `pid` may be another process's from then on
    int status = 0;        // of waitpid, once reaped

    std::thread reaper; // last: runs on what stands above
};
