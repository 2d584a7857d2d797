#include "tests/store/ScratchHistory.h"

#include <QTest>
#include <gtest/gtest.h>

// Captures that a worker writes.

namespace {

const QString one = "uno", two = "due", large = "large";

CapturedClip largeCapture(const QString &text = large)
{
    auto capture = textCapture(text);
    capture.formats.push_back({1, "public.png", QByteArray(8 << 20, 'x')});
    return capture;
}

class LargeCapture : public ::testing::Test {
protected:
    LargeCapture()
    {
        history.add(one);
        history.add(two);
    }

    void addLater(const CapturedClip &capture)
    {
        isDone = false;
        history.clock += 1;
        history.store->addLater(capture, [this] { isDone = true; });
    }

    [[nodiscard]] bool isDoneSoon() const
    {
        return QTest::qWaitFor([this] { return isDone; });
    }

    // What is in memory is in the file too, and the formats with their clips.
    void expectFileAsMemory()
    {
        const QStringList texts = history.texts();
        history.reopen();
        EXPECT_EQ(history.texts(), texts);
        for (const auto &clip : history.store->clips()) {
            EXPECT_EQ(totalSize(history.store->formats(*clip)), clip->size) << qPrintable(clip->text);
            EXPECT_EQ(wholeText(history.store->stored(*clip), {}), clip->text);
        }
        BareDatabase bare(history.file());
        EXPECT_EQ(bare.rows("SELECT DISTINCT clip_id FROM formats").size(), texts.size());
    }

    ScratchHistory history;
    bool isDone = false;
};

TEST_F(LargeCapture, IsInTheListWhenItIsInTheFile)
{
    QSignalSpy changes(history.store.get(), &ClipStore::ClipStoreDidChange);
    bool isWritten = false;
    addLater(largeCapture());
    history.store->whenWritten([&] { isWritten = true; });
    EXPECT_EQ(history.texts(), (QStringList{two, one})) << "the caller has waited for it";
    EXPECT_FALSE(isWritten);
    ASSERT_TRUE(isDoneSoon());
    ASSERT_TRUE(QTest::qWaitFor([&] { return isWritten; }));
    EXPECT_EQ(changes.size(), 1);
    EXPECT_EQ(history.texts(), (QStringList{large, two, one}));
    addLater(largeCapture()); // known
    EXPECT_TRUE(isDone);
    EXPECT_EQ(history.store->clips().size(), 3u);
    expectFileAsMemory();
}

TEST_F(LargeCapture, EveryOtherChangeComesAfterIt)
{
    const struct {
        const char *name;
        std::function<void(ScratchHistory &, const ClipPointer &last)> change;
        QStringList texts;
    } cases[] = {
        {"another capture", [](auto &h, auto &) { h.add("tre"); }, {"tre", large, two, one}},
        {"the same capture", [](auto &h, auto &) { h.add(largeCapture()); }, {large, two, one}},
        {"another large one",
         [](auto &h, auto &) {
             h.store->addLater(largeCapture("larger"), [] {});
             h.store->trim(9, 0);
         },
         {"larger", large, two, one}},
        {"to the top",
         [](auto &h, auto &) {
             h.clock += 1;
             h.store->moveToTop(h.store->clips().back());
         },
         {one, large, two}},
        {"pin", [](auto &h, auto &last) { h.store->setPinned(last, true); }, {large, two, one}},
        {"delete", [](auto &h, auto &) { h.store->remove(h.store->clips().back()); }, {large, two}},
        {"delete several", [](auto &h, auto &last) { h.store->deleteAll({last}); }, {large, two}},
        {"trim", [](auto &h, auto &) { h.store->trim(2, 0); }, {large, two}},
        {"recognised text",
         [](auto &h, auto &last) { h.store->setRecognizedText("x", last); },
         {large, two, one}},
        {"new content",
         [](auto &h, auto &last) { h.store->replaceContent(last, two, textCapture(two).formats); },
         {large, two, two}},
        {"the end", [](auto &h, auto &) { h.reopen(); }, {large, two, one}},
    };
    for (const auto &other : cases) {
        SCOPED_TRACE(other.name);
        history.store->deleteAll(ClipList(history.store->clips()));
        history.add(one);
        history.add(two);
        addLater(largeCapture());
        other.change(history, history.store->clips().back());
        EXPECT_EQ(history.texts(), other.texts);
        expectFileAsMemory();
    }
}

TEST_F(LargeCapture, ThatTheFileRefusesAddsNothing)
{
    const struct {
        const char *name;
        const char *refuse;
        const char *allow;
    } cases[] = {
        {"the row", "CREATE TRIGGER t BEFORE INSERT ON clips BEGIN SELECT RAISE(FAIL, 'x'); END",
         "DROP TRIGGER t"},
        {"a format",
         "CREATE TRIGGER t BEFORE INSERT ON formats WHEN NEW.item = 1 BEGIN SELECT RAISE(FAIL, 'x'); END",
         "DROP TRIGGER t"},
        {"all, to another process", "BEGIN IMMEDIATE", "COMMIT"},
    };
    BareDatabase other(history.file());
    for (const auto &failing : cases) {
        SCOPED_TRACE(failing.name);
        QSignalSpy changes(history.store.get(), &ClipStore::ClipStoreDidChange);
        ASSERT_EQ(other.exec(failing.refuse), SQLITE_OK);
        addLater(largeCapture());
        ASSERT_TRUE(isDoneSoon());
        EXPECT_EQ(changes.size(), 0);
        EXPECT_EQ(history.texts(), (QStringList{two, one}));
        EXPECT_FALSE(history.log.lines.isEmpty());
        ASSERT_EQ(other.exec(failing.allow), SQLITE_OK);
        expectFileAsMemory();
    }
    addLater(largeCapture());
    ASSERT_TRUE(isDoneSoon());
    expectFileAsMemory();
}

TEST_F(LargeCapture, GoesWhereTheHistoryIsAndNotIntoAFileThatTookItsPlace)
{
    ASSERT_TRUE(QFile::rename(history.file(), history.file() + ".moved"));
    ASSERT_TRUE(QFile(history.file()).open(QIODevice::WriteOnly));
    addLater(largeCapture());
    ASSERT_TRUE(isDoneSoon());
    EXPECT_EQ(history.texts(), (QStringList{large, two, one}));
    EXPECT_EQ(totalSize(history.store->formats(*history.store->clips().front())),
              history.store->clips().front()->size);
    EXPECT_EQ(QFileInfo(history.file()).size(), 0);
}

} // namespace
