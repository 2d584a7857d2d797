#include "bench/SampleClips.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <sqlite3.h>

// The store against SQLite alone: loading the history, and storing one copy.

namespace {

constexpr char insertClip[] =
    "INSERT INTO clips(kind, text, hash, created, size, thumb) VALUES(0, ?, ?, ?, ?, ?)";

sqlite3 *openBare(const QString &file)
{
    sqlite3 *db = nullptr;
    sqlite3_open(QFile::encodeName(file).constData(), &db);
    sqlite3_exec(db, "PRAGMA journal_mode = WAL; PRAGMA foreign_keys = ON", nullptr, nullptr, nullptr);
    return db;
}

qint64 loadBare(const QString &file)
{
    sqlite3 *db = openBare(file);
    sqlite3_stmt *load = nullptr;
    sqlite3_prepare_v2(db, HistorySQL::load, -1, &load, nullptr);
    qint64 bytes = 0;
    while (sqlite3_step(load) == SQLITE_ROW) {
        for (int column = 0; column < sqlite3_column_count(load); ++column) {
            if (sqlite3_column_type(load, column) == SQLITE_BLOB)
                bytes += sqlite3_column_blob(load, column) ? sqlite3_column_bytes(load, column) : 0;
            else
                bytes += sqlite3_column_text(load, column) ? sqlite3_column_bytes(load, column) : 0;
        }
    }
    sqlite3_finalize(load);
    sqlite3_close(db);
    return bytes;
}

bool benchLoad(int count, int runs)
{
    const QTemporaryDir folder;
    fillHistory(folder.path(), count);
    const QString file = folder.path() + QStringLiteral("/clips.sqlite");
    double bare = std::numeric_limits<double>::max();
    double ours = bare;
    for (int run = 0; run < runs; ++run) {
        bare = std::min(bare, fastest(1, [&] { loadBare(file); }));
        std::unique_ptr<ClipStore> store;
        ours = std::min(ours, fastest(1, [&] { store = std::make_unique<ClipStore>(folder.path()); }));
        if (store->clips().size() != static_cast<size_t>(count))
            std::abort();
    }
    std::printf("load %d: bare loop %.1f ms, store %.1f ms\n", count, bare, ours);
    const QByteArray subject = "load " + QByteArray::number(count) + ":";
    return report(subject, ours / bare, "bare loop", 1.5);
}

CapturedClip capture(const QString &text)
{
    CapturedClip captured;
    captured.text = text;
    captured.hash = contentHash(QString(QStringLiteral("text\n") + text));
    captured.formats = {{0, QStringLiteral("public.utf8-plain-text"), text.toUtf8()}};
    return captured;
}

// BEGIN, one clip, one format, COMMIT with statements prepared once; `known` clips are in the history before.
// Where the disk costs nothing, the search for a duplicate among them shows.
bool benchCapture(const QString &scratch, const char *subject, int runs, double aim)
{
    const QTemporaryDir bareFolder(scratch);
    const QTemporaryDir ourFolder(scratch);
    constexpr int known = 5000;
    fillHistory(bareFolder.path(), known);
    fillHistory(ourFolder.path(), known);
    sqlite3 *db = openBare(bareFolder.path() + QStringLiteral("/clips.sqlite"));
    sqlite3_stmt *clip = nullptr;
    sqlite3_stmt *format = nullptr;
    sqlite3_prepare_v2(db, insertClip, -1, &clip, nullptr);
    sqlite3_prepare_v2(db, HistorySQL::insertFormat, -1, &format, nullptr);
    ClipStore store(ourFolder.path());
    QRandomGenerator random(2);
    double bare = std::numeric_limits<double>::max();
    double ours = bare;
    for (int run = 0; run < runs; ++run) {
        const QString text = QString::number(random.generate64()) + QString(300, QLatin1Char('x'));
        const CapturedClip captured = capture(text);
        const QByteArray utf8 = text.toUtf8();
        const QByteArray hash = captured.hash.toLatin1();
        bare = std::min(bare, fastest(1, [&] {
                            sqlite3_exec(db, "BEGIN", nullptr, nullptr, nullptr);
                            sqlite3_bind_text(clip, 1, utf8.constData(), -1, SQLITE_STATIC);
                            sqlite3_bind_text(clip, 2, hash.constData(), -1, SQLITE_STATIC);
                            sqlite3_bind_double(clip, 3, 900000000 + run);
                            sqlite3_bind_int64(clip, 4, utf8.size());
                            sqlite3_bind_null(clip, 5);
                            sqlite3_step(clip);
                            sqlite3_reset(clip);
                            sqlite3_bind_int64(format, 1, sqlite3_last_insert_rowid(db));
                            sqlite3_bind_int64(format, 2, 0);
                            sqlite3_bind_text(format, 3, "public.utf8-plain-text", -1, SQLITE_STATIC);
                            sqlite3_bind_blob(format, 4, utf8.constData(), static_cast<int>(utf8.size()),
                                              SQLITE_STATIC);
                            sqlite3_step(format);
                            sqlite3_reset(format);
                            sqlite3_exec(db, "COMMIT", nullptr, nullptr, nullptr);
                        }));
        ours = std::min(ours, fastest(1, [&] { store.add(captured); }));
    }
    sqlite3_finalize(clip);
    sqlite3_finalize(format);
    sqlite3_close(db);
    std::printf("one copy, %s: bare transaction %.3f ms, store %.3f ms\n", subject, bare, ours);
    const QByteArray line = QByteArray("one copy, ") + subject + ":";
    return report(line, ours / bare, "bare transaction", aim);
}

void benchLargeCopy()
{
    const QTemporaryDir folder;
    ClipStore store(folder.path());
    qint32 number = 0;
    const double add = fastest(3, [&] {
        auto captured = capture(QString::number(++number));
        captured.formats.push_back({0, QStringLiteral("public.png"), QByteArray(32 << 20, 'p')});
        store.add(captured);
    });
    const double remove = fastest(3, [&] { store.remove(store.clips().front()); });
    std::printf("copy of 32 MiB: add %.0f ms, delete %.0f ms\n", add, remove);
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    bool met = benchLoad(5000, 15);
    met &= benchLoad(100000, 7);
    met &= benchCapture(QDir::tempPath() + QStringLiteral("/bench"), "on disk", 300, 1.5);
    if (QFileInfo(QStringLiteral("/dev/shm")).isWritable())
        met &= benchCapture(QStringLiteral("/dev/shm/bench"), "in memory", 2000, 3);
    benchLargeCopy();
    return met ? 0 : 1;
}
