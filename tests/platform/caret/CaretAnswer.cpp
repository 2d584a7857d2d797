#include "tests/platform/caret/CaretAnswer.h"

#include "tests/support/Heartbeat.h"

#include <QTest>
#include <ostream>

void PrintTo(const QRectF &rect, std::ostream *stream)
{
    *stream << rect.x() << ',' << rect.y() << ' ' << rect.width() << 'x' << rect.height();
}

CaretAnswer askForCaret(Accessibility &service)
{
    CaretAnswer answer;
    Heartbeat heartbeat;
    QElapsedTimer sinceRequest;
    sinceRequest.start();
    service.requestCaretRect([&](const std::optional<QRectF> &caret) {
        answer.came = true;
        answer.caret = caret;
        answer.milliseconds = sinceRequest.elapsed();
    });
    if (!QTest::qWaitFor([&] { return answer.came; }))
        service.cancel();
    answer.largestGap = heartbeat.longest();
    return answer;
}

CaretAnswer expectNoCaretInTime(Accessibility &service)
{
    CaretAnswer quickest = askForCaret(service);
    for (int round = 0; round < 4; ++round) {
        const CaretAnswer answer = askForCaret(service);
        EXPECT_TRUE(answer.came);
        EXPECT_EQ(answer.caret, std::nullopt);
        quickest.milliseconds = std::min(quickest.milliseconds, answer.milliseconds);
        quickest.largestGap = std::min(quickest.largestGap, answer.largestGap);
    }
    EXPECT_LT(quickest.milliseconds, 150);
    EXPECT_LT(quickest.largestGap, 60) << "the main thread waited";
    return quickest;
}
