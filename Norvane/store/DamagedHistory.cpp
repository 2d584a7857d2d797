#include "Norvane/store/DamagedHistory.h"

#include "Norvane/store/HistorySchema.h"
#include "Platform/Log.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <algorithm>
#include <limits>
#include <unordered_set>

namespace {

constexpr const char *sideFiles[] = {"-wal", "-shm"};

// Failing look-ups in a row after which the rest of a table is given up: half a second.
constexpr int mostFailures = 100000;

constexpr char readClips[] =
    "SELECT id, kind, text, hash, created, app_id, app_name, pinned, size, width, height, thumb, ocr "
    "FROM clips WHERE id >= ? ORDER BY id";
constexpr char readOldClips[] =
    "SELECT id, kind, text, hash, created, app_id, app_name, pinned, size, width, height, thumb, NULL "
    "FROM clips WHERE id >= ? ORDER BY id";
constexpr char readFormats[] =
    "SELECT rowid, clip_id, item, type, data FROM formats WHERE rowid >= ? ORDER BY rowid";
constexpr char writeClip[] = "INSERT INTO clips(kind, text, hash, created, app_id, app_name, size, width, "
                             "height, thumb, pinned, ocr, id) "
                             "VALUES(?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)";

bool exists(const QString &path)
{
    return QFileInfo::exists(path);
}

bool isTaken(const QString &path)
{
    return exists(path) || std::any_of(std::begin(sideFiles), std::end(sideFiles), [&](const char *suffix) {
               return exists(path + QLatin1String(suffix));
           });
}

// Every row that can be read, in the order of the integer key in column 0, which `select` takes as its lower
// bound.
//
// A damaged page ends a scan. The next one starts behind the last key that was read, a key further on each
// time, until the look-up passes the page.
void readRows(Database &db, const QByteArray &table, const QByteArray &select,
              const std::function<void(const SQLRow &)> &take)
{
    if (db.columns(table).isEmpty())
        return; // no table, or not even a list of tables
    qint64 last = std::numeric_limits<qint64>::max();
    db.query("SELECT max(rowid) FROM " + table, {}, [&last](const SQLRow &row) { last = row.integer(0); });
    qint64 next = 1;
    int failures = 0;
    while (next <= last && failures < mostFailures) {
        const bool whole = db.query(select, {next}, [&](const SQLRow &row) {
            if (row.integer(0) < next || row.integer(0) > last)
                return; // read from a page that is not what it claims to be
            next = row.integer(0) + 1;
            failures = 0;
            take(row);
        });
        if (whole)
            return;
        ++next;
        ++failures;
    }
}

void writeClips(Database &db, const ClipList &clips)
{
    db.exec("BEGIN");
    for (const auto &clip : clips) {
        auto values = HistorySQL::insertedValues(*clip);
        values.insert(values.end(), {qint64{clip->pinned ? 1 : 0}, sqlValue(clip->recognizedText), clip->id});
        db.run(writeClip, values);
    }
    if (!db.exec("COMMIT"))
        db.rollBack();
}

// A text whose formats are lost can still be pasted as it stands in the list.
void writePlainText(Database &db, const Clip &clip)
{
    const bool isText = clip.kind == ClipKind::text || clip.kind == ClipKind::richText;
    if (isText && !clip.text.isEmpty())
        db.run(HistorySQL::insertFormat,
               {clip.id, qint64{0}, QStringLiteral("public.utf8-plain-text"), clip.text.toUtf8()});
}

void copyFormats(Database &from, Database &to, const ClipList &clips)
{
    std::unordered_set<qint64> ids;
    for (const auto &clip : clips)
        ids.insert(clip->id);
    std::unordered_set<qint64> copied;
    bool hasRoom = true;
    to.exec("BEGIN");
    readRows(from, "formats", readFormats, [&](const SQLRow &row) {
        const auto type = row.text(3);
        const auto data = row.blob(4);
        if (!hasRoom || !type || !data || !ids.contains(row.integer(1)))
            return;
        hasRoom = to.run(HistorySQL::insertFormat, {row.integer(1), row.integer(2), *type, *data});
        copied.insert(row.integer(1));
    });
    for (const auto &clip : clips) {
        if (hasRoom && !copied.contains(clip->id))
            writePlainText(to, *clip);
    }
    if (!to.exec("COMMIT"))
        to.rollBack();
}

} // namespace

bool hasOrphanedLog(const QString &path)
{
    return QFileInfo(path).size() == 0 && QFileInfo(path + QStringLiteral("-wal")).size() > 0;
}

QString setAside(const QString &path)
{
    const QString name = path + QStringLiteral(".damaged-") +
                         QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-HHmmss"));
    QString free = name;
    for (int number = 2; isTaken(free); ++number)
        free = name + QLatin1Char('-') + QString::number(number);
    if (exists(path) && !QFile::rename(path, free)) {
        logLine(QStringLiteral("Norvane: cannot set aside the damaged database at %1").arg(path));
        return {};
    }
    for (const char *suffix : sideFiles) {
        const QLatin1String side(suffix);
        if (exists(path + side) && !QFile::rename(path + side, free + side))
            logLine(QStringLiteral("Norvane: cannot set aside %1").arg(path + side));
    }
    logLine(QStringLiteral("Norvane: damaged database set aside as %1").arg(free));
    return free;
}

ClipList salvagedClips(const QString &damagedPath)
{
    ClipList clips;
    const auto db = Database::open(damagedPath, Database::Access::salvage);
    if (!db)
        return clips;
    const bool hasRecognizedText = db->columns("clips").contains(QLatin1String("ocr"));
    readRows(*db, "clips", hasRecognizedText ? readClips : readOldClips,
             [&clips](const SQLRow &row) { clips.push_back(clipFromRow(row)); });
    std::stable_sort(clips.begin(), clips.end(),
                     [](const ClipPointer &a, const ClipPointer &b) { return a->created > b->created; });
    return clips;
}

void restoreHistory(Database &db, const ClipList &clips, const QString &damagedPath)
{
    writeClips(db, clips);
    if (const auto damaged = Database::open(damagedPath, Database::Access::salvage))
        copyFormats(*damaged, db, clips);
    logLine(QStringLiteral("Norvane: %1 clips taken over from the damaged database").arg(clips.size()));
}
