#pragma once

#include "Norvane/store/Clip.h"
#include "Norvane/store/StoredFormats.h"
#include "Norvane/store/WorkerThreads.h"

#include <QObject>
#include <functional>
#include <memory>
#include <unordered_map>

class Database;

// Seconds since 2001-01-01 00:00:00 UTC, now.
[[nodiscard]] double secondsSinceReferenceDate();

// The clipboard history: the clips in memory, newest first, mirrored in "clips.sqlite". Main thread.
//
// Owned by AppDelegate for the whole run. Every operation changes memory and file together and posts
// ClipStoreDidChange once. A history whose file cannot be opened works without one: nothing new is stored.
//
// Where the file fails (disk full, locked by another process for longer than a moment), memory goes on: a new
// copy is stored whole or not at all, and edited content that could not be written is tried again later. A
// damaged file is set aside beside the history as "clips.sqlite.damaged-" and the time, and what can be read
// of it is taken over.
class ClipStore : public QObject {
    Q_OBJECT

public:
    // `folder` is created with mode 0700 if missing. `now` gives the time in seconds since the reference
    // date.
    explicit ClipStore(const QString &folder, std::function<double()> now = secondsSinceReferenceDate);
    ~ClipStore() override;

    // "Norvane" in the user's data folder.
    [[nodiscard]] static QString defaultFolder();

    [[nodiscard]] const ClipList &clips() const { return clips_; }

    // The stored formats in their order, read from the file; none without a database.
    [[nodiscard]] std::vector<ClipFormat> formats(const Clip &clip) const;

    [[nodiscard]] StoredFormats stored(const Clip &clip) const;

    // Calls `reading` on a worker, which reads from a connection of its own (hundreds of megabytes take up to
    // a second) and may make of it what else takes long, and then what that returned, if anything, from the
    // event loop; neither where the store is gone first. Two readings run at a time, in no order of their
    // own. Where the file fails one, it is called again with what this connection can read.
    using Reading = std::function<std::function<void()>(const StoredFormats &)>;
    void read(const Clip &clip, Reading reading);

    // Whether this very object is in the history.
    [[nodiscard]] bool contains(const ClipPointer &clip) const;

    // Grows with every change, before it is posted.
    [[nodiscard]] quint64 changeCount() const { return changes; }

    // Stores a capture, or moves the clip with the same hash and kind to the top. Null when it could not be
    // stored.
    ClipPointer add(const CapturedClip &capture);

    // The same with a large capture written on a worker: 32 MiB take half a second, 200 MiB two. `done` is
    // called when it is in the list or could not be stored: before this returns where it is written at once,
    // else from the event loop, unless the store is gone first; it is in the file all the same. Any other
    // change waits for it, so that the order of changes is that of their calls.
    void addLater(const CapturedClip &capture, std::function<void()> done);

    // Calls back when no capture is being written: before this returns if none is.
    void whenWritten(std::function<void()> callback);

    void moveToTop(const ClipPointer &clip);
    void setPinned(const ClipPointer &clip, bool pinned);
    void remove(const ClipPointer &clip);
    void deleteAll(const ClipList &doomed);

    // Keeps the newest unpinned clips and every pinned one.
    //
    // maxItems counts unpinned clips only; 0 or less keeps none. retentionDays below 1 means no age limit.
    void trim(qint64 maxItems, qint64 retentionDays);

    // The text of an image that was read; empty marks it as read without text.
    void setRecognizedText(const QString &text, const ClipPointer &clip);
    void replaceContent(const ClipPointer &clip, const QString &text, const std::vector<ClipFormat> &formats);

Q_SIGNALS:
    void ClipStoreDidChange(ClipStore *store);

private:
    // A capture on the worker, which has it to itself until its job is done.
    struct Writing {
        CapturedClip capture;
        ClipPointer clip;
        std::function<void()> done;
        std::vector<std::function<void()>> callbacks = {}; // the owner's
        bool isStored = false;
    };

    void open();
    bool openDatabase();
    void restoreIfDamaged();
    [[nodiscard]] StoredFormats stored(qint64 clip) const;
    void readFromMemory(std::vector<ClipFormat> formats, Reading reading);
    [[nodiscard]] std::vector<ClipFormat> formatsAfterFailure(qint64 clip);
    [[nodiscard]] double timeStamp() const;
    [[nodiscard]] ClipPointer known(const CapturedClip &capture) const;
    [[nodiscard]] ClipPointer newClip(const CapturedClip &capture) const;
    void settle();
    [[nodiscard]] ClipPointer settled(const ClipPointer &clip);
    bool writeContent(const Clip &clip, const std::vector<ClipFormat> &formats);
    void writeUnsaved();
    void postChange();

    QString path;
    ClipList clips_;
    std::unique_ptr<Database> db;
    std::function<double()> now;
    std::unordered_map<qint64, std::vector<ClipFormat>>
        unsaved; // replaced formats the file did not take, by clip id
    quint64 changes = 0;
    std::shared_ptr<Writing> writing;
    WorkerThreads writer; // last: end before what they use
    WorkerThreads readers;
};
