#include "tests/store/ScratchHistory.h"

#include <QElapsedTimer>
#include <QTest>
#include <csignal>
#include <gtest/gtest.h>
#include <sys/resource.h>

// The file fails while the history is in use.

namespace {

const QString oneText = QStringLiteral("uno");

QStringList contents(const QString &file)
{
    BareDatabase bare(file);
    return bare.rows(
        "SELECT clips.id, clips.text, length(data) FROM clips LEFT JOIN formats ON clip_id = clips.id");
}

// No file of this process grows beyond `bytes`, as on a full disk. The old limit.
rlimit limitFileSize(qint64 bytes)
{
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit old = {};
    getrlimit(RLIMIT_FSIZE, &old);
    const rlimit limit = {static_cast<rlim_t>(bytes), old.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
    return old;
}

void expectUnchanged(ScratchHistory &history, const CapturedClip &capture)
{
    QSignalSpy changes(history.store.get(), &ClipStore::ClipStoreDidChange);
    const QStringList before = contents(history.file());
    EXPECT_EQ(history.add(capture), nullptr);
    EXPECT_EQ(history.texts(), QStringList{oneText});
    EXPECT_EQ(contents(history.file()), before);
    EXPECT_EQ(changes.size(), 0);
    EXPECT_FALSE(history.log.lines.isEmpty());
}

} // namespace

TEST(FailingHistory, ARefusedRowStoresAndAddsNothing)
{
    ScratchHistory history;
    const auto one = history.add(oneText);
    BareDatabase bare(history.file());
    bare.exec("CREATE TRIGGER refuse BEFORE INSERT ON clips BEGIN SELECT RAISE(FAIL, 'refused'); END");
    expectUnchanged(history, ScratchHistory::textCapture(QStringLiteral("due")));
    bare.exec("DROP TRIGGER refuse");
    const auto two = history.add(QStringLiteral("due"));
    ASSERT_NE(two, nullptr);
    EXPECT_NE(two->id, one->id);
    EXPECT_EQ(history.store->formats(*two).size(), 1u);
}

TEST(FailingHistory, ARefusedFormatTakesTheWholeCopyBack)
{
    ScratchHistory history;
    history.add(oneText);
    BareDatabase bare(history.file());
    bare.exec("CREATE TRIGGER refuse BEFORE INSERT ON formats WHEN NEW.item = 2 BEGIN SELECT RAISE(FAIL, "
              "'x'); END");
    auto capture = ScratchHistory::textCapture(QStringLiteral("due"));
    capture.formats = {
        {0, QStringLiteral("a"), "1"}, {1, QStringLiteral("b"), "2"}, {2, QStringLiteral("c"), "3"}};
    expectUnchanged(history, capture);
}

TEST(FailingHistory, AFileLockedByAnotherProcessCostsAMomentAndTheCopy)
{
    ScratchHistory history;
    history.add(oneText);
    BareDatabase other(history.file());
    ASSERT_EQ(other.exec("BEGIN IMMEDIATE"), SQLITE_OK);
    QElapsedTimer timer;
    timer.start();
    expectUnchanged(history, ScratchHistory::textCapture(QStringLiteral("due")));
    EXPECT_LT(timer.elapsed(), 1500);
    other.exec("COMMIT");
    EXPECT_NE(history.add(QStringLiteral("due")), nullptr);
}

TEST(FailingHistory, EditedContentThatCannotBeWrittenIsKeptAndTriedAgain)
{
    ScratchHistory history;
    const auto clip = history.add(oneText);
    const std::vector<ClipFormat> edited = {{0, QStringLiteral("public.utf8-plain-text"), "edited"}};
    BareDatabase other(history.file());
    ASSERT_EQ(other.exec("BEGIN IMMEDIATE"), SQLITE_OK);
    history.store->replaceContent(clip, QStringLiteral("edited"), edited);
    EXPECT_EQ(clip->text, QStringLiteral("edited"));
    EXPECT_EQ(history.store->formats(*clip), edited);
    EXPECT_EQ(contents(history.file()), QStringList{QStringLiteral("1|uno|3")});
    other.exec("COMMIT");
    history.reopen();
    EXPECT_EQ(history.texts(), QStringList{QStringLiteral("edited")});
    EXPECT_EQ(history.store->formats(*history.store->clips().front()), edited);
}

TEST(FailingHistory, AFullDiskLeavesNoHalfCopy)
{
    ScratchHistory history;
    history.add(oneText);
    const rlimit before = limitFileSize(QFileInfo(history.file() + QStringLiteral("-wal")).size() + 100000);
    auto capture = ScratchHistory::textCapture(QStringLiteral("due"));
    capture.formats.push_back({1, QStringLiteral("public.png"), QByteArray(2000000, 'x')});
    expectUnchanged(history, capture);
    history.store->replaceContent(history.store->clips().front(), oneText, capture.formats);
    EXPECT_EQ(history.store->formats(*history.store->clips().front()), capture.formats);
    setrlimit(RLIMIT_FSIZE, &before);
    EXPECT_NE(history.add(QStringLiteral("tre")), nullptr);
    history.reopen();
    EXPECT_EQ(history.texts(), (QStringList{QStringLiteral("tre"), oneText}));
    EXPECT_EQ(history.store->formats(*history.store->clips().back()), capture.formats);
}

// The worker's own connection meets what the other one does not notice, or knows better.
TEST(FailingHistory, AReadingOnTheWorkerGetsWhatTheHistoryHas)
{
    const struct {
        const char *name;
        std::function<void(ScratchHistory &, BareDatabase &)> fail;
    } cases[] = {
        {"nothing fails", [](auto &, auto &) {}},
        {"another process is writing", [](auto &, auto &other) { other.exec("BEGIN EXCLUSIVE"); }},
        {"new content that the file has not taken",
         [](auto &history, auto &other) {
             other.exec("BEGIN IMMEDIATE");
             const auto clip = history.store->clips().front();
             history.store->replaceContent(clip, QStringLiteral("due"),
                                           ScratchHistory::textCapture(QStringLiteral("due")).formats);
         }},
        {"the file was deleted",
         [](auto &history, auto &) {
             for (const char *suffix : {"", "-wal", "-shm"})
                 QFile::remove(history.file() + QLatin1String(suffix));
         }},
    };
    for (const auto &failing : cases) {
        ScratchHistory history;
        const auto clip = history.add(oneText);
        BareDatabase other(history.file());
        failing.fail(history, other);
        std::optional<QString> read;
        history.store->read(*clip, [&](const StoredFormats &formats) {
            const QString text = wholeText(formats, QStringLiteral("none"));
            return [&read, text] { read = text; };
        });
        ASSERT_TRUE(QTest::qWaitFor([&] { return read.has_value(); })) << failing.name;
        EXPECT_EQ(*read, clip->text) << failing.name;
    }
}

TEST(FailingHistory, WithoutAFileTheSessionWorksInMemory)
{
    LogLines log;
    QTemporaryDir scratch;
    const QString file = scratch.path() + QStringLiteral("/clips.sqlite");
    ASSERT_TRUE(QDir().mkdir(file));
    ClipStore store(scratch.path());
    EXPECT_EQ(log.lines, QStringList{QStringLiteral("Norvane: cannot open database at ") + file});
    QSignalSpy changes(&store, &ClipStore::ClipStoreDidChange);
    EXPECT_EQ(store.add(ScratchHistory::textCapture(oneText)), nullptr);
    EXPECT_EQ(changes.size(), 0);
    const auto clip = std::make_shared<Clip>();
    store.moveToTop(clip);
    store.setPinned(clip, true);
    store.replaceContent(clip, oneText, {});
    EXPECT_TRUE(store.formats(*clip).empty());
    store.setPinned(clip, false);
    store.trim(0, 0);
    EXPECT_EQ(changes.size(), 5);
    EXPECT_TRUE(store.clips().empty());
}

TEST(FailingHistory, AFolderThatCannotBeMadeIsASessionWithoutHistory)
{
    LogLines log;
    QTemporaryDir scratch;
    QFile file(scratch.path() + QStringLiteral("/Norvane"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    const ClipStore store(file.fileName());
    EXPECT_TRUE(store.clips().empty());
    EXPECT_EQ(log.lines.size(), 1);
}
