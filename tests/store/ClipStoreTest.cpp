#include "tests/store/ScratchHistory.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace {

QString numbered(int number)
{
    return QStringLiteral("clip %1").arg(number);
}

} // namespace

TEST(ClipStore, KeepsEveryDifferentCopyNewestFirst)
{
    ScratchHistory history;
    for (int i = 0; i < 1200; ++i)
        history.add(numbered(i));
    const QStringList texts = history.texts();
    EXPECT_EQ(texts.size(), 1200);
    EXPECT_EQ(texts.first(), numbered(1199));
    history.store->setPinned(history.store->clips()[7], true);
    history.reopen();
    EXPECT_EQ(history.texts(), texts);
    EXPECT_TRUE(history.store->clips()[7]->pinned);
    EXPECT_EQ(std::count_if(history.store->clips().begin(), history.store->clips().end(),
                            [](const ClipPointer &clip) { return clip->pinned; }),
              1);
}

TEST(ClipStore, StoresEveryFieldOfACapture)
{
    ScratchHistory history;
    auto capture = ScratchHistory::imageCapture("png");
    capture.appID = QStringLiteral("org.example.Draw");
    capture.appName = QStringLiteral("Disegno");
    capture.formats.push_back({1, QStringLiteral("text/x-empty"), QByteArray()});
    capture.formats.push_back({0, QStringLiteral("public.html"), "<b>"});
    const auto added = history.add(capture);
    history.store->setRecognizedText(QString(), added);
    history.reopen();
    const auto &clip = history.store->clips().front();
    EXPECT_EQ(clip->id, added->id);
    EXPECT_EQ(clip->kind, ClipKind::image);
    EXPECT_EQ(clip->hash, capture.hash);
    EXPECT_EQ(clip->created, history.clock);
    EXPECT_EQ(clip->appID, capture.appID);
    EXPECT_EQ(clip->appName, capture.appName);
    EXPECT_EQ(clip->size, 6);
    EXPECT_EQ(clip->pixelSize, QSizeF(640, 480));
    EXPECT_EQ(clip->thumbData, capture.thumbnail);
    EXPECT_EQ(clip->recognizedText, QString());
    EXPECT_TRUE(clip->recognizedText.has_value());
    EXPECT_EQ(clip->revision, 0);
    EXPECT_EQ(history.store->formats(*clip), capture.formats);
}

TEST(ClipStore, ARepeatedCopyMovesToTheTopAsItWas)
{
    ScratchHistory history;
    const auto first = history.add(QStringLiteral("uno"));
    history.add(QStringLiteral("due"));
    auto again = ScratchHistory::textCapture(QStringLiteral("uno"));
    again.appName = QStringLiteral("Other");
    EXPECT_EQ(history.add(again), first);
    EXPECT_EQ(history.texts(), (QStringList{QStringLiteral("uno"), QStringLiteral("due")}));
    EXPECT_EQ(first->created, history.clock);
    EXPECT_EQ(first->appName, std::nullopt);
    history.reopen();
    EXPECT_EQ(history.texts(), (QStringList{QStringLiteral("uno"), QStringLiteral("due")}));
}

TEST(ClipStore, TheSameWordsPlainAndStyledAreTwoClips)
{
    ScratchHistory history;
    const auto plain = history.add(QStringLiteral("uno"));
    const auto styled = history.add(ScratchHistory::textCapture(QStringLiteral("uno"), ClipKind::richText));
    EXPECT_EQ(plain->hash, styled->hash);
    EXPECT_EQ(history.store->clips().size(), 2u);
}

TEST(ClipStore, OrderSurvivesARestartWhereTheClockStoodStill)
{
    ScratchHistory history;
    for (int i = 0; i < 50; ++i)
        history.store->add(ScratchHistory::textCapture(numbered(i)));
    history.store->moveToTop(history.store->clips()[20]);
    const QStringList texts = history.texts();
    history.reopen();
    EXPECT_EQ(history.texts(), texts);
}

TEST(ClipStore, AClockSetBackLosesNothing)
{
    ScratchHistory history;
    history.add(QStringLiteral("before"));
    history.clock -= 7 * 86400;
    const auto after = history.add(QStringLiteral("after"));
    EXPECT_EQ(after->created, history.clock);
    EXPECT_EQ(history.texts().first(), QStringLiteral("after"));
    history.store->trim(500, 1);
    history.reopen();
    EXPECT_EQ(history.texts().size(), 2);
}

