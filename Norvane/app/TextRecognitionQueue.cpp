#include "Norvane/app/TextRecognitionQueue.h"

#include "Norvane/store/ClipStore.h"
#include "Platform/Log.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace {

constexpr std::chrono::seconds restOver(70); // a little longer than the service rests

bool isCandidate(const ClipPointer &clip)
{
    return clip->kind == ClipKind::image && !clip->recognizedText;
}

} // namespace

TextRecognitionQueue::TextRecognitionQueue(ClipStore &history, std::shared_ptr<RecognitionService> service,
                                           std::function<bool()> enabled)
    : store(history), isEnabled(std::move(enabled)), queue(std::move(service)),
      ready(queue.readyDescriptor(), QSocketNotifier::Read)
{
    connect(&ready, &QSocketNotifier::activated, this, &TextRecognitionQueue::finish);
    again.setSingleShot(true);
    again.callOnTimeout(this, &TextRecognitionQueue::kick);
}

TextRecognitionQueue::~TextRecognitionQueue() = default;

void TextRecognitionQueue::kick()
{
    if (isBusy() || isAsking || !isEnabled())
        return;
    if (canRead()) {
        pickNext();
        return;
    }
    isAsking = true;
    queue.order(std::nullopt);
}

void TextRecognitionQueue::pickNext()
{
    const auto found = std::ranges::find_if(store.clips(), isCandidate);
    if (found == store.clips().end())
        return;
    current = *found;
    store.read(*current, [this, isNewest = images.next()](const StoredFormats &formats) {
        return [this, isNewest, image = isNewest() ? formats.first(imageTypes) : std::nullopt] {
            if (isNewest())
                hand(image);
        };
    });
}

// The bytes of the current image to the background; absent where it has none.
void TextRecognitionQueue::hand(std::optional<QByteArray> image)
{
    if (image && store.contains(current)) {
        queue.order(std::move(image));
        return;
    }
    const ClipPointer clip = std::exchange(current, nullptr);
    if (store.contains(clip))
        store.setRecognizedText(QString(), clip);
    kick();
}

void TextRecognitionQueue::finish()
{
    const auto result = queue.takeResult();
    if (!result)
        return;
    isAsking = false;
    const ClipPointer clip = std::exchange(current, nullptr);
    setCanRead(result->canRead);
    if (!result->canRead) {
        if (clip) // the service rests after crashes: there is work left
            again.start(restOver);
        return;
    }
    if (clip)
        store.setRecognizedText(result->text.value_or(QString()), clip);
    kick();
}

void TextRecognitionQueue::setCanRead(bool value)
{
    if (canRead_ == value)
        return;
    canRead_ = value;
    if (!value)
        logLine(QStringLiteral("Norvane: the text in images is not read: there is no usable language data "
                               "or no recognition process"));
    if (onCanReadChange)
        onCanReadChange(value);
}
