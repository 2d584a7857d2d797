#include "tests/store/ScratchHistory.h"

#include <cmath>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace {

QString numbered(int number)
{
    return QString("clip %1").arg(number);
}

} // namespace

TEST(ClipStore, KeepsEveryCopyAndTrimsAllButTheNewestAndThePinned)
{
    ScratchHistory history;
    for (int i = 0; i < 1200; ++i)
        history.add(numbered(i));
    for (const size_t place : {0u, 600u, 1199u})
        history.store->setPinned(history.store->clips()[place], true);
    const QStringList texts = history.texts();
    EXPECT_EQ(texts.size(), 1200);
    EXPECT_EQ(texts.first(), numbered(1199));
    history.reopen();
    EXPECT_EQ(history.texts(), texts);
    history.store->trim(500, 0);
    history.reopen();
    EXPECT_EQ(history.store->clips().size(), 503u);
    EXPECT_EQ(history.texts().last(), numbered(0));
    EXPECT_EQ(history.texts()[500], numbered(699));
    history.store->trim(-5, 0);
    EXPECT_EQ(history.texts(), (QStringList{numbered(1199), numbered(599), numbered(0)}));
}

TEST(ClipStore, StoresEveryFieldOfACapture)
{
    ScratchHistory history;
    auto capture = imageCapture("png", {640.9, std::nan("")});
    capture.thumbnail = "thumb";
    capture.appID = "org.example.Draw";
    capture.appName = "Disegno";
    capture.formats.push_back({1, "text/x-empty", QByteArray()});
    capture.formats.push_back({0, "public.html", "<b>"});
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
    EXPECT_EQ(clip->pixelSize, QSizeF(640, 0)) << "whole numbers";
    EXPECT_EQ(clip->thumbData, capture.thumbnail);
    EXPECT_TRUE(clip->recognizedText.has_value());
    EXPECT_EQ(clip->revision, 0);
    EXPECT_EQ(history.store->formats(*clip), capture.formats);
}

TEST(ClipStore, ARepeatedCopyMovesToTheTopAsItWas)
{
    ScratchHistory history;
    const auto first = history.add("uno");
    history.add("due");
    auto again = textCapture("uno");
    again.appName = "Other";
    EXPECT_EQ(history.add(again), first);
    EXPECT_EQ(first->created, history.clock);
    EXPECT_EQ(first->appName, std::nullopt);
    history.add(textCapture("uno", ClipKind::richText)); // the same words, styled: another clip
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(history.texts(), (QStringList{"uno", "uno", "due"}));
        history.reopen();
    }
}

TEST(ClipStore, OrderSurvivesAClockThatStandsStillOrIsSetBack)
{
    ScratchHistory history;
    for (int i = 0; i < 50; ++i)
        history.store->add(textCapture(numbered(i)));
    history.store->moveToTop(history.store->clips()[20]);
    QStringList texts = history.texts();
    history.reopen();
    EXPECT_EQ(history.texts(), texts);

    history.clock -= 7 * 86400;
    EXPECT_EQ(history.add("after")->created, history.clock);
    EXPECT_EQ(history.texts(), QStringList("after") + texts);
    history.store->trim(500, 1);
    history.reopen();
    EXPECT_EQ(history.texts().size(), 51);
}

TEST(ClipStore, EveryChangeIsPostedOnceAndCounted)
{
    ScratchHistory history;
    ClipStore &store = *history.store;
    QSignalSpy changes(&store, &ClipStore::ClipStoreDidChange);
    ClipPointer clip;
    const struct {
        const char *name;
        int posts;
        std::function<void()> run;
    } operations[] = {
        {"add", 1, [&] { clip = history.add("uno"); }},
        {"add again", 1, [&] { history.add("uno"); }},
        {"move", 1, [&] { store.moveToTop(clip); }},
        {"pin", 1, [&] { store.setPinned(clip, true); }},
        {"recognised text", 1, [&] { store.setRecognizedText("x", clip); }},
        {"replace", 1, [&] { store.replaceContent(clip, "due", {}); }},
        {"delete none", 0, [&] { store.deleteAll({}); }},
        {"trim nothing", 0, [&] { store.trim(0, 0); }},
        {"unpin", 1, [&] { store.setPinned(clip, false); }},
        {"trim", 1, [&] { store.trim(0, 0); }},
        {"delete", 1, [&] { store.remove(clip); }},
        {"read what is gone", 0, [&] { store.setRecognizedText("y", clip); }},
        {"replace what is gone", 0, [&] { store.replaceContent(clip, "tre", {}); }},
    };
    for (const auto &[name, posts, run] : operations) {
        const auto before = store.changeCount();
        changes.clear();
        run();
        EXPECT_EQ(changes.size(), posts) << name;
        EXPECT_EQ(store.changeCount() - before, quint64(posts)) << name;
    }
}

