#pragma once

#include "Norvane/store/ClipStore.h"
#include "tests/support/Captures.h"
#include "tests/support/LogLines.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <sqlite3.h>

// Plain SQLite beside the program's own connection, as a second process would have it.
class BareDatabase {
public:
    explicit BareDatabase(const QString &path) { sqlite3_open(QFile::encodeName(path).constData(), &db); }
    ~BareDatabase() { sqlite3_close(db); }
    BareDatabase(const BareDatabase &) = delete;
    BareDatabase &operator=(const BareDatabase &) = delete;

    int exec(const char *sql) { return sqlite3_exec(db, sql, nullptr, nullptr, nullptr); }

    // The rows, their columns joined by "|".
    QStringList rows(const QByteArray &sql)
    {
        QStringList found;
        sqlite3_stmt *statement = nullptr;
        sqlite3_prepare_v2(db, sql.constData(), -1, &statement, nullptr);
        while (sqlite3_step(statement) == SQLITE_ROW) {
            QStringList row;
            for (int i = 0; i < sqlite3_column_count(statement); ++i)
                row.append(reinterpret_cast<const char *>(sqlite3_column_text(statement, i)));
            found.append(row.join(u'|'));
        }
        sqlite3_finalize(statement);
        return found;
    }

private:
    sqlite3 *db = nullptr;
};

// A history in a folder of its own, whose clock goes on by a second a capture.
struct ScratchHistory {
    ScratchHistory() { reopen(); }

    void reopen()
    {
        store.reset();
        store = std::make_unique<ClipStore>(folder(), [this] { return clock; });
    }

    QString folder() const { return scratch.filePath("Norvane"); }
    QString file() const { return folder() + "/clips.sqlite"; }

    ClipPointer add(const CapturedClip &capture)
    {
        clock += 1;
        return store->add(capture);
    }
    ClipPointer add(const QString &text) { return add(textCapture(text)); }

    QStringList texts() const
    {
        QStringList all;
        for (const auto &clip : store->clips())
            all.append(clip->text);
        return all;
    }

    // In memory where possible: hundreds of copies would wait for the disk one by one.
    static QString scratchTemplate()
    {
        return (QFileInfo("/dev/shm").isWritable() ? "/dev/shm" : QDir::tempPath()) + "/store";
    }

    LogLines log;
    QTemporaryDir scratch{scratchTemplate()};
    double clock = 800000000;
    std::unique_ptr<ClipStore> store;
};
