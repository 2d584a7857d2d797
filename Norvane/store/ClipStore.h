#pragma once

#include "Norvane/store/Clip.h"

#include <QObject>
#include <QThreadPool>
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

    // The same, read on a worker from a connection of its own: hundreds of megabytes take up to a second.
    // `done` is called from the event loop, unless the store is gone first.
    void readFormats(const Clip &clip, std::function<void(const std::vector<ClipFormat> &)> done);

    // Grows with every change, before it is posted.
    [[nodiscard]] quint64 changeCount() const { return changes; }

    // Stores a capture, or moves the clip with the same hash and kind to the top. Null when it could not be
    // stored.
    ClipPointer add(const CapturedClip &capture);
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
    void open();
    bool openDatabase();
    void restoreIfDamaged();
    [[nodiscard]] bool contains(const ClipPointer &clip) const;
    [[nodiscard]] double timeStamp() const;
    bool transaction(const std::function<bool()> &statements);
    bool insertFormats(const Clip &clip, const std::vector<ClipFormat> &formats);
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
    QThreadPool readers; // last: ends before what it reads
};
