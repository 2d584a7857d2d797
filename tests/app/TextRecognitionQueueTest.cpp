#include "Norvane/app/TextRecognitionQueue.h"

#include "Norvane/store/ClipStore.h"
#include "Platform/memory/MemoryRecognition.h"
#include "tests/support/Captures.h"
#include "tests/support/LogLines.h"

#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

namespace {

class TextRecognitionQueueTest : public ::testing::Test {
protected:
    // An image clip of these bytes, which the service reads as `text`, unless that is null.
    ClipPointer add(const QByteArray &bytes, const QString &text = {})
    {
        if (!text.isNull())
            service->setText(bytes, text);
        return store.add(imageCapture(bytes));
    }

    // Kicks while the service holds back its answer, and waits until it was asked so often altogether.
    void kickAndHold(size_t asked)
    {
        service->hold();
        queue->kick();
        ASSERT_TRUE(QTest::qWaitFor([&] { return service->asked().size() == asked; }));
    }

    [[nodiscard]] bool becomesIdle() const
    {
        return QTest::qWaitFor([this] {
            return !queue->isBusy() && std::ranges::all_of(store.clips(), [](const ClipPointer &clip) {
                return clip->recognizedText.has_value();
            });
        });
    }

    // What a new program finds in the file.
    [[nodiscard]] QStringList storedTexts() const
    {
        QStringList texts;
        const ClipStore stored(folder.path());
        for (const auto &clip : stored.clips())
            texts << clip->recognizedText.value_or("(unread)");
        return texts;
    }

    const LogLines log;
    QTemporaryDir folder;
    ClipStore store{folder.path()};
    std::shared_ptr<MemoryRecognition> service = std::make_shared<MemoryRecognition>();
    bool isEnabled = true;
    std::unique_ptr<TextRecognitionQueue> queue =
        std::make_unique<TextRecognitionQueue>(store, service, [this] { return isEnabled; });
};

TEST_F(TextRecognitionQueueTest, AHistoryWrittenBeforeIsReadCompletelyAndEachImageOnce)
{
    add("damaged");
    add("blank", "");
    store.add(textCapture("plain"));
    add("third", "Fattura n. 118");
    auto bare = imageCapture("no data");
    bare.formats.clear();
    store.add(bare);
    queue->kick();
    EXPECT_TRUE(QTest::qWaitFor([this] { return storedTexts().count("(unread)") == 1; }));
    EXPECT_EQ(storedTexts(), QStringList({"", "Fattura n. 118", "(unread)", "", ""}));
    EXPECT_FALSE(queue->isBusy());
    EXPECT_EQ(service->asked(), (std::vector<QByteArray>{"third", "blank", "damaged"}));
    queue->kick();
    EXPECT_FALSE(queue->isBusy());
    EXPECT_EQ(service->asked().size(), 3);
    EXPECT_TRUE(log.lines.isEmpty());
}

TEST_F(TextRecognitionQueueTest, SwitchedOffItFinishesTheImageUnderWayAndPicksNoOther)
{
    const ClipPointer first = add("1", "uno");
    isEnabled = false;
    queue->kick();
    EXPECT_FALSE(QTest::qWaitFor([this] { return queue->isBusy(); }, 50));
    isEnabled = true;
    kickAndHold(1);
    const ClipPointer second = add("2", "due");
    isEnabled = false;
    service->release();
    EXPECT_TRUE(QTest::qWaitFor([&] { return !queue->isBusy(); }));
    EXPECT_EQ(first->recognizedText, "uno");
    EXPECT_FALSE(second->recognizedText);
    isEnabled = true;
    queue->kick();
    EXPECT_TRUE(becomesIdle());
    EXPECT_EQ(second->recognizedText, "due");
}

TEST_F(TextRecognitionQueueTest, ADeletedImageStaysDeletedAndTheRestGoesOn)
{
    add("older", "vecchio");
    const ClipPointer doomed = add("doomed", "sparito");
    kickAndHold(1);
    store.remove(doomed);
    add("newer", "nuovo"); // copied while another is read
    queue->kick();
    service->release();
    EXPECT_TRUE(becomesIdle());
    EXPECT_EQ(storedTexts(), QStringList({"nuovo", "vecchio"}));
    EXPECT_EQ(service->asked().size(), 3);
}

TEST_F(TextRecognitionQueueTest, AnImageDeletedWhileItsBytesAreReadIsNotRecognised)
{
    add("first", "primo");
    queue->kick();
    ASSERT_TRUE(becomesIdle());
    const ClipPointer older = add("older", "vecchio");
    const ClipPointer doomed = add(QByteArray(4 << 20, 'd'), "sparito");
    queue->kick();
    EXPECT_TRUE(queue->isBusy());
    store.remove(doomed);
    EXPECT_TRUE(becomesIdle());
    EXPECT_EQ(older->recognizedText, "vecchio");
    EXPECT_FALSE(doomed->recognizedText);
    EXPECT_EQ(service->asked(), (std::vector<QByteArray>{"first", "older"}));
}

TEST_F(TextRecognitionQueueTest, WithoutLanguageDataImagesWaitAndItIsSaidOnce)
{
    const ClipPointer clip = add("1", "uno");
    std::vector<bool> changes;
    queue->onCanReadChange = [&changes](bool canRead) { changes.push_back(canRead); };
    service->setLanguages({});
    queue->kick();
    EXPECT_TRUE(QTest::qWaitFor([&] { return changes.size() == 1; }));
    queue->kick();
    EXPECT_FALSE(QTest::qWaitFor([&] { return queue->canRead() || clip->recognizedText; }, 50));
    EXPECT_EQ(log.lines.size(), 1);
    service->setLanguages({"it"});
    queue->kick();
    EXPECT_TRUE(becomesIdle());
    EXPECT_EQ(changes, (std::vector{false, true}));
    EXPECT_EQ(clip->recognizedText, "uno");
}

TEST_F(TextRecognitionQueueTest, AnErrorCountsAsReadUnlessNothingCanBeReadAnyMore)
{
    const ClipPointer first = add("1", "uno");
    service->setFailure("it took too long");
    queue->kick();
    EXPECT_TRUE(becomesIdle());
    EXPECT_EQ(first->recognizedText, "");
    EXPECT_EQ(log.lines, QStringList("Text recognition failed: it took too long"));

    const ClipPointer second = add("2", "due");
    kickAndHold(2);
    service->setLanguages({});
    service->release();
    EXPECT_TRUE(QTest::qWaitFor([this] { return !queue->canRead(); }));
    EXPECT_FALSE(second->recognizedText);
}

TEST_F(TextRecognitionQueueTest, ItsEndDoesNotWaitForAnImage)
{
    const ClipPointer clip = add("1", "uno");
    kickAndHold(1);
    queue.reset();
    EXPECT_FALSE(clip->recognizedText);
}

} // namespace