TEST(ClipStore, EveryChangeIsPostedOnceAndCounted)
{
    ScratchHistory history;
    ClipStore &store = *history.store;
    QSignalSpy changes(&store, &ClipStore::ClipStoreDidChange);
    const auto expectPosts = [&](int count, const char *operation) {
        EXPECT_EQ(changes.size(), count) << operation;
        for (const auto &arguments : changes)
            EXPECT_EQ(arguments.first().value<ClipStore *>(), &store);
        changes.clear();
    };
    const auto clip = history.add(QStringLiteral("uno"));
    expectPosts(1, "add");
    history.add(QStringLiteral("uno"));
    expectPosts(1, "add again");
    store.moveToTop(clip);
    expectPosts(1, "move");
    store.setPinned(clip, true);
    expectPosts(1, "pin");
    store.setRecognizedText(QStringLiteral("x"), clip);
    expectPosts(1, "recognised text");
    store.replaceContent(clip, QStringLiteral("due"), {});
    expectPosts(1, "replace");
    store.deleteAll({});
    expectPosts(0, "delete none");
    store.trim(0, 0);
    expectPosts(0, "trim nothing");
    store.setPinned(clip, false);
    changes.clear();
    store.trim(0, 0);
    expectPosts(1, "trim");
    store.remove(clip);
    expectPosts(1, "delete");
    store.setRecognizedText(QStringLiteral("y"), clip);
    store.replaceContent(clip, QStringLiteral("tre"), {});
    expectPosts(0, "clip not in the store");
    EXPECT_EQ(store.changeCount(), 9u);
}

TEST(ClipStore, TrimKeepsPinnedClipsWhereverTheyStand)
{
    ScratchHistory history;
    for (int i = 0; i < 1200; ++i)
        history.add(numbered(i));
    for (const size_t place : {0u, 600u, 1199u})
        history.store->setPinned(history.store->clips()[place], true);
    history.store->trim(500, 0);
    EXPECT_EQ(history.store->clips().size(), 503u);
    EXPECT_EQ(history.texts().last(), numbered(0));
    EXPECT_EQ(history.texts()[500], numbered(699));
    history.reopen();
    EXPECT_EQ(history.store->clips().size(), 503u);
    history.store->trim(-5, 0);
    EXPECT_EQ(history.store->clips().size(), 3u);
}

TEST(ClipStore, TrimByAgeIsStrictAndDoesNotCountTheExpired)
{
    ScratchHistory history;
    const auto old = history.add(QStringLiteral("old"));
    const auto limit = history.add(QStringLiteral("limit"));
    const auto pinned = history.add(QStringLiteral("pinned"));
    history.store->setPinned(pinned, true);
    history.clock = limit->created + 86400;
    history.store->trim(1, 1);
    EXPECT_EQ(history.texts(), (QStringList{QStringLiteral("pinned"), QStringLiteral("limit")}));
    history.clock += 1;
    history.store->trim(std::numeric_limits<qint64>::max(), 0);
    EXPECT_EQ(history.store->clips().size(), 2u);
    history.store->trim(10, std::numeric_limits<qint64>::max());
    EXPECT_EQ(history.store->clips().size(), 2u);
    history.store->trim(10, 1);
    EXPECT_EQ(history.texts(), QStringList{QStringLiteral("pinned")});
}

TEST(ClipStore, DeletedClipsTakeTheirFormatsAndTheirSpaceWithThem)
{
    ScratchHistory history;
    ClipList doomed;
    for (int i = 0; i < 20; ++i)
        doomed.push_back(history.add(QString(100000, QChar(u'a' + i))));
    const auto kept = history.add(QStringLiteral("kept"));
    history.store->remove(doomed.back());
    history.store->deleteAll(doomed);
    EXPECT_EQ(history.texts(), QStringList{QStringLiteral("kept")});
    BareDatabase bare(history.file());
    EXPECT_EQ(bare.rows("SELECT clip_id FROM formats"), QStringList{QString::number(kept->id)});
    EXPECT_EQ(bare.rows("PRAGMA freelist_count"), QStringList{QStringLiteral("0")});
}

TEST(ClipStore, DeleteAllGoesByIdDeleteByIdentity)
{
    ScratchHistory history;
    const auto clip = history.add(QStringLiteral("uno"));
    const auto copy = std::make_shared<Clip>(*clip);
    history.store->setRecognizedText(QStringLiteral("x"), copy);
    EXPECT_EQ(copy->revision, 1);
    EXPECT_EQ(clip->recognizedText, std::nullopt);
    history.store->deleteAll({copy});
    EXPECT_TRUE(history.store->clips().empty());
}

