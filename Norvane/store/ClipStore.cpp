#include "Norvane/store/ClipStore.h"

#include "Norvane/store/DamagedHistory.h"
#include "Norvane/store/Database.h"
#include "Norvane/store/HistorySchema.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <chrono>
#include <cmath>
#include <limits>
#include <sys/stat.h>
#include <unordered_set>

namespace {

constexpr double secondsPerDay = 86400;
constexpr double unixTimeOfReferenceDate = 978307200; // 2001-01-01 00:00:00 UTC

void createPrivateFolder(const QString &folder)
{
    QDir().mkpath(QFileInfo(folder).absolutePath());
    ::mkdir(QFile::encodeName(folder).constData(), 0700);
}

} // namespace

double secondsSinceReferenceDate()
{
    const std::chrono::duration<double> now = std::chrono::system_clock::now().time_since_epoch();
    return now.count() - unixTimeOfReferenceDate;
}

ClipStore::ClipStore(const QString &folder, std::function<double()> clock)
    : path(QDir::cleanPath(folder) + QStringLiteral("/clips.sqlite")), now(std::move(clock)),
      writer("store writer", 1),
      readers("store reader", 2) // a choice does not wait for a picture that is looked at
{
    createPrivateFolder(QDir::cleanPath(folder));
    open();
}

ClipStore::~ClipStore()
{
    writer.finish();
    writeUnsaved();
}

QString ClipStore::defaultFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + QStringLiteral("/Norvane");
}

std::vector<ClipFormat> ClipStore::formats(const Clip &clip) const
{
    return stored(clip).all();
}

StoredFormats ClipStore::stored(const Clip &clip) const
{
    return stored(clip.id);
}

StoredFormats ClipStore::stored(qint64 clip) const
{
    if (const auto waiting = unsaved.find(clip); waiting != unsaved.end())
        return StoredFormats(waiting->second);
    return db ? StoredFormats(*db, clip) : StoredFormats({});
}

ClipPointer ClipStore::add(const CapturedClip &capture)
{
    settle();
    if (const ClipPointer clip = known(capture)) {
        moveToTop(clip);
        return clip;
    }
    restoreIfDamaged();
    if (!db)
        return nullptr;
    writeUnsaved();
    auto clip = newClip(capture);
    if (!insertClip(*db, *clip, capture.formats))
        return nullptr;
    clips_.insert(clips_.begin(), clip);
    postChange();
    return clip;
}

ClipPointer ClipStore::known(const CapturedClip &capture) const
{
    const auto found = std::find_if(clips_.begin(), clips_.end(), [&capture](const ClipPointer &clip) {
        return clip->hash == capture.hash && clip->kind == capture.kind;
    });
    return found == clips_.end() ? nullptr : *found;
}

ClipPointer ClipStore::newClip(const CapturedClip &capture) const
{
    auto clip = std::make_shared<Clip>();
    clip->kind = capture.kind;
    clip->text = shortenedText(capture.text);
    clip->hash = capture.hash;
    clip->created = timeStamp();
    clip->appID = capture.appID;
    clip->appName = capture.appName;
    clip->size = totalSize(capture.formats);
    clip->pixelSize = capture.pixelSize;
    clip->thumbData = capture.thumbnail;
    return clip;
}

void ClipStore::moveToTop(const ClipPointer &moved)
{
    const ClipPointer clip = settled(moved);
    clip->created = timeStamp();
    if (db)
        db->run(HistorySQL::moveToTop, {clip->created, clip->id});
    const auto place = std::find(clips_.begin(), clips_.end(), clip);
    if (place == clips_.end())
        clips_.insert(clips_.begin(), clip);
    else
        std::rotate(clips_.begin(), place, place + 1);
    postChange();
}

void ClipStore::setPinned(const ClipPointer &changed, bool pinned)
{
    const ClipPointer clip = settled(changed);
    clip->pinned = pinned;
    if (db)
        db->run(HistorySQL::pin, {qint64{pinned ? 1 : 0}, clip->id});
    postChange();
}

void ClipStore::remove(const ClipPointer &clip)
{
    const ClipPointer removed = settled(clip);
    if (db)
        db->run(HistorySQL::deleteClip, {removed->id});
    unsaved.erase(removed->id);
    std::erase(clips_, removed);
    postChange();
}

