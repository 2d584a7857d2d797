#include "Norvane/store/Database.h"

#include "tests/store/ScratchHistory.h"

#include <QElapsedTimer>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace {

class DatabaseTest : public ::testing::Test {
protected:
    DatabaseTest() { db->exec("CREATE TABLE things(id INTEGER PRIMARY KEY, value)"); }

    bool insert(qint64 id) { return db->run("INSERT INTO things(id) VALUES(?)", {id}); }

    LogLines log;
    QTemporaryDir folder;
    const QString path = folder.filePath("things.sqlite");
    std::unique_ptr<Database> db = Database::open(path);
};

} // namespace

TEST_F(DatabaseTest, KeepsNothingApartFromEmptyAndATextUpToItsNul)
{
    const QString text = QChar(0xFEFF) + QString("👨‍👩‍👧 caffè");
    const struct {
        SQLValue value;
        const char *type;
        std::optional<QByteArray> bytes;
    } cases[] = {
        {text, "text", text.toUtf8()}, {QString(QString("a") + QChar(0) + "b"), "text", "a"},
        {QString(), "text", ""},       {QByteArray("\0\1", 2), "blob", QByteArray("\0\1", 2)},
        {QByteArray(), "blob", ""},    {nullptr, "null", std::nullopt},
    };
    for (const auto &each : cases) {
        db->run("INSERT INTO things(value) VALUES(?)", {each.value});
        db->query("SELECT value, typeof(value) FROM things ORDER BY id DESC LIMIT 1", {},
                  [&](const SQLRow &row) {
                      EXPECT_EQ(row.text(1), QString(each.type));
                      EXPECT_EQ(row.blob(0), each.bytes) << each.type;
                      EXPECT_EQ(row.text(0).has_value(), each.bytes.has_value());
                  });
    }
}

TEST_F(DatabaseTest, LogsAFailureOnceAndGoesOn)
{
    EXPECT_FALSE(db->run("SELEC 1"));
    EXPECT_FALSE(db->exec("INSERT INTO things(id) VALUES(1); nonsense; INSERT INTO things(id) VALUES(2)"));
    EXPECT_FALSE(insert(1));
    EXPECT_FALSE(db->run("INSERT INTO things(id) VALUES(?)", {qint64{7}, qint64{8}})) << "too many values";
    ASSERT_EQ(log.lines.size(), 4);
    EXPECT_EQ(log.lines[0], "Norvane SQL: near \"SELEC\": syntax error — SELEC 1");
    EXPECT_EQ(log.lines[2],
              "Norvane SQL: UNIQUE constraint failed: things.id — INSERT INTO things(id) VALUES(?)");
    EXPECT_TRUE(insert(2));
    EXPECT_TRUE(insert(7));
    EXPECT_FALSE(db->isDamaged());
}

TEST_F(DatabaseTest, AStatementRunsInsideItself)
{
    db->exec("INSERT INTO things(id) VALUES(1), (2), (3)");
    QStringList pairs;
    db->query("SELECT id FROM things", {}, [&](const SQLRow &outer) {
        db->query("SELECT id FROM things", {},
                  [&](const SQLRow &inner) { pairs += *outer.text(0) + *inner.text(0); });
    });
    EXPECT_EQ(pairs.join(u' '), "11 12 13 21 22 23 31 32 33");
}

TEST_F(DatabaseTest, FilesAreForTheUserAlone)
{
    insert(1);
    ::chmod(QFile::encodeName(path).constData(), 0644);
    const auto second = Database::open(path);
    for (const char *suffix : {"", "-wal", "-shm"}) {
        struct stat status = {};
        ASSERT_EQ(::stat(QFile::encodeName(QString(path + suffix)).constData(), &status), 0);
        EXPECT_EQ(status.st_mode & 0777, 0600u) << suffix;
    }
}

// A thousand statements against a locked file take one wait, not a thousand.
TEST_F(DatabaseTest, WaitsForALockedFileOnceInARow)
{
    BareDatabase other(path);
    ASSERT_EQ(other.exec("BEGIN IMMEDIATE"), SQLITE_OK);
    QElapsedTimer timer;
    timer.start();
    for (qint64 i = 0; i < 1000; ++i)
        EXPECT_FALSE(insert(i));
    // SQLite adds up the naps that it asked for, which may be a little shorter on the clock.
    EXPECT_GE(timer.elapsed(), Database::busyLimit / 2);
    EXPECT_LT(timer.elapsed(), 100 * Database::busyLimit);
    other.exec("COMMIT");
    EXPECT_TRUE(insert(1));
    EXPECT_FALSE(db->isDamaged());
}
