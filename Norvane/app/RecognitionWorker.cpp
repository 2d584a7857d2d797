#include "Norvane/app/RecognitionWorker.h"

#include "Platform/Log.h"
#include "Platform/RecognitionService.h"
#include "Vesmo/TextRecognizer.h"

#include <cstdint>
#include <exception>
#include <pthread.h>
#include <sys/eventfd.h>
#include <unistd.h>
#include <utility>

RecognitionWorker::RecognitionWorker(std::shared_ptr<RecognitionService> given)
    : service(std::move(given)), wakeUp(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)), thread([this] { run(); })
{
}

RecognitionWorker::~RecognitionWorker()
{
    {
        const std::lock_guard lock(mutex);
        isStopping = true;
    }
    changed.notify_all();
    service->cancel();
    thread.join();
    ::close(wakeUp);
}

void RecognitionWorker::order(std::optional<QByteArray> wanted)
{
    {
        const std::lock_guard lock(mutex);
        image = std::move(wanted);
        isOrdered = true;
    }
    changed.notify_all();
}

std::optional<RecognitionWorker::Result> RecognitionWorker::takeResult()
{
    const std::lock_guard lock(mutex);
    std::uint64_t count = 0;
    [[maybe_unused]] const auto got = ::read(wakeUp, &count, sizeof count);
    return std::exchange(result, std::nullopt);
}

RecognitionWorker::Result RecognitionWorker::resultOf(const std::optional<QByteArray> &wanted) const
{
    Result made;
    made.canRead = !service->supportedLanguages().isEmpty();
    if (!wanted || !made.canRead)
        return made;
    try {
        made.text = TextRecognizer::text(*wanted, *service);
    } catch (const std::exception &) {
        logLine(QStringLiteral("Norvane: an image could not be read for lack of memory"));
    }
    if (!made.text)
        made.canRead = !service->supportedLanguages().isEmpty();
    return made;
}

void RecognitionWorker::run()
{
    ::pthread_setname_np(::pthread_self(), "text-recogn"); // of 15 letters
    std::unique_lock lock(mutex);
    for (;;) {
        changed.wait(lock, [this] { return isStopping || isOrdered; });
        if (isStopping)
            return;
        isOrdered = false;
        const auto wanted = std::exchange(image, std::nullopt);
        lock.unlock();
        Result made = resultOf(wanted);
        lock.lock();
        result = std::move(made);
        const std::uint64_t one = 1;
        [[maybe_unused]] const auto put = ::write(wakeUp, &one, sizeof one);
    }
}
