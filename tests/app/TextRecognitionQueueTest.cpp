#include "Norvane/app/TextRecognitionQueue.h"

#include "Norvane/store/ClipStore.h"
#include "Platform/Log.h"
#include "Platform/memory/MemoryRecognition.h"

#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

class TextRecognitionQueueTest : public ::testing::Test {
public:
    ~TextRecognitionQueueTest() override { setLogSink({}); }

protected:
    TextRecognitionQueueTest()
    {
        setLogSink([this](const QString &line) { log << line; });
    }

    // An image clip of these bytes, which the service reads as `text`, unless that is null.
    ClipPointer add(const QByteArray &bytes, const QString &text = {})
    {
        if (!text.isNull())
            service->setText(bytes, text);
        CapturedClip capture;
        capture.kind = ClipKind::image;
        capture.hash = contentHash(bytes);
        capture.formats = {{0, u"public.png"_s, bytes}};
        return store.add(capture);
    }

    [[nodiscard]] std::unique_ptr<TextRecognitionQueue> makeQueue()
    {
        return std::make_unique<TextRecognitionQueue>(store, service, [this] { return isEnabled; });
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
            texts << clip->recognizedText.value_or(u"(unread)"_s);
        return texts;
    }

    QTemporaryDir folder;
    ClipStore store{folder.path()};
    std::shared_ptr<MemoryRecognition> service = std::make_shared<MemoryRecognition>();
    bool isEnabled = true;
    QStringList log;
    std::unique_ptr<TextRecognitionQueue> queue = makeQueue();
};

TEST_F(TextRecognitionQueueTest, AHistoryWrittenBeforeIsReadCompletelyAndEachImageOnce)
{
    add("damaged");
    add("blank", u""_s);
    CapturedClip text;
    text.text = u"plain"_s;
    text.hash = u"1"_s;
    store.add(text);
    add("third", u"Fattura n. 118"_s);
    CapturedClip bare;
    bare.kind = ClipKind::image;
    bare.hash = u"2"_s;
    store.add(bare); // without image data
    queue->kick();
    EXPECT_TRUE(QTest::qWaitFor([this] { return storedTexts().count(u"(unread)"_s) == 1; }));
    EXPECT_EQ(storedTexts(), QStringList({u""_s, u"Fattura n. 118"_s, u"(unread)"_s, u""_s, u""_s}));
    EXPECT_FALSE(queue->isBusy());
    EXPECT_EQ(service->asked(), (std::vector<QByteArray>{"third", "blank", "damaged"}));
    queue->kick();
    EXPECT_FALSE(queue->isBusy());
    EXPECT_EQ(service->asked().size(), 3);
    EXPECT_TRUE(log.isEmpty());
}

TEST_F(TextRecognitionQueueTest, SwitchedOffItFinishesTheImageUnderWayAndPicksNoOther)
{
    const ClipPointer first = add("1", u"uno"_s);
    isEnabled = false;
    queue->kick();
    EXPECT_FALSE(QTest::qWaitFor([this] { return queue->isBusy(); }, 50));
    isEnabled = true;
    service->hold();
    queue->kick();
    ASSERT_TRUE(QTest::qWaitFor([this] { return service->asked().size() == 1; }));
    const ClipPointer second = add("2", u"due"_s);
    isEnabled = false;
    service->release();
    EXPECT_TRUE(QTest::qWaitFor([&] { return !queue->isBusy(); }));
    EXPECT_EQ(first->recognizedText, u"uno");
    EXPECT_FALSE(second->recognizedText);
    isEnabled = true;
    queue->kick();
    EXPECT_TRUE(becomesIdle());
    EXPECT_EQ(second->recognizedText, u"due");
}

TEST_F(TextRecognitionQueueTest, ADeletedImageStaysDeletedAndTheRestGoesOn)
{
    add("older", u"vecchio"_s);
    const ClipPointer doomed = add("doomed", u"sparito"_s);
    service->hold();
    queue->kick();
    ASSERT_TRUE(QTest::qWaitFor([this] { return service->asked().size() == 1; }));
    store.remove(doomed);
    add("newer", u"nuovo"_s); // copied while another is read
    queue->kick();
    service->release();
    EXPECT_TRUE(becomesIdle());
    EXPECT_EQ(storedTexts(), QStringList({u"nuovo"_s, u"vecchio"_s}));
    EXPECT_EQ(service->asked().size(), 3);
}

TEST_F(TextRecognitionQueueTest, AnImageDeletedWhileItsBytesAreReadIsNotRecognised)
{
    add("first", u"primo"_s);
    queue->kick();
    ASSERT_TRUE(becomesIdle());
    const ClipPointer older = add("older", u"vecchio"_s);
    const ClipPointer doomed = add(QByteArray(4 << 20, 'd'), u"sparito"_s);
    queue->kick();
    EXPECT_TRUE(queue->isBusy());
    store.remove(doomed);
    EXPECT_TRUE(becomesIdle());
    EXPECT_EQ(older->recognizedText, u"vecchio");
    EXPECT_FALSE(doomed->recognizedText);
    EXPECT_EQ(service->asked(), (std::vector<QByteArray>{"first", "older"}));
}

TEST_F(TextRecognitionQueueTest, WithoutLanguageDataImagesWaitAndItIsSaidOnce)
{
    const ClipPointer clip = add("1", u"uno"_s);
    std::vector<bool> changes;
    queue->onCanReadChange = [&changes](bool canRead) { changes.push_back(canRead); };
    service->setLanguages({});
    queue->kick();
    EXPECT_TRUE(QTest::qWaitFor([&] { return changes.size() == 1; }));
    queue->kick();
    EXPECT_FALSE(QTest::qWaitFor([&] { return queue->canRead() || clip->recognizedText; }, 50));
    EXPECT_EQ(log.size(), 1);
    service->setLanguages({u"it"_s});
    queue->kick();
    EXPECT_TRUE(becomesIdle());
    EXPECT_EQ(changes, (std::vector{false, true}));
    EXPECT_EQ(clip->recognizedText, u"uno");
}

TEST_F(TextRecognitionQueueTest, AnErrorCountsAsReadUnlessNothingCanBeReadAnyMore)
{
    const ClipPointer first = add("1", u"uno"_s);
    service->setFailure(u"it took too long"_s);
    queue->kick();
    EXPECT_TRUE(becomesIdle());
    EXPECT_EQ(first->recognizedText, u"");
    EXPECT_EQ(log, QStringList(u"Text recognition failed: it took too long"_s));

    const ClipPointer second = add("2", u"due"_s);
    service->hold();
    queue->kick();
    ASSERT_TRUE(QTest::qWaitFor([this] { return service->asked().size() == 2; }));
    service->setLanguages({});
    service->release();
    EXPECT_TRUE(QTest::qWaitFor([this] { return !queue->canRead(); }));
    EXPECT_FALSE(second->recognizedText);
}

TEST_F(TextRecognitionQueueTest, ItsEndDoesNotWaitForAnImage)
{
    const ClipPointer clip = add("1", u"uno"_s);
    service->hold();
    queue->kick();
    ASSERT_TRUE(QTest::qWaitFor([this] { return service->asked().size() == 1; }));
    queue.reset();
    EXPECT_FALSE(clip->recognizedText);
}

} // namespace
