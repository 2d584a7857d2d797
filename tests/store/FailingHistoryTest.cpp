// The file fails while the history is in use.
#include "tests/store/ScratchHistory.h"

#include <QElapsedTimer>
#include <QTest>
#include <csignal>
#include <gtest/gtest.h>
#include <sys/resource.h>

namespace {

// A history of one clip, "uno".
class FailingHistory : public ::testing::Test {
public:
    FailingHistory() { history.add("uno"); }
    ~FailingHistory() override { setrlimit(RLIMIT_FSIZE, &noLimit); }

protected:
    static rlimit fileSizeLimit()
    {
        rlimit limit = {};
        getrlimit(RLIMIT_FSIZE, &limit);
        return limit;
    }

    // The file takes little more than it holds, as on a full disk.
    void fillDisk()
    {
        std::signal(SIGXFSZ, SIG_IGN);
        const auto bytes = QFileInfo(history.file() + "-wal").size() + 100000;
        const rlimit limit = {static_cast<rlim_t>(bytes), noLimit.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }

    QStringList contents()
    {
        return bare.rows("SELECT clips.id, clips.text, length(data) FROM clips "
                         "LEFT JOIN formats ON clip_id = clips.id");
    }

    void expectRefused(const CapturedClip &capture)
    {
        QSignalSpy changes(history.store.get(), &ClipStore::ClipStoreDidChange);
        const QStringList before = contents();
        EXPECT_EQ(history.add(capture), nullptr);
        EXPECT_EQ(history.texts(), QStringList("uno"));
        EXPECT_EQ(contents(), before);
        EXPECT_EQ(changes.size(), 0);
        EXPECT_FALSE(history.log.lines.isEmpty());
    }

    // What goes on as if nothing had been.
    void expectAdded(const char *text)
    {
        const auto clip = history.add(text);
        ASSERT_NE(clip, nullptr);
        EXPECT_NE(clip->id, history.store->clips().back()->id);
        EXPECT_EQ(history.store->formats(*clip).size(), 1u);
    }

    const rlimit noLimit = fileSizeLimit();
    ScratchHistory history;
    BareDatabase bare{history.file()};
};

} // namespace

TEST_F(FailingHistory, ARefusedRowOrFormatTakesTheWholeCopyBack)
{
    auto capture = textCapture("due");
    capture.formats = {{0, "a", "1"}, {1, "b", "2"}, {2, "c", "3"}};
    for (const char *event : {"INSERT ON clips", "INSERT ON formats WHEN NEW.item = 2"}) {
        const QByteArray trigger =
            QByteArray("CREATE TRIGGER refuse BEFORE ") + event + " BEGIN SELECT RAISE(FAIL, 'refused'); END";
        ASSERT_EQ(bare.exec(trigger.constData()), SQLITE_OK);
        expectRefused(capture);
        bare.exec("DROP TRIGGER refuse");
    }
    expectAdded("due");
}

TEST_F(FailingHistory, AFileLockedByAnotherProcessCostsAMomentAndTheCopy)
{
    ASSERT_EQ(bare.exec("BEGIN IMMEDIATE"), SQLITE_OK);
    QElapsedTimer timer;
    timer.start();
    expectRefused(textCapture("due"));
    EXPECT_LT(timer.elapsed(), 10000);
    bare.exec("COMMIT");
    expectAdded("due");
}

TEST_F(FailingHistory, EditedContentThatCannotBeWrittenIsKeptAndTriedAgain)
{
    const auto clip = history.store->clips().front();
    const auto edited = textCapture("edited").formats;
    ASSERT_EQ(bare.exec("BEGIN IMMEDIATE"), SQLITE_OK);
    history.store->replaceContent(clip, "edited", edited);
    EXPECT_EQ(clip->text, "edited");
    EXPECT_EQ(history.store->formats(*clip), edited);
    EXPECT_EQ(contents(), QStringList("1|uno|3"));
    bare.exec("COMMIT");
    history.reopen();
    EXPECT_EQ(history.texts(), QStringList("edited"));
    EXPECT_EQ(history.store->formats(*history.store->clips().front()), edited);
}

TEST_F(FailingHistory, AFullDiskLeavesNoHalfCopy)
{
    auto capture = textCapture("due");
    capture.formats.push_back({1, "public.png", QByteArray(2000000, 'x')});
    fillDisk();
    expectRefused(capture);
    history.store->replaceContent(history.store->clips().front(), "uno", capture.formats);
    EXPECT_EQ(history.store->formats(*history.store->clips().front()), capture.formats);
    setrlimit(RLIMIT_FSIZE, &noLimit);
    expectAdded("tre");
    history.reopen();
    EXPECT_EQ(history.texts(), (QStringList{"tre", "uno"}));
    EXPECT_EQ(history.store->formats(*history.store->clips().back()), capture.formats);
}

// The worker's own connection meets what the other one does not notice, or knows better.
TEST(ReadingOnAWorker, GetsWhatTheHistoryHas)
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
             history.store->replaceContent(clip, "due", textCapture("due").formats);
         }},
        {"the file was deleted",
         [](auto &history, auto &) {
             for (const char *suffix : {"", "-wal", "-shm"})
                 QFile::remove(history.file() + suffix);
         }},
    };
    for (const auto &failing : cases) {
        ScratchHistory history;
        const auto clip = history.add("uno");
        BareDatabase other(history.file());
        failing.fail(history, other);
        std::optional<QString> read;
        history.store->read(*clip, [&](const StoredFormats &formats) {
            const QString text = wholeText(formats, "none");
            return [&read, text] { read = text; };
        });
        ASSERT_TRUE(QTest::qWaitFor([&] { return read.has_value(); })) << failing.name;
        EXPECT_EQ(*read, clip->text) << failing.name;
    }
}

TEST(HistoryWithoutAFile, TheSessionWorksInMemory)
{
    LogLines log;
    QTemporaryDir scratch;
    const QString file = scratch.filePath("clips.sqlite");
    ASSERT_TRUE(QDir().mkdir(file));
    ClipStore store(scratch.path());
    EXPECT_EQ(log.lines, QStringList("Norvane: cannot open database at " + file));
    QSignalSpy changes(&store, &ClipStore::ClipStoreDidChange);
    EXPECT_EQ(store.add(textCapture("uno")), nullptr);
    EXPECT_EQ(changes.size(), 0);
    const auto clip = std::make_shared<Clip>();
    store.moveToTop(clip);
    store.setPinned(clip, true);
    store.replaceContent(clip, "uno", {});
    EXPECT_TRUE(store.formats(*clip).empty());
    store.setPinned(clip, false);
    store.trim(0, 0);
    EXPECT_EQ(changes.size(), 5);
    EXPECT_TRUE(store.clips().empty());

    EXPECT_TRUE(ClipStore("/proc/self/exe").clips().empty()); // a folder that cannot be made
    EXPECT_EQ(log.lines.size(), 2);
}
