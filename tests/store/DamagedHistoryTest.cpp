#include "tests/store/ScratchHistory.h"

#include <QDir>
#include <QTest>
#include <gtest/gtest.h>

// Real files, really damaged.

namespace {

constexpr qint64 pageSize = 4096;

QString numbered(int number)
{
    return QStringLiteral("clip %1 ").arg(number) + QString(300, QLatin1Char('t'));
}

class DamagedHistory : public ::testing::Test {
protected:
    static constexpr int clipCount = 600;

    void SetUp() override
    {
        for (int i = 0; i < clipCount; ++i)
            history.add(numbered(i));
        history.store->setPinned(history.store->clips()[10], true);
        history.store->setRecognizedText(QStringLiteral("letto"), history.store->clips()[11]);
    }

    // Closes the history, so that all of it is in the one file, and overwrites a part.
    void damage(qint64 offset, const QByteArray &bytes)
    {
        history.store.reset();
        QFile file(history.file());
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        file.seek(offset);
        file.write(bytes);
    }

    // The pages of a table's leaves, or of a whole table or index.
    std::vector<qint64> pagesOf(const char *name, const char *type)
    {
        history.store.reset();
        BareDatabase bare(history.file());
        std::vector<qint64> pages;
        const QString sql = QStringLiteral("SELECT pageno FROM dbstat WHERE name = '%1' AND pagetype = '%2'")
                                .arg(QLatin1String(name), QLatin1String(type));
        for (const QString &page : bare.rows(sql.toUtf8().constData()))
            pages.push_back(page.toLongLong());
        return pages;
    }

    QStringList setAside() const
    {
        return QDir(history.folder())
            .entryList({QStringLiteral("clips.sqlite.damaged-*")}, QDir::Files, QDir::Name);
    }

    // The next copy is kept, and all is still there after a restart.
    void expectWorking(size_t clips)
    {
        EXPECT_EQ(history.store->clips().size(), clips);
        EXPECT_NE(history.add(QStringLiteral("next")), nullptr);
        const QStringList texts = history.texts();
        history.reopen();
        EXPECT_EQ(history.texts(), texts);
        BareDatabase bare(history.file());
        EXPECT_EQ(bare.rows("PRAGMA integrity_check"), QStringList{QStringLiteral("ok")});
        EXPECT_EQ(bare.rows("PRAGMA auto_vacuum"), QStringList{QStringLiteral("2")});
    }

    ScratchHistory history;
};

} // namespace

TEST_F(DamagedHistory, AFileThatIsNoDatabaseIsSetAside)
{
    damage(0, QByteArray(pageSize, 'x'));
    QFile file(history.file());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray damaged = file.readAll();
    history.reopen();
    ASSERT_GE(setAside().size(), 1);
    QFile kept(history.folder() + u'/' + setAside().first());
    ASSERT_TRUE(kept.open(QIODevice::ReadOnly));
    EXPECT_TRUE(kept.readAll() == damaged);
    expectWorking(0);
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
    EXPECT_LT(left, 600u);
    expectWorking(left);
}

TEST_F(DamagedHistory, OneDamagedPageCostsTheClipsOnIt)
{
    const auto pages = pagesOf("clips", "leaf");
    ASSERT_GT(pages.size(), 20u);
    damage((pages[pages.size() / 2] - 1) * pageSize, QByteArray(pageSize, '\xAA'));
    history.reopen();
    ASSERT_GE(setAside().size(), 1);
    const auto &clips = history.store->clips();
    EXPECT_GT(clips.size(), 580u);
    EXPECT_LT(clips.size(), 600u);
    EXPECT_EQ(clips.front()->text, numbered(599));
    EXPECT_EQ(clips.back()->text, numbered(0));
    EXPECT_TRUE(clips[10]->pinned);
    EXPECT_EQ(clips[11]->recognizedText, QStringLiteral("letto"));
    for (const auto &clip : clips)
        EXPECT_EQ(dataOfType(history.store->formats(*clip), u"public.utf8-plain-text"), clip->text.toUtf8());
    expectWorking(clips.size());
}

TEST_F(DamagedHistory, DamageThatShowsWhileRunningIsRepairedAtOnce)
{
    for (const bool onTheWorker : {false, true}) {
        const auto pages = pagesOf("formats", "leaf");
        ASSERT_GT(pages.size(), 20u);
        damage((pages[pages.size() / 2] - 1) * pageSize, QByteArray(pageSize, '\xAA'));
        history.reopen();
        const auto damages = setAside().size();
        const ClipList clips = history.store->clips();
        EXPECT_EQ(clips.size(), 600u);
        size_t read = 0;
        for (const auto &clip : clips) {
            if (!onTheWorker)
                (void)history.store->formats(*clip);
            else
                history.store->read(*clip, [&read, text = clip->text.toUtf8()](const StoredFormats &formats) {
                    return [&read, same = dataOfType(formats.all(), u"public.utf8-plain-text") == text] {
                        read += same ? 1 : 0;
                    };
                });
        }
        ASSERT_TRUE(QTest::qWaitFor(
            [&] { return setAside().size() > damages && (!onTheWorker || read == clips.size()); }));
        EXPECT_EQ(history.store->clips(), clips); // the same objects
        // What the page held is lost; such texts are pasted as they stand in the list.
        for (const auto &clip : clips)
            EXPECT_EQ(dataOfType(history.store->formats(*clip), u"public.utf8-plain-text"),
                      clip->text.toUtf8());
    }
    expectWorking(600);
}

TEST_F(DamagedHistory, ADamagedIndexCostsNothing)
{
    const auto pages = pagesOf("formats_clip", "leaf");
    damage((pages.front() - 1) * pageSize, QByteArray(pageSize, '\xAA'));
    history.reopen();
    const ClipList clips = history.store->clips();
    for (const auto &clip : clips)
        (void)history.store->formats(*clip);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !setAside().isEmpty(); }));
    for (const auto &clip : clips)
        EXPECT_EQ(history.store->formats(*clip).size(), 1u) << clip->id;
    expectWorking(600);
}

TEST_F(DamagedHistory, ACopyThatMeetsDamageIsTheLastOneLost)
{
    const auto pages = pagesOf("clips_hash", "internal");
    damage((pages.front() - 1) * pageSize, QByteArray(pageSize, '\xAA'));
    history.reopen();
    EXPECT_EQ(history.add(QStringLiteral("lost")), nullptr);
    EXPECT_NE(history.add(QStringLiteral("kept")), nullptr);
    EXPECT_EQ(history.store->clips().size(), 601u);
    expectWorking(601);
}

TEST_F(DamagedHistory, SeveralDamagesAreKeptApart)
{
    for (int round = 0; round < 3; ++round) {
        damage(0, QByteArray(pageSize, 'x'));
        history.reopen();
        history.add(QStringLiteral("clip"));
    }
    const auto files = setAside().filter(QRegularExpression(QStringLiteral("[0-9]$")));
    EXPECT_EQ(files.size(), 3) << qPrintable(files.join(u' '));
}

TEST_F(DamagedHistory, ALogWithoutItsFileIsNotThrownAway)
{
    ASSERT_TRUE(
        QFile::copy(history.file() + QStringLiteral("-wal"), history.folder() + QStringLiteral("/wal")));
    history.store.reset();
    QFile::remove(history.file());
    ASSERT_TRUE(
        QFile::rename(history.folder() + QStringLiteral("/wal"), history.file() + QStringLiteral("-wal")));
    history.reopen();
    EXPECT_EQ(setAside().filter(QStringLiteral("-wal")).size(), 1);
    expectWorking(0);
}
