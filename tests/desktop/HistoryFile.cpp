#include "tests/desktop/HistoryFile.h"

#include <functional>
#include <memory>
#include <sqlite3.h>

namespace {

// Runs one query and hands each row to `take`. False when the file or the query is not usable.
bool query(const QString &file, const char *sql, const std::function<void(sqlite3_stmt *)> &take)
{
    sqlite3 *opened = nullptr;
    const int status = sqlite3_open_v2(file.toUtf8().constData(), &opened, SQLITE_OPEN_READONLY, nullptr);
    const std::unique_ptr<sqlite3, int (*)(sqlite3 *)> connection(opened, sqlite3_close);
    if (status != SQLITE_OK)
        return false;
    sqlite3_busy_timeout(opened, 1000);
    sqlite3_stmt *prepared = nullptr;
    if (sqlite3_prepare_v2(opened, sql, -1, &prepared, nullptr) != SQLITE_OK)
        return false;
    const std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt *)> statement(prepared, sqlite3_finalize);
    int step = SQLITE_ROW;
    while ((step = sqlite3_step(prepared)) == SQLITE_ROW)
        take(prepared);
    return step == SQLITE_DONE;
}

QByteArray bytes(sqlite3_stmt *row, int column)
{
    return {static_cast<const char *>(sqlite3_column_blob(row, column)), sqlite3_column_bytes(row, column)};
}

} // namespace

std::optional<std::vector<HistoryFile::Row>> HistoryFile::rows() const
{
    std::vector<Row> found;
    const bool isRead =
        query(file, "SELECT id, kind, text, pinned, app_id, ocr FROM clips ORDER BY created DESC, id DESC",
              [&](sqlite3_stmt *row) {
                  const bool wasRead = sqlite3_column_type(row, 5) != SQLITE_NULL;
                  found.push_back({sqlite3_column_int64(row, 0), sqlite3_column_int(row, 1), bytes(row, 2),
                                   sqlite3_column_int(row, 3) != 0, bytes(row, 4),
                                   wasRead ? std::optional<QString>(bytes(row, 5)) : std::nullopt});
              });
    return isRead ? std::optional(found) : std::nullopt;
}

bool HistoryFile::holds(const QByteArray &wanted) const
{
    bool found = false;
    query(file, "SELECT text FROM clips UNION ALL SELECT data FROM formats",
          [&](sqlite3_stmt *row) { found = found || bytes(row, 0).contains(wanted); });
    return found;
}
