#include "Norvane/capture/CaptureWorker.h"

#include "tests/capture/Copies.h"

#include <gtest/gtest.h>
#include <poll.h>

namespace {

CaptureWorker::Order orderOf(const QByteArray &text)
{
    auto snapshot = std::make_shared<PasteboardSnapshot>();
    snapshot->items = {itemOf(plainText, text)};
    return {std::move(snapshot), {}};
}

bool isReady(const CaptureWorker &worker, int timeout)
{
    pollfd descriptor{worker.readyDescriptor(), POLLIN, 0};
    return ::poll(&descriptor, 1, timeout) == 1;
}

TEST(CaptureWorker, EveryOrderGivesOneResultInOrder)
{
    CaptureWorker worker;
    constexpr int orders = 500;
    for (int i = 0; i < orders; ++i)
        worker.add(orderOf(i % 3 == 0 ? QByteArray(" ") : QByteArray::number(i))); // blank: nothing to record
    int taken = 0;
    while (taken < orders) {
        ASSERT_TRUE(isReady(worker, 5000));
        for (const auto &result : worker.takeResults()) {
            EXPECT_EQ(result.has_value(), taken % 3 != 0);
            EXPECT_EQ(result ? result->text : QString(), taken % 3 == 0 ? QString() : QString::number(taken));
            ++taken;
        }
    }
    EXPECT_FALSE(isReady(worker, 0));
}

TEST(CaptureWorker, FinishingLeavesEveryResultToTakeAndNoneOfTheContents)
{
    CaptureWorker worker;
    worker.finish();
    std::weak_ptr<const PasteboardSnapshot> contents;
    for (int i = 0; i < 20; ++i) {
        auto order = orderOf(QByteArray(100000, 'x'));
        contents = order.pasteboard;
        worker.add(std::move(order));
    }
    worker.finish();
    EXPECT_TRUE(contents.expired());
    EXPECT_EQ(worker.takeResults().size(), 20u);
}

TEST(CaptureWorker, EndsWithOrdersStillWaiting)
{
    const auto order = orderOf(QByteArray(1000000, 'x'));
    {
        CaptureWorker worker;
        for (int i = 0; i < 100; ++i)
            worker.add(order);
    }
    EXPECT_EQ(order.pasteboard.use_count(), 1);
}

} // namespace
