#include "tests/desktop/HistoryFile.h"

#include <QFileInfo>
#include <functional>
#include <memory>
#include <sqlite3.h>

namespace {

using Statement = std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt *)>;

// Runs one query and hands each row to `take`. False when the file or the query is not usable.
bool query(const QString &file, const char *sql, const std::function<void(sqlite3_stmt *)> &bind,
           const std::function<void(sqlite3_stmt *)> &take)
{
    if (!QFileInfo::exists(file))
        return false;
    sqlite3 *opened = nullptr;
    const int status = sqlite3_open_v2(file.toUtf8().constData(), &opened, SQLITE_OPEN_READONLY, nullptr);
    const std::unique_ptr<sqlite3, int (*)(sqlite3 *)> connection(opened, sqlite3_close);
    if (status != SQLITE_OK)
        return false;
    sqlite3_busy_timeout(opened, 1000);
    sqlite3_stmt *prepared = nullptr;
    if (sqlite3_prepare_v2(opened, sql, -1, &prepared, nullptr) != SQLITE_OK)
        return false;
    const Statement statement(prepared, sqlite3_finalize);
    bind(prepared);
    int step = SQLITE_ROW;
    while ((step = sqlite3_step(prepared)) == SQLITE_ROW)
        take(prepared);
    return step == SQLITE_DONE;
}

QString text(sqlite3_stmt *row, int column)
{
    return QString::fromUtf8(reinterpret_cast<const char *>(sqlite3_column_text(row, column)),
                             sqlite3_column_bytes(row, column));
}

} // namespace

std::optional<std::vector<HistoryFile::Row>> HistoryFile::rows() const
{
    std::vector<Row> found;
    const bool read = query(
        file, "SELECT id, kind, text, pinned, app_id, ocr FROM clips ORDER BY created DESC, id DESC",
        [](sqlite3_stmt *) {},
        [&](sqlite3_stmt *row) {
            found.push_back(
                {sqlite3_column_int64(row, 0), sqlite3_column_int(row, 1), text(row, 2),
                 sqlite3_column_int(row, 3) != 0, text(row, 4),
                 sqlite3_column_type(row, 5) == SQLITE_NULL ? std::nullopt : std::optional(text(row, 5))});
        });
    return read ? std::optional(found) : std::nullopt;
}

std::optional<QByteArray> HistoryFile::format(qint64 clip, const QByteArray &type) const
{
    std::optional<QByteArray> found;
    query(
        file, "SELECT data FROM formats WHERE clip_id = ? AND type = ? ORDER BY rowid LIMIT 1",
        [&](sqlite3_stmt *statement) {
            sqlite3_bind_int64(statement, 1, clip);
            sqlite3_bind_text(statement, 2, type.constData(), static_cast<int>(type.size()),
                              SQLITE_TRANSIENT);
        },
        [&](sqlite3_stmt *row) {
            found = QByteArray(static_cast<const char *>(sqlite3_column_blob(row, 0)),
                               sqlite3_column_bytes(row, 0));
        });
    return found;
}

bool HistoryFile::holds(const QByteArray &bytes) const
{
    bool found = false;
    const auto look = [&](sqlite3_stmt *row) {
        const auto *blob = static_cast<const char *>(sqlite3_column_blob(row, 0));
        found = found || QByteArray::fromRawData(blob, sqlite3_column_bytes(row, 0)).contains(bytes);
    };
    query(
        file, "SELECT text FROM clips UNION ALL SELECT data FROM formats", [](sqlite3_stmt *) {}, look);
    return found;
}
