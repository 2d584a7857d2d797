#include "Platform/linux/x11/PictureConversion.h"

#include "Platform/ImageFile.h"

#include <QBuffer>
#include <QImageWriter>
#include <limits>

std::optional<QByteArray> pngFromPicture(const QByteArray &picture)
{
    const QImage image = readImageFile(picture, std::numeric_limits<int>::max()).picture;
    if (image.isNull())
        return std::nullopt;
    QByteArray png;
    QBuffer target(&png);
    target.open(QIODevice::WriteOnly);
    QImageWriter writer(&target, "png");
    writer.setQuality(80); // a light compression: the picture is kept as it is, only sooner
    return writer.write(image) ? std::optional(png) : std::nullopt;
}

PictureWorker::PictureWorker(std::function<void()> wakeUp) : wake(std::move(wakeUp)) {}

PictureWorker::~PictureWorker()
{
    {
        const std::lock_guard lock(mutex);
        stopping = true;
    }
    changed.notify_all();
    if (thread.joinable())
        thread.join();
}

quint64 PictureWorker::start(const QByteArray &picture)
{
    const std::lock_guard lock(mutex);
    waiting = picture;
    if (!thread.joinable())
        thread = std::thread([this] { run(); });
    changed.notify_all();
    return ++lastNumber;
}

std::optional<PictureWorker::Result> PictureWorker::take(quint64 number)
{
    const std::lock_guard lock(mutex);
    if (resultNumber != number)
        return std::nullopt;
    return std::exchange(result, {});
}

void PictureWorker::run()
{
    std::unique_lock lock(mutex);
    while (true) {
        changed.wait(lock, [this] { return stopping || waiting; });
        if (stopping)
            return;
        const QByteArray picture = *std::exchange(waiting, std::nullopt);
        const quint64 number = lastNumber;
        lock.unlock();
        Result made{pngFromPicture(picture)};
        lock.lock();
        result = std::move(made);
        resultNumber = number;
        wake();
    }
}
