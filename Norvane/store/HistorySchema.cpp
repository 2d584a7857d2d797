#include "Norvane/store/HistorySchema.h"

#include <QStringList>
#include <algorithm>

namespace {

constexpr char schema[] = "CREATE TABLE IF NOT EXISTS clips(\n"
                          "    id INTEGER PRIMARY KEY AUTOINCREMENT,\n"
                          "    kind INTEGER NOT NULL,\n"
                          "    text TEXT NOT NULL DEFAULT '',\n"
                          "    hash TEXT NOT NULL,\n"
                          "    created REAL NOT NULL,\n"
                          "    app_id TEXT,\n"
                          "    app_name TEXT,\n"
                          "    pinned INTEGER NOT NULL DEFAULT 0,\n"
                          "    size INTEGER NOT NULL DEFAULT 0,\n"
                          "    width INTEGER NOT NULL DEFAULT 0,\n"
                          "    height INTEGER NOT NULL DEFAULT 0,\n"
                          "    thumb BLOB);\n"
                          "CREATE INDEX IF NOT EXISTS clips_hash ON clips(hash);\n"
                          "CREATE TABLE IF NOT EXISTS formats(\n"
                          "    clip_id INTEGER NOT NULL REFERENCES clips(id) ON DELETE CASCADE,\n"
                          "    item INTEGER NOT NULL,\n"
                          "    type TEXT NOT NULL,\n"
                          "    data BLOB NOT NULL);\n"
                          "CREATE INDEX IF NOT EXISTS formats_clip ON formats(clip_id);\n";

// The write-ahead log has written the first page by now, which fixes the vacuum mode: only a VACUUM changes
// it.
void applyVacuumModeToNewFile(Database &db)
{
    qint64 pages = 0;
    const bool known =
        db.query("PRAGMA page_count", {}, [&pages](const SQLRow &row) { pages = row.integer(0); });
    if (known && pages <= 1)
        db.exec("VACUUM");
}

qint64 wholePixels(qreal length)
{
    constexpr qreal most = 1 << 30;
    return length > 0 ? static_cast<qint64>(std::min(length, most)) : 0;
}

} // namespace

std::vector<SQLValue> HistorySQL::insertedValues(const Clip &clip)
{
    return {qint64{static_cast<int>(clip.kind)},
            clip.text,
            clip.hash,
            clip.created,
            sqlValue(clip.appID),
            sqlValue(clip.appName),
            clip.size,
            wholePixels(clip.pixelSize.width()),
            wholePixels(clip.pixelSize.height()),
            sqlValue(clip.thumbData)};
}

void prepareSchema(Database &db)
{
    db.exec("PRAGMA auto_vacuum = INCREMENTAL");
    applyVacuumModeToNewFile(db);
    db.exec(schema);
    if (!db.columns("clips").contains(QLatin1String("ocr")))
        db.exec("ALTER TABLE clips ADD COLUMN ocr TEXT");
}

// SQLite itself may have rolled back before a failure is seen here.
bool inTransaction(Database &db, const std::function<bool()> &statements)
{
    if (!db.exec("BEGIN"))
        return false;
    if (statements() && db.exec("COMMIT"))
        return true;
    db.rollBack();
    return false;
}

bool insertClip(Database &db, Clip &clip, const std::vector<ClipFormat> &formats)
{
    return inTransaction(db, [&] {
        if (!db.run(HistorySQL::insertClip, HistorySQL::insertedValues(clip)))
            return false;
        clip.id = db.lastInsertedRowID();
        return insertFormats(db, clip, formats);
    });
}

bool insertFormats(Database &db, const Clip &clip, const std::vector<ClipFormat> &formats)
{
    return std::all_of(formats.begin(), formats.end(), [&](const ClipFormat &format) {
        return db.run(HistorySQL::insertFormat, {clip.id, format.item, format.type, format.data});
    });
}

ClipPointer clipFromRow(const SQLRow &row)
{
    auto clip = std::make_shared<Clip>();
    clip->id = row.integer(0);
    clip->kind = clipKind(row.integer(1)).value_or(ClipKind::text);
    clip->text = row.text(2).value_or(QString());
    clip->hash = row.text(3).value_or(QString());
    clip->created = row.real(4);
    clip->appID = row.text(5);
    clip->appName = row.text(6);
    clip->pinned = row.integer(7) != 0;
    clip->size = row.integer(8);
    clip->pixelSize = QSizeF(static_cast<qreal>(row.integer(9)), static_cast<qreal>(row.integer(10)));
    clip->thumbData = row.blob(11);
    clip->recognizedText = row.text(12);
    return clip;
}

std::vector<ClipFormat> loadFormats(Database &db, qint64 clip)
{
    std::vector<ClipFormat> formats;
    db.query(HistorySQL::formatsOfClip, {clip}, [&formats](const SQLRow &row) {
        formats.push_back(
            {row.integer(0), row.text(1).value_or(QString()), row.blob(2).value_or(QByteArray())});
    });
    return formats;
}

std::optional<QByteArray> loadFormat(Database &db, qint64 clip, QStringView type)
{
    std::optional<QByteArray> data;
    db.query(HistorySQL::formatOfType, {clip, type.toString()},
             [&data](const SQLRow &row) { data = row.blob(0); });
    return data;
}

ClipList loadClips(Database &db)
{
    // Otherwise the sort goes through temporary files: twice as slow, and copies of the history outside its
    // folder.
    db.exec("PRAGMA temp_store = MEMORY");
    ClipList clips;
    db.query(HistorySQL::load, {}, [&clips](const SQLRow &row) { clips.push_back(clipFromRow(row)); });
    return clips;
}
