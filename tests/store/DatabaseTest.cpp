#include "Norvane/store/Database.h"

#include "tests/store/ScratchHistory.h"

#include <QElapsedTimer>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace {

class DatabaseTest : public ::testing::Test {
protected:
    DatabaseTest() : db(Database::open(path()))
    {
        db->exec("CREATE TABLE things(id INTEGER PRIMARY KEY, value)");
    }

    QString path() const { return folder.path() + QStringLiteral("/things.sqlite"); }

    QString typeOf(const SQLValue &value)
    {
        QString type;
        db->run("INSERT INTO things(value) VALUES(?)", {value});
        db->query("SELECT typeof(value) || length(value) FROM things ORDER BY id DESC LIMIT 1", {},
                  [&type](const SQLRow &row) { type = row.text(0).value_or(QStringLiteral("null")); });
        return type;
    }

    LogLines log;
    QTemporaryDir folder;
    std::unique_ptr<Database> db;
};

mode_t modeOf(const QString &path)
{
    struct stat status = {};
    ::stat(QFile::encodeName(path).constData(), &status);
    return status.st_mode & 0777;
}

} // namespace

TEST_F(DatabaseTest, BindsEveryKindOfValue)
{
    EXPECT_EQ(typeOf(qint64{12}), QStringLiteral("integer2"));
    EXPECT_EQ(typeOf(1.5), QStringLiteral("real3"));
    EXPECT_EQ(typeOf(QStringLiteral("caffè")), QStringLiteral("text5"));
    EXPECT_EQ(typeOf(QString()), QStringLiteral("text0"));
    EXPECT_EQ(typeOf(QByteArray("\0\1", 2)), QStringLiteral("blob2"));
    EXPECT_EQ(typeOf(QByteArray()), QStringLiteral("blob0"));
    EXPECT_EQ(typeOf(nullptr), QStringLiteral("null"));
    EXPECT_EQ(typeOf(QString(QStringLiteral("a") + QChar(0) + QStringLiteral("b"))), QStringLiteral("text1"));
}

TEST_F(DatabaseTest, ReadsBackWhatItWasGiven)
{
    const QString text = QChar(0xFEFF) + QStringLiteral("👨‍👩‍👧 caffè");
    db->run("INSERT INTO things(value) VALUES(?), (?), (NULL)", {text, QByteArray("")});
    std::vector<std::optional<QByteArray>> blobs;
    QString read;
    db->query("SELECT value FROM things", {}, [&](const SQLRow &row) {
        if (blobs.empty())
            read = *row.text(0);
        blobs.push_back(row.blob(0));
    });
    EXPECT_EQ(read, text);
    ASSERT_EQ(blobs.size(), 3u);
    EXPECT_EQ(blobs[1], QByteArray(""));
    EXPECT_EQ(blobs[2], std::nullopt);
}

TEST_F(DatabaseTest, LogsAFailureOnceAndGoesOn)
{
    EXPECT_FALSE(db->run("SELEC 1"));
    EXPECT_EQ(log.lines, QStringList{QStringLiteral("Norvane SQL: near \"SELEC\": syntax error — SELEC 1")});
    EXPECT_FALSE(db->exec("INSERT INTO things(id) VALUES(1); nonsense; INSERT INTO things(id) VALUES(2)"));
    EXPECT_FALSE(db->run("INSERT INTO things(id) VALUES(?)", {qint64{1}}));
    EXPECT_EQ(log.lines.size(), 3);
    EXPECT_EQ(log.lines.last(), QStringLiteral("Norvane SQL: UNIQUE constraint failed: things.id — "
                                               "INSERT INTO things(id) VALUES(?)"));
    EXPECT_TRUE(db->run("INSERT INTO things(id) VALUES(?)", {qint64{2}}));
    EXPECT_FALSE(db->isDamaged());
}

TEST_F(DatabaseTest, BindsTooManyValuesAsAFailure)
{
    EXPECT_FALSE(db->run("INSERT INTO things(id) VALUES(?)", {qint64{7}, qint64{8}}));
    EXPECT_EQ(log.lines.size(), 1);
    EXPECT_TRUE(db->run("INSERT INTO things(id) VALUES(?)", {qint64{7}}));
}

TEST_F(DatabaseTest, AStatementRunsInsideItself)
{
    db->exec("INSERT INTO things(id) VALUES(1), (2), (3)");
    int inner = 0;
    int outer = 0;
    db->query("SELECT id FROM things", {}, [&](const SQLRow &) {
        ++outer;
        db->query("SELECT id FROM things", {}, [&](const SQLRow &) { ++inner; });
    });
    EXPECT_EQ(outer, 3);
    EXPECT_EQ(inner, 9);
}

TEST_F(DatabaseTest, NamesColumns)
{
    EXPECT_EQ(db->columns("things"), (QStringList{QStringLiteral("id"), QStringLiteral("value")}));
    EXPECT_TRUE(db->columns("nothing").isEmpty());
}

TEST_F(DatabaseTest, FilesAreForTheUserAlone)
{
    db->exec("INSERT INTO things(id) VALUES(1)");
    for (const char *suffix : {"", "-wal", "-shm"})
        EXPECT_EQ(modeOf(path() + QLatin1String(suffix)), 0600u) << suffix;
    ::chmod(QFile::encodeName(path()).constData(), 0644);
    const auto second = Database::open(path());
    EXPECT_EQ(modeOf(path()), 0600u);
}

TEST_F(DatabaseTest, SaysWhichFileCannotBeOpened)
{
    for (const QString &place :
         QStringList{folder.path() + QStringLiteral("/missing/clips.sqlite"), folder.path()}) {
        log.lines.clear();
        EXPECT_EQ(Database::open(place), nullptr);
        EXPECT_EQ(log.lines, QStringList{QStringLiteral("Norvane: cannot open database at ") + place});
    }
    EXPECT_EQ(modeOf(folder.path()), 0700u);
}

// A thousand statements against a locked file take one wait, not a thousand.
TEST_F(DatabaseTest, WaitsForALockedFileOnceInARow)
{
    BareDatabase other(path());
    ASSERT_EQ(other.exec("BEGIN IMMEDIATE"), SQLITE_OK);
    QElapsedTimer timer;
    timer.start();
    for (qint64 i = 0; i < 1000; ++i)
        EXPECT_FALSE(db->run("INSERT INTO things(id) VALUES(?)", {i}));
    // SQLite adds up the naps that it asked for, which may be a little shorter on the clock.
    EXPECT_GE(timer.elapsed(), Database::busyLimit / 2);
    EXPECT_LT(timer.elapsed(), 8 * Database::busyLimit);
    other.exec("COMMIT");
    EXPECT_TRUE(db->run("INSERT INTO things(id) VALUES(1)"));
    EXPECT_FALSE(db->isDamaged());
}
