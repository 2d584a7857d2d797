#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>
#include <functional>
#include <memory>
#include <optional>
#include <unordered_map>
#include <variant>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;

// The value of one positional binding: integer, real, text, blob, null.
//
// A text is bound up to its first NUL. An empty blob is a blob of no bytes, not null.
using SQLValue = std::variant<qint64, double, QString, QByteArray, std::nullptr_t>;

// The value, or null when absent.
template <class Value>
[[nodiscard]] SQLValue sqlValue(const std::optional<Value> &value)
{
    return value ? SQLValue(*value) : SQLValue(nullptr);
}

// The current row of a query, valid during its callback only. Columns count from 0.
class SQLRow {
public:
    explicit SQLRow(sqlite3_stmt *current) : statement(current) {}

    [[nodiscard]] qint64 integer(int column) const;
    [[nodiscard]] double real(int column) const;
    [[nodiscard]] std::optional<QString> text(int column) const; // absent for NULL
    [[nodiscard]] std::optional<QByteArray> blob(int column) const;

private:
    sqlite3_stmt *statement;
};

// One SQLite connection that survives its failures: each is written to the log as "Norvane SQL: error —
// statement", and the caller goes on. One thread.
//
// A file locked by another process is waited for at most busyLimit; statements that follow a vain wait
// closely do not wait again, so that a long transaction against a locked file costs one wait.
class Database {
public:
    static constexpr int busyLimit = 250; // milliseconds

    // To read is to leave all changes to another connection. To salvage is to read a damaged file: it is not
    // changed, and its failures are expected and not logged.
    enum class Access { readWrite, read, salvage };

    // Opens the file, or creates it with mode 0600. Null, with a line in the log, when that is impossible.
    [[nodiscard]] static std::unique_ptr<Database> open(const QString &path,
                                                        Access access = Access::readWrite);
    ~Database();
    Database(const Database &) = delete;
    Database &operator=(const Database &) = delete;

    // Runs one or several statements, up to the first that fails. True when none did.
    bool exec(const QByteArray &sql);

    // Ends a transaction without its changes. Nothing is logged where SQLite has done so already.
    void rollBack();

    // Runs one statement to its end. True when it got there; most callers go on either way.
    bool run(const QByteArray &sql, const std::vector<SQLValue> &values = {});
    bool query(const QByteArray &sql, const std::vector<SQLValue> &values,
               const std::function<void(const SQLRow &)> &row);

    // The names of the table's columns; none when there is no such table.
    [[nodiscard]] QStringList columns(const QByteArray &table);

    [[nodiscard]] qint64 lastInsertedRowID() const;

    // Whether any statement has failed since it was opened.
    [[nodiscard]] bool hasFailed() const { return failed; }

    // Whether SQLite has called the file damaged, or no database, since it was opened.
    [[nodiscard]] bool isDamaged() const { return damaged; }

    // Whether another connection to the path would get another file, or none: somebody moved or deleted this
    // one.
    [[nodiscard]] bool hasMoved() const;

    // Called once, at the first sign of damage, from within the operation that met it: it must not touch this
    // object.
    std::function<void()> onDamage;

private:
    explicit Database(Access wanted) : access(wanted) {}
    [[nodiscard]] sqlite3_stmt *prepared(const QByteArray &sql);
    [[nodiscard]] bool finish(sqlite3_stmt *statement, const QByteArray &sql, int result);
    void noteFailure(const QByteArray &sql);
    static int waitWhileBusy(void *self, int attempt);

    const Access access;
    sqlite3 *db = nullptr;
    std::unordered_map<QByteArray, sqlite3_stmt *> idleStatements; // by their text
    bool failed = false;
    bool damaged = false;
    qint64 busySince = 0; // milliseconds of a steady clock
    qint64 gaveUpAt = 0;
};
