#pragma once

#include "Norvane/store/Clip.h"
#include "Norvane/store/Database.h"

#include <functional>

// The tables of "clips.sqlite" and every statement that the history runs on them.
namespace HistorySQL {

inline constexpr char load[] =
    "SELECT id, kind, text, hash, created, app_id, app_name, pinned, size, width, height, thumb, ocr\n"
    "FROM clips ORDER BY created DESC";
inline constexpr char formatsOfClip[] =
    "SELECT item, type, data FROM formats WHERE clip_id = ? ORDER BY rowid";
inline constexpr char formatOfType[] =
    "SELECT data FROM formats WHERE clip_id = ? AND type = ? ORDER BY rowid LIMIT 1";
inline constexpr char insertClip[] =
    "INSERT INTO clips(kind, text, hash, created, app_id, app_name, pinned, size, width, height, thumb)\n"
    "VALUES(?, ?, ?, ?, ?, ?, 0, ?, ?, ?, ?)";
inline constexpr char insertFormat[] = "INSERT INTO formats(clip_id, item, type, data) VALUES(?, ?, ?, ?)";
inline constexpr char moveToTop[] = "UPDATE clips SET created = ? WHERE id = ?";
inline constexpr char pin[] = "UPDATE clips SET pinned = ? WHERE id = ?";
inline constexpr char setRecognizedText[] = "UPDATE clips SET ocr = ? WHERE id = ?";
inline constexpr char replaceContent[] = "UPDATE clips SET text = ?, hash = ?, size = ? WHERE id = ?";
inline constexpr char dropFormats[] = "DELETE FROM formats WHERE clip_id = ?";
inline constexpr char deleteClip[] = "DELETE FROM clips WHERE id = ?";

// The values of insertClip.
[[nodiscard]] std::vector<SQLValue> insertedValues(const Clip &clip);

} // namespace HistorySQL

// Creates what is missing: tables and indices, and the columns that came later. A file without any table gets
// incremental auto-vacuum; another keeps its mode.
void prepareSchema(Database &db);

// Runs the statements as one transaction: all of it or nothing. True when it is in the file.
bool inTransaction(Database &db, const std::function<bool()> &statements);

// Writes a clip that is not in the file yet, with its formats, in one transaction, and gives it its id.
bool insertClip(Database &db, Clip &clip, const std::vector<ClipFormat> &formats);
bool insertFormats(Database &db, const Clip &clip, const std::vector<ClipFormat> &formats);

// A row whose columns are those of HistorySQL::load.
[[nodiscard]] ClipPointer clipFromRow(const SQLRow &row);

// What the clip of this number was stored with; none when it cannot be read.
[[nodiscard]] std::vector<ClipFormat> loadFormats(Database &db, qint64 clip);

// The bytes of its first format of this type alone.
[[nodiscard]] std::optional<QByteArray> loadFormat(Database &db, qint64 clip, QStringView type);

// Every row, newest first.
[[nodiscard]] ClipList loadClips(Database &db);
