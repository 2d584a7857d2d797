#include "Platform/memory/MemoryRecognition.h"

QStringList MemoryRecognition::supportedLanguages()
{
    const std::lock_guard lock(mutex);
    return supported;
}

std::optional<RecognizedImage> MemoryRecognition::recognize(const QByteArray &image,
                                                            const QStringList &languages, QString *error)
{
    std::unique_lock lock(mutex);
    requests.push_back(image);
    languagesOfLast = languages;
    changed.wait(lock, [this] { return !isHeld || isCancelled; });
    const auto found = images.constFind(image);
    if (isCancelled || !failure.isEmpty() || found == images.cend()) {
        if (error)
            *error = failure;
        return std::nullopt;
    }
    return *found;
}

void MemoryRecognition::cancel()
{
    const std::lock_guard lock(mutex);
    isCancelled = true;
    changed.notify_all();
}

void MemoryRecognition::setFragments(const QByteArray &image, const RecognizedImage &fragments)
{
    const std::lock_guard lock(mutex);
    images.insert(image, fragments);
}

void MemoryRecognition::setText(const QByteArray &image, const QString &text)
{
    setFragments(image, {{100, 20}, {{text, 1, QRectF(0, 0, 1, 1)}}});
}

void MemoryRecognition::setFailure(const QString &error)
{
    const std::lock_guard lock(mutex);
    failure = error;
}

void MemoryRecognition::setLanguages(const QStringList &identifiers)
{
    const std::lock_guard lock(mutex);
    supported = identifiers;
}

void MemoryRecognition::hold()
{
    const std::lock_guard lock(mutex);
    isHeld = true;
}

void MemoryRecognition::release()
{
    const std::lock_guard lock(mutex);
    isHeld = false;
    changed.notify_all();
}

std::vector<QByteArray> MemoryRecognition::asked() const
{
    const std::lock_guard lock(mutex);
    return requests;
}

QStringList MemoryRecognition::lastLanguages() const
{
    const std::lock_guard lock(mutex);
    return languagesOfLast;
}