TEST(ClipStore, RecognisedTextOfADeletedClipStaysInMemory)
{
    ScratchHistory history;
    const auto clip = history.add(ScratchHistory::imageCapture("png"));
    history.store->remove(clip);
    history.store->setRecognizedText(QString(300000, QLatin1Char('x')), clip);
    EXPECT_EQ(clip->recognizedText->size(), 200000);
    EXPECT_EQ(clip->revision, 1);
    history.reopen();
    EXPECT_TRUE(history.store->clips().empty());
}

TEST(ClipStore, ReplacedContentKeepsPlaceKindTimeAndPin)
{
    ScratchHistory history;
    const auto clip = history.add(ScratchHistory::textCapture(QStringLiteral("uno"), ClipKind::richText));
    history.store->setPinned(clip, true);
    const double created = clip->created;
    history.add(QStringLiteral("due"));
    const QString text = QString(250000, QLatin1Char('z'));
    history.store->replaceContent(clip, text, {{0, QStringLiteral("public.utf8-plain-text"), text.toUtf8()}});
    EXPECT_EQ(clip->revision, 1);
    for (int round = 0; round < 2; ++round) {
        const auto &replaced = history.store->clips()[1];
        EXPECT_EQ(replaced->text.size(), 200000);
        EXPECT_EQ(replaced->fullText(*history.store), text);
        EXPECT_EQ(replaced->hash, contentHash(QString(QStringLiteral("text\n") + text)));
        EXPECT_EQ(replaced->size, 250000);
        EXPECT_EQ(replaced->kind, ClipKind::richText);
        EXPECT_EQ(replaced->created, created);
        EXPECT_TRUE(replaced->pinned);
        EXPECT_EQ(history.store->formats(*replaced).size(), 1u);
        history.reopen();
    }
}

TEST(ClipStore, AListenerMayChangeTheStore)
{
    ScratchHistory history;
    QObject::connect(history.store.get(), &ClipStore::ClipStoreDidChange, history.store.get(),
                     [](ClipStore *store) { store->trim(2, 0); });
    for (int i = 0; i < 5; ++i)
        history.add(numbered(i));
    EXPECT_EQ(history.texts(), (QStringList{numbered(4), numbered(3)}));
    history.store->remove(history.store->clips().front());
    EXPECT_EQ(history.texts(), QStringList{numbered(3)});
}

TEST(ClipStore, CreatesFoldersForTheUserAloneAndAFileThatShrinks)
{
    ScratchHistory history;
    struct stat status = {};
    ASSERT_EQ(::stat(QFile::encodeName(history.folder()).constData(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0700u);
    BareDatabase bare(history.file());
    EXPECT_EQ(bare.rows("PRAGMA auto_vacuum"), QStringList{QStringLiteral("2")});
    EXPECT_EQ(bare.rows("PRAGMA journal_mode"), QStringList{QStringLiteral("wal")});
    EXPECT_TRUE(history.log.lines.isEmpty()) << qPrintable(history.log.lines.join(u'\n'));
    EXPECT_EQ(bare.rows("SELECT sql FROM sqlite_master WHERE name = 'formats'").first(),
              QStringLiteral("CREATE TABLE formats(\n"
                             "    clip_id INTEGER NOT NULL REFERENCES clips(id) ON DELETE CASCADE,\n"
                             "    item INTEGER NOT NULL,\n"
                             "    type TEXT NOT NULL,\n"
                             "    data BLOB NOT NULL)"));
}

TEST(ClipStore, AnOldFileGainsRecognisedTextAndKeepsItsRows)
{
    ScratchHistory history;
    history.add(QStringLiteral("uno"));
    history.store.reset();
    {
        BareDatabase bare(history.file());
        ASSERT_EQ(bare.exec("ALTER TABLE clips DROP COLUMN ocr; UPDATE clips SET kind = 7, text = 'vecchio'"),
                  SQLITE_OK);
    }
    history.reopen();
    const auto &clip = history.store->clips().front();
    EXPECT_EQ(clip->text, QStringLiteral("vecchio"));
    EXPECT_EQ(clip->kind, ClipKind::text);
    EXPECT_EQ(clip->recognizedText, std::nullopt);
    history.store->setRecognizedText(QStringLiteral("x"), clip);
    history.reopen();
    EXPECT_EQ(history.store->clips().front()->recognizedText, QStringLiteral("x"));
}

TEST(ClipStore, OddPixelSizesAreStoredAsNumbers)
{
    ScratchHistory history;
    auto capture = ScratchHistory::imageCapture("png");
    capture.pixelSize = {12.9, std::nan("")};
    history.add(capture);
    history.reopen();
    EXPECT_EQ(history.store->clips().front()->pixelSize, QSizeF(12, 0));
}
