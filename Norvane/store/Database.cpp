#include "Norvane/store/Database.h"

#include "Platform/Log.h"

#include <QFile>
#include <QStringList>
#include <chrono>
#include <fcntl.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

qint64 steadyMilliseconds()
{
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::milliseconds>(now).count();
}

// The history is nobody else's business. SQLite gives the side files it creates the mode of the file itself.
//
// An existing file is never opened here: closing it would drop the locks that this process holds on it.
void makePrivate(const QByteArray &path)
{
    struct stat status = {};
    if (::stat(path.constData(), &status) != 0) {
        const int file = ::open(path.constData(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
        if (file >= 0)
            ::close(file);
        return; // where it failed, opening the database says so
    }
    if (!S_ISREG(status.st_mode))
        return;
    for (const char *suffix : {"", "-wal", "-shm"})
        ::chmod(QByteArray(path + suffix).constData(), 0600);
}

int bind(sqlite3_stmt *statement, int index, const SQLValue &value)
{
    if (const auto *integer = std::get_if<qint64>(&value))
        return sqlite3_bind_int64(statement, index, *integer);
    if (const auto *real = std::get_if<double>(&value))
        return sqlite3_bind_double(statement, index, *real);
    if (const auto *text = std::get_if<QString>(&value)) {
        const QByteArray utf8 = text->toUtf8();
        return sqlite3_bind_text(statement, index, utf8.constData(), -1, SQLITE_TRANSIENT);
    }
    if (const auto *blob = std::get_if<QByteArray>(&value)) {
        if (blob->isEmpty())
            return sqlite3_bind_zeroblob(statement, index, 0);
        return sqlite3_bind_blob64(statement, index, blob->constData(),
                                   static_cast<sqlite3_uint64>(blob->size()), SQLITE_TRANSIENT);
    }
    return sqlite3_bind_null(statement, index);
}

} // namespace

qint64 SQLRow::integer(int column) const
{
    return sqlite3_column_int64(statement, column);
}

double SQLRow::real(int column) const
{
    return sqlite3_column_double(statement, column);
}

std::optional<QString> SQLRow::text(int column) const
{
    const auto *utf8 = reinterpret_cast<const char *>(sqlite3_column_text(statement, column));
    if (!utf8)
        return std::nullopt;
    const QByteArrayView bytes(utf8, sqlite3_column_bytes(statement, column));
    QString text = QString::fromUtf8(bytes);
    if (bytes.startsWith("\xEF\xBB\xBF")) // taken for a byte order mark and dropped
        text.prepend(QChar(QChar::ByteOrderMark));
    return text;
}

std::optional<QByteArray> SQLRow::blob(int column) const
{
    if (sqlite3_column_type(statement, column) == SQLITE_NULL)
        return std::nullopt;
    const auto *bytes = static_cast<const char *>(sqlite3_column_blob(statement, column));
    const int size = sqlite3_column_bytes(statement, column);
    return bytes ? QByteArray(bytes, size) : QByteArray("", 0);
}

std::unique_ptr<Database> Database::open(const QString &path, Access access)
{
    const QByteArray file = QFile::encodeName(path);
    std::unique_ptr<Database> opened(new Database(access));
    int result = SQLITE_OK;
    if (access != Access::readWrite) {
        result = sqlite3_open_v2(file.constData(), &opened->db, SQLITE_OPEN_READONLY, nullptr);
    } else {
        makePrivate(file);
        result = sqlite3_open(file.constData(), &opened->db);
    }
    if (result != SQLITE_OK) {
        logLine(QStringLiteral("Norvane: cannot open database at %1").arg(path));
        return nullptr;
    }
    sqlite3_busy_handler(opened->db, &Database::waitWhileBusy, opened.get());
    if (access == Access::readWrite) {
        opened->exec("PRAGMA journal_mode = WAL");
        opened->exec("PRAGMA foreign_keys = ON");
    } else if (access == Access::salvage) {
        opened->exec("PRAGMA writable_schema = ON"); // or nothing at all is read of a file that was cut off
    }
    return opened;
}

Database::~Database()
{
    for (const auto &[sql, statement] : idleStatements)
        sqlite3_finalize(statement);
    // What is damaged is kept as it was found, its log beside it.
    if (db && (damaged || access != Access::readWrite))
        sqlite3_db_config(db, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
    sqlite3_close(db);
}

bool Database::exec(const QByteArray &sql)
{
    if (sqlite3_exec(db, sql.constData(), nullptr, nullptr, nullptr) == SQLITE_OK)
        return true;
    noteFailure(sql);
    return false;
}

void Database::rollBack()
{
    if (sqlite3_get_autocommit(db) == 0)
        exec("ROLLBACK");
}

bool Database::run(const QByteArray &sql, const std::vector<SQLValue> &values)
{
    return query(sql, values, {});
}

bool Database::query(const QByteArray &sql, const std::vector<SQLValue> &values,
                     const std::function<void(const SQLRow &)> &row)
{
    sqlite3_stmt *statement = prepared(sql);
    if (!statement) {
        noteFailure(sql);
        return false;
    }
    int result = SQLITE_OK;
    for (int i = 0; result == SQLITE_OK && i < static_cast<int>(values.size()); ++i)
        result = bind(statement, i + 1, values[static_cast<size_t>(i)]);
    if (result != SQLITE_OK)
        return finish(statement, sql, result);
    while ((result = sqlite3_step(statement)) == SQLITE_ROW) {
        if (row)
            row(SQLRow(statement));
    }
    return finish(statement, sql, result);
}

QStringList Database::columns(const QByteArray &table)
{
    QStringList names;
    query("PRAGMA table_info(" + table + ")", {},
          [&names](const SQLRow &row) { names.append(row.text(1).value_or(QString())); });
    return names;
}

qint64 Database::lastInsertedRowID() const
{
    return sqlite3_last_insert_rowid(db);
}

bool Database::hasMoved() const
{
    int moved = 0;
    return sqlite3_file_control(db, "main", SQLITE_FCNTL_HAS_MOVED, &moved) == SQLITE_OK && moved != 0;
}

// A statement that a callback of its own runs again finds the kept one in use and gets a second.
sqlite3_stmt *Database::prepared(const QByteArray &sql)
{
    if (const auto idle = idleStatements.find(sql); idle != idleStatements.end()) {
        sqlite3_stmt *statement = idle->second;
        idleStatements.erase(idle);
        return statement;
    }
    sqlite3_stmt *statement = nullptr;
    sqlite3_prepare_v2(db, sql.constData(), -1, &statement, nullptr);
    return statement;
}

bool Database::finish(sqlite3_stmt *statement, const QByteArray &sql, int result)
{
    if (result != SQLITE_DONE)
        noteFailure(sql);
    sqlite3_reset(statement);
    sqlite3_clear_bindings(statement); // or a large blob would stay in memory until the next use
    if (!idleStatements.try_emplace(sql, statement).second)
        sqlite3_finalize(statement);
    return result == SQLITE_DONE;
}

void Database::noteFailure(const QByteArray &sql)
{
    const int result = sqlite3_errcode(db) & 0xff;
    failed = true;
    if (access != Access::salvage)
        logLine(QString::fromUtf8("Norvane SQL: " + QByteArray(sqlite3_errmsg(db)) + " — " + sql));
    if (damaged || (result != SQLITE_CORRUPT && result != SQLITE_NOTADB))
        return;
    damaged = true;
    if (onDamage)
        onDamage();
}

int Database::waitWhileBusy(void *self, int attempt)
{
    auto *database = static_cast<Database *>(self);
    const qint64 now = steadyMilliseconds();
    if (attempt == 0)
        database->busySince = now;
    const bool justGaveUp = database->gaveUpAt != 0 && now - database->gaveUpAt < busyLimit;
    if (justGaveUp || now - database->busySince >= busyLimit) {
        database->gaveUpAt = now;
        return 0;
    }
    sqlite3_sleep(5);
    return 1;
}
