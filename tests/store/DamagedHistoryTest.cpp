// Real files, really damaged.
#include "tests/store/ScratchHistory.h"

#include <QTest>
#include <gtest/gtest.h>

namespace {

constexpr qint64 pageSize = 4096;
constexpr size_t clipCount = 600;

QString numbered(size_t number)
{
    return QString("clip %1 ").arg(number) + QString(300, u't');
}

class DamagedHistory : public ::testing::Test {
protected:
    DamagedHistory()
    {
        for (size_t i = 0; i < clipCount; ++i)
            history.add(numbered(i));
        history.store->setPinned(history.store->clips()[10], true);
        history.store->setRecognizedText("letto", history.store->clips()[11]);
    }

    // Closes the history, so that all of it is in the one file, and spoils a page, counted from 1.
    void damagePage(qint64 page, char with = '\xAA')
    {
        history.store.reset();
        QFile file(history.file());
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        file.seek((page - 1) * pageSize);
        file.write(QByteArray(pageSize, with));
    }

    // The middle one of a table's or index's pages of a type, and opens the history again.
    void damageMiddlePageOf(const QByteArray &name, const QByteArray &type = "leaf")
    {
        history.store.reset();
        QStringList pages;
        {
            BareDatabase bare(history.file());
            pages = bare.rows("SELECT pageno FROM dbstat WHERE name = '" + name + "' AND pagetype = '" +
                              type + "'");
        }
        ASSERT_FALSE(pages.isEmpty());
        damagePage(pages[pages.size() / 2].toLongLong());
        history.reopen();
    }

    QStringList setAside() const
    {
        return QDir(history.folder()).entryList({"clips.sqlite.damaged-*"}, QDir::Files);
    }

    // Every clip is asked for its formats; the first that meets the damage has the file repaired.
    void readAll(bool onTheWorker = false)
    {
        const auto damages = setAside().size();
        const ClipList clips = history.store->clips();
        EXPECT_EQ(clips.size(), clipCount);
        size_t read = 0;
        for (const auto &clip : clips) {
            if (onTheWorker)
                history.store->read(*clip, [&read, text = clip->text.toUtf8()](const StoredFormats &formats) {
                    return [&read, same = dataOfType(formats.all(), plainText) == text] {
                        read += same ? 1 : 0;
                    };
                });
            else
                (void)history.store->formats(*clip);
        }
        const auto isRepaired = [&] {
            return setAside().size() > damages && (!onTheWorker || read == clips.size());
        };
        ASSERT_TRUE(QTest::qWaitFor(isRepaired));
        EXPECT_EQ(history.store->clips(), clips) << "the same objects";
    }

    // Also of one whose format was lost: it is pasted as it stands in the list.
    void expectTextInFormats()
    {
        for (const auto &clip : history.store->clips())
            EXPECT_EQ(dataOfType(history.store->formats(*clip), plainText), clip->text.toUtf8());
    }

    // The next copy is kept, and all is still there after a restart.
    void expectWorking(size_t clips)
    {
        EXPECT_EQ(history.store->clips().size(), clips);
        EXPECT_NE(history.add("next"), nullptr);
        const QStringList texts = history.texts();
        history.reopen();
        EXPECT_EQ(history.texts(), texts);
        BareDatabase bare(history.file());
        EXPECT_EQ(bare.rows("PRAGMA integrity_check"), QStringList("ok"));
        EXPECT_EQ(bare.rows("PRAGMA auto_vacuum"), QStringList("2"));
    }

    ScratchHistory history;
};

} // namespace

TEST_F(DamagedHistory, FilesThatAreNoDatabaseAreSetAsideAndKeptApart)
{
    damagePage(1, 'x');
    QFile file(history.file());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray damaged = file.readAll();
    history.reopen();
    ASSERT_GE(setAside().size(), 1);
    QFile kept(history.folder() + u'/' + setAside().first());
    ASSERT_TRUE(kept.open(QIODevice::ReadOnly));
    EXPECT_TRUE(kept.readAll() == damaged);
    expectWorking(0);
    for (int round = 0; round < 2; ++round) {
        damagePage(1, 'x');
        history.reopen();
    }
    EXPECT_EQ(setAside().filter(QRegularExpression("[0-9]$")).size(), 3) << qPrintable(setAside().join(u' '));
}

TEST_F(DamagedHistory, WhatATruncatedFileStillHoldsIsTakenOver)
{
    history.store.reset();
    QFile file(history.file());
    ASSERT_TRUE(file.resize(file.size() / 2 / pageSize * pageSize));
    history.reopen();
    ASSERT_GE(setAside().size(), 1);
    const size_t left = history.store->clips().size();
    EXPECT_GT(left, 100u);
    EXPECT_LT(left, clipCount);
    expectWorking(left);
}

TEST_F(DamagedHistory, OneDamagedPageCostsTheClipsOnIt)
{
    damageMiddlePageOf("clips");
    ASSERT_GE(setAside().size(), 1);
    const ClipList clips = history.store->clips();
    EXPECT_GT(clips.size(), clipCount - 20);
    EXPECT_LT(clips.size(), clipCount);
    EXPECT_EQ(clips.front()->text, numbered(599));
    EXPECT_EQ(clips.back()->text, numbered(0));
    EXPECT_TRUE(clips[10]->pinned);
    EXPECT_EQ(clips[11]->recognizedText, QString("letto"));
    expectTextInFormats();
    expectWorking(clips.size());
}

TEST_F(DamagedHistory, DamageThatShowsWhileRunningIsRepairedAtOnce)
{
    for (const bool onTheWorker : {false, true}) {
        damageMiddlePageOf("formats");
        readAll(onTheWorker);
        expectTextInFormats();
    }
    expectWorking(clipCount);
}

TEST_F(DamagedHistory, ADamagedIndexCostsNothing)
{
    damageMiddlePageOf("formats_clip");
    readAll();
    for (const auto &clip : history.store->clips())
        EXPECT_EQ(history.store->formats(*clip).size(), 1u) << clip->id;
    expectWorking(clipCount);
}

TEST_F(DamagedHistory, ACopyThatMeetsDamageIsTheLastOneLost)
{
    damageMiddlePageOf("clips_hash", "internal");
    EXPECT_EQ(history.add("lost"), nullptr);
    EXPECT_NE(history.add("kept"), nullptr);
    expectWorking(clipCount + 1);
}

TEST_F(DamagedHistory, ALogWithoutItsFileIsNotThrownAway)
{
    const QString log = history.file() + "-wal";
    ASSERT_TRUE(QFile::copy(log, history.folder() + "/wal"));
    history.store.reset();
    QFile::remove(history.file());
    ASSERT_TRUE(QFile::rename(history.folder() + "/wal", log));
    history.reopen();
    EXPECT_EQ(setAside().filter("-wal").size(), 1);
    expectWorking(0);
}