void ClipStore::deleteAll(const ClipList &doomed)
{
    if (doomed.empty())
        return;
    settle();
    std::unordered_set<qint64> ids;
    for (const auto &clip : doomed) {
        ids.insert(clip->id);
        unsaved.erase(clip->id);
    }
    if (db) {
        // What can be deleted is: a row that stays behind must not keep the others.
        db->exec("BEGIN");
        for (const auto &clip : doomed)
            db->run(HistorySQL::deleteClip, {clip->id});
        if (!db->exec("COMMIT"))
            db->rollBack();
    }
    std::erase_if(clips_, [&ids](const ClipPointer &clip) { return ids.contains(clip->id); });
    if (db)
        db->exec("PRAGMA incremental_vacuum");
    postChange();
}

void ClipStore::trim(qint64 maxItems, qint64 retentionDays)
{
    settle();
    constexpr double noLimit = -std::numeric_limits<double>::infinity();
    const double cutoff =
        retentionDays >= 1 ? now() - static_cast<double>(retentionDays) * secondsPerDay : noLimit;
    ClipList expired;
    qint64 kept = 0;
    for (const auto &clip : clips_) {
        if (clip->pinned)
            continue;
        const bool tooOld = clip->created < cutoff;
        if (tooOld || kept >= maxItems)
            expired.push_back(clip);
        else
            ++kept;
    }
    if (!expired.empty())
        deleteAll(expired);
}

void ClipStore::setRecognizedText(const QString &text, const ClipPointer &changed)
{
    const ClipPointer clip = settled(changed);
    const QString shortened = shortenedText(text);
    clip->recognizedText = shortened;
    ++clip->revision;
    if (!contains(clip))
        return;
    if (db)
        db->run(HistorySQL::setRecognizedText, {shortened, clip->id});
    postChange();
}

void ClipStore::replaceContent(const ClipPointer &changed, const QString &text,
                               const std::vector<ClipFormat> &formats)
{
    const ClipPointer clip = settled(changed);
    if (!contains(clip))
        return;
    clip->text = shortenedText(text);
    clip->hash = contentHash(QStringLiteral("text\n") + text);
    clip->size = totalSize(formats);
    ++clip->revision;
    if (db) {
        if (writeContent(*clip, formats))
            unsaved.erase(clip->id);
        else
            unsaved[clip->id] = formats;
    }
    postChange();
}

bool ClipStore::contains(const ClipPointer &clip) const
{
    return std::find(clips_.begin(), clips_.end(), clip) != clips_.end();
}

// Later than the newest clip where the clock has not moved on since: the order of two copies must survive a
// restart.
double ClipStore::timeStamp() const
{
    constexpr double clockResolution = 0.001;
    const double time = now();
    const double newest = clips_.empty() ? time - 1 : clips_.front()->created;
    if (time <= newest && newest - time < clockResolution)
        return std::nextafter(newest, std::numeric_limits<double>::infinity());
    return time;
}

bool ClipStore::writeContent(const Clip &clip, const std::vector<ClipFormat> &formats)
{
    return inTransaction(*db, [&] {
        return db->run(HistorySQL::replaceContent, {clip.text, clip.hash, clip.size, clip.id}) &&
               db->run(HistorySQL::dropFormats, {clip.id}) && insertFormats(*db, clip, formats);
    });
}

void ClipStore::writeUnsaved()
{
    if (!db || unsaved.empty())
        return;
    for (const auto &clip : clips_) {
        const auto waiting = unsaved.find(clip->id);
        if (waiting != unsaved.end() && writeContent(*clip, waiting->second))
            unsaved.erase(waiting);
    }
}

void ClipStore::postChange()
{
    ++changes;
    Q_EMIT ClipStoreDidChange(this);
}

void ClipStore::open()
{
    if (hasOrphanedLog(path) && setAside(path).isEmpty())
        return;
    if (!openDatabase())
        return;
    clips_ = loadClips(*db);
    if (!db->isDamaged())
        return;
    db.reset();
    const QString damaged = setAside(path);
    if (damaged.isEmpty()) {
        clips_.clear();
        return;
    }
    clips_ = salvagedClips(damaged);
    if (openDatabase())
        restoreHistory(*db, clips_, damaged);
}

bool ClipStore::openDatabase()
{
    db = Database::open(path);
    if (!db)
        return false;
    prepareSchema(*db);
    db->onDamage = [this] {
        QMetaObject::invokeMethod(this, &ClipStore::restoreIfDamaged, Qt::QueuedConnection);
    };
    return true;
}

void ClipStore::restoreIfDamaged()
{
    settle();
    if (!db || !db->isDamaged())
        return;
    readers.finish(); // none may have the file open, or open the new one too early
    db.reset();
    const QString damaged = setAside(path);
    if (!damaged.isEmpty() && openDatabase())
        restoreHistory(*db, clips_, damaged);
}
