#pragma once

#include "Norvane/store/ClipStore.h"
#include "Platform/Log.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSignalSpy>
#include <QStringList>
#include <QTemporaryDir>
#include <sqlite3.h>

// Keeps the log lines of a test from standard error.
class LogLines {
public:
    LogLines()
    {
        setLogSink([this](const QString &line) { lines.append(line); });
    }
    ~LogLines() { setLogSink({}); }

    QStringList lines;
};

// Plain SQLite beside the program's own connection, as a second process would have it.
class BareDatabase {
public:
    explicit BareDatabase(const QString &path) { sqlite3_open(QFile::encodeName(path).constData(), &db); }
    ~BareDatabase() { sqlite3_close(db); }
    BareDatabase(const BareDatabase &) = delete;
    BareDatabase &operator=(const BareDatabase &) = delete;

    int exec(const char *sql) { return sqlite3_exec(db, sql, nullptr, nullptr, nullptr); }

    // The rows, their columns joined by "|".
    QStringList rows(const char *sql)
    {
        QStringList found;
        sqlite3_stmt *statement = nullptr;
        sqlite3_prepare_v2(db, sql, -1, &statement, nullptr);
        while (sqlite3_step(statement) == SQLITE_ROW) {
            QStringList row;
            for (int i = 0; i < sqlite3_column_count(statement); ++i)
                row.append(
                    QString::fromUtf8(reinterpret_cast<const char *>(sqlite3_column_text(statement, i))));
            found.append(row.join(QLatin1Char('|')));
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

    QString folder() const { return scratch.path() + QStringLiteral("/Norvane"); }
    QString file() const { return folder() + QStringLiteral("/clips.sqlite"); }

    ClipPointer add(const CapturedClip &capture)
    {
        clock += 1;
        return store->add(capture);
    }
    ClipPointer add(const QString &text) { return add(textCapture(text)); }

    static CapturedClip textCapture(const QString &text, ClipKind kind = ClipKind::text)
    {
        CapturedClip capture;
        capture.kind = kind;
        capture.text = text;
        capture.hash = contentHash(QString(QStringLiteral("text\n") + text));
        capture.formats = {{0, QStringLiteral("public.utf8-plain-text"), text.toUtf8()}};
        return capture;
    }

    static CapturedClip imageCapture(const QByteArray &png)
    {
        CapturedClip capture;
        capture.kind = ClipKind::image;
        capture.hash = contentHash(png);
        capture.formats = {{0, QStringLiteral("public.png"), png}};
        capture.pixelSize = {640, 480};
        capture.thumbnail = QByteArray("thumb");
        return capture;
    }

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
        const QString memory = QStringLiteral("/dev/shm");
        return (QFileInfo(memory).isWritable() ? memory : QDir::tempPath()) + QStringLiteral("/store-XXXXXX");
    }

    LogLines log;
    QTemporaryDir scratch{scratchTemplate()};
    double clock = 800000000;
    std::unique_ptr<ClipStore> store;
};
