// What the history does on other threads: reading for those who ask, and writing large captures.

#include "Norvane/store/ClipStore.h"

#include "Norvane/store/Database.h"
#include "Norvane/store/HistorySchema.h"
#include "Platform/Log.h"

#include <exception>

namespace {

constexpr qint64 writtenAtOnce = 1 << 20; // bytes: about 10 ms

std::function<void()> made(const ClipStore::Reading &reading, const StoredFormats &formats)
{
    try {
        return reading(formats);
    } catch (const std::exception &) {
        logLine(QStringLiteral("Norvane: a clip could not be read for lack of memory"));
        return reading(StoredFormats({}));
    }
}

} // namespace

void ClipStore::read(const Clip &clip, Reading reading)
{
    if (!db || db->hasMoved() || unsaved.contains(clip.id)) {
        readFromMemory(formats(clip), std::move(reading));
        return;
    }
    readers.start([this, reading = std::move(reading), file = path, id = clip.id] {
        const auto reader = Database::open(file, Database::Access::read);
        auto then = reader ? made(reading, StoredFormats(*reader, id)) : std::function<void()>();
        if (!reader || reader->hasFailed())
            then = [this, reading, id] { readFromMemory(formatsAfterFailure(id), reading); };
        return then;
    });
}

void ClipStore::readFromMemory(std::vector<ClipFormat> formats, Reading reading)
{
    readers.start([this, formats = StoredFormats(std::move(formats)), reading = std::move(reading)] {
        return made(reading, formats);
    });
}

// Damage is seen to where this connection meets it.
std::vector<ClipFormat> ClipStore::formatsAfterFailure(qint64 clip)
{
    auto formats = stored(clip).all();
    if (!db || !db->isDamaged())
        return formats;
    restoreIfDamaged();
    return stored(clip).all();
}

void ClipStore::addLater(const CapturedClip &capture, std::function<void()> done)
{
    settle();
    restoreIfDamaged();
    if (!db || db->hasMoved() || totalSize(capture.formats) <= writtenAtOnce || known(capture)) {
        add(capture);
        done();
        return;
    }
    writeUnsaved();
    writing = std::make_shared<Writing>(Writing{capture, newClip(capture), std::move(done)});
    writer.start([this, file = path, written = writing] {
        const auto own = Database::open(file);
        written->isStored = own && insertClip(*own, *written->clip, written->capture.formats);
        return [this, written] {
            if (writing == written)
                settle();
        };
    });
}

// The clip, which may stand in the list that this changes.
ClipPointer ClipStore::settled(const ClipPointer &clip)
{
    ClipPointer own = clip;
    settle();
    return own;
}

// What the worker could not store is tried once more on this connection, which sees to damage.
void ClipStore::settle()
{
    if (!writing)
        return;
    writer.finish();
    const auto written = std::exchange(writing, nullptr);
    if (written->isStored) {
        clips_.insert(clips_.begin(), written->clip);
        postChange();
    } else {
        add(written->capture);
    }
    // From the event loop: the caller is about to change something, and finds what it knows.
    QMetaObject::invokeMethod(this, written->done, Qt::QueuedConnection);
    for (const auto &callback : written->callbacks)
        QMetaObject::invokeMethod(this, callback, Qt::QueuedConnection);
}

void ClipStore::whenWritten(std::function<void()> callback)
{
    if (writing)
        writing->callbacks.push_back(std::move(callback));
    else
        callback();
}