TEST(ClipStore, TrimByAgeIsStrictAndDoesNotCountTheExpired)
{
    ScratchHistory history;
    history.add("old");
    const auto limit = history.add("limit");
    history.store->setPinned(history.add("pinned"), true);
    history.clock = limit->created + 86400;
    history.store->trim(1, 1);
    EXPECT_EQ(history.texts(), (QStringList{"pinned", "limit"}));
    history.clock += 1;
    constexpr qint64 endless = std::numeric_limits<qint64>::max();
    history.store->trim(endless, 0);
    history.store->trim(10, endless);
    EXPECT_EQ(history.store->clips().size(), 2u);
    history.store->trim(10, 1);
    EXPECT_EQ(history.texts(), QStringList("pinned"));
}

TEST(ClipStore, DeletedClipsTakeTheirFormatsAndTheirSpaceWithThem)
{
    ScratchHistory history;
    ClipList doomed;
    for (int i = 0; i < 20; ++i)
        doomed.push_back(history.add(QString(100000, QChar(u'a' + i))));
    const auto kept = history.add("kept");
    history.store->remove(doomed.back());
    doomed.front() = std::make_shared<Clip>(*doomed.front()); // goes by its id
    history.store->deleteAll(doomed);
    EXPECT_EQ(history.texts(), QStringList("kept"));
    BareDatabase bare(history.file());
    EXPECT_EQ(bare.rows("SELECT clip_id FROM formats"), QStringList(QString::number(kept->id)));
    EXPECT_EQ(bare.rows("PRAGMA freelist_count"), QStringList("0"));
}

TEST(ClipStore, RecognisedTextOfADeletedClipStaysInMemory)
{
    ScratchHistory history;
    const auto clip = history.add(imageCapture("png"));
    history.store->remove(clip);
    history.store->setRecognizedText(QString(300000, u'x'), clip);
    EXPECT_EQ(clip->recognizedText->size(), 200000);
    EXPECT_EQ(clip->revision, 1);
    history.reopen();
    EXPECT_TRUE(history.store->clips().empty());
}

TEST(ClipStore, ReplacedContentKeepsPlaceKindTimeAndPin)
{
    ScratchHistory history;
    const auto clip = history.add(textCapture("uno", ClipKind::richText));
    history.store->setPinned(clip, true);
    const double created = clip->created;
    history.add("due");
    const QString text = QString(250000, u'z');
    history.store->replaceContent(clip, text, textCapture(text).formats);
    EXPECT_EQ(clip->revision, 1);
    for (int round = 0; round < 2; ++round) {
        const auto &replaced = history.store->clips()[1];
        EXPECT_EQ(replaced->text.size(), 200000);
        EXPECT_EQ(replaced->fullText(*history.store), text);
        EXPECT_EQ(replaced->hash, textCapture(text).hash);
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
    EXPECT_EQ(history.texts(), QStringList(numbered(3)));
}

TEST(ClipStore, CreatesAFolderForTheUserAloneAndAFileThatShrinks)
{
    ScratchHistory history;
    struct stat status = {};
    ASSERT_EQ(::stat(QFile::encodeName(history.folder()).constData(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0700u);
    BareDatabase bare(history.file());
    EXPECT_EQ(bare.rows("PRAGMA auto_vacuum"), QStringList("2"));
    EXPECT_EQ(bare.rows("PRAGMA journal_mode"), QStringList("wal"));
    EXPECT_TRUE(history.log.lines.isEmpty()) << qPrintable(history.log.lines.join(u'\n'));
}

TEST(ClipStore, AnOldFileGainsRecognisedTextAndKeepsItsRows)
{
    ScratchHistory history;
    for (const char *kind : {"7", "-1", "4294967298"}) { // none that there is
        history.add("uno");
        history.store.reset();
        BareDatabase bare(history.file());
        ASSERT_EQ(bare.exec("ALTER TABLE clips DROP COLUMN ocr"), SQLITE_OK);
        bare.exec(QByteArray("UPDATE clips SET text = 'vecchio', kind = ").append(kind).constData());
        history.reopen();
        const auto clip = history.store->clips().front();
        EXPECT_EQ(clip->text, "vecchio");
        EXPECT_EQ(clip->kind, ClipKind::text) << kind;
        EXPECT_EQ(clip->recognizedText, std::nullopt);
        history.store->setRecognizedText("x", clip);
        history.reopen();
        EXPECT_EQ(history.store->clips().front()->recognizedText, QString("x"));
    }
}
