#pragma once

#include "Norvane/store/Clip.h"

#include <QObject>
#include <functional>
#include <memory>

class Database;

// Seconds since 2001-01-01 00:00:00 UTC, now.
[[nodiscard]] double secondsSinceReferenceDate();

// The clipboard history: the clips in memory, newest first, mirrored in "clips.sqlite". Main thread.
//
// Owned by AppDelegate for the whole run. Every operation changes memory and file together and posts
// ClipStoreDidChange once. A history whose file cannot be opened works without one: nothing new is stored.
class ClipStore : public QObject {
    Q_OBJECT

public:
    // `folder` is created with mode 0700 if missing. `now` gives the time in seconds since the reference date.
    explicit ClipStore(const QString &folder, std::function<double()> now = secondsSinceReferenceDate);
    ~ClipStore() override;

    // "Norvane" in the user's data folder.
    [[nodiscard]] static QString defaultFolder();

    [[nodiscard]] const ClipList &clips() const { return clips_; }

    // The stored formats in their order; none without a database.
    [[nodiscard]] std::vector<ClipFormat> formats(const Clip &clip) const;

    // Stores a capture, or moves the clip with the same hash and kind to the top. Null when it could not be stored.
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
    ClipList clips_;
    std::unique_ptr<Database> db;
    std::function<double()> now;
};
