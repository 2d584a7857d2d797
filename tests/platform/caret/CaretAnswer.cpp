#include "tests/platform/caret/CaretAnswer.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>
#include <ostream>

void PrintTo(const QRectF &rect, std::ostream *stream)
{
    *stream << rect.x() << ',' << rect.y() << ' ' << rect.width() << 'x' << rect.height();
}

CaretAnswer askForCaret(Accessibility &service)
{
    CaretAnswer answer;
    QEventLoop loop;
    QElapsedTimer sinceRequest, sinceTick;
    QTimer ticks, limit;
    ticks.setTimerType(Qt::PreciseTimer);
    ticks.callOnTimeout(&loop, [&] { answer.largestGap = std::max(answer.largestGap, sinceTick.restart()); });
    limit.callOnTimeout(&loop, &QEventLoop::quit);
    sinceTick.start();
    ticks.start(2);
    limit.start(5000);
    sinceRequest.start();
    service.requestCaretRect([&](const std::optional<QRectF> &caret) {
        answer.came = true;
        answer.caret = caret;
        answer.milliseconds = sinceRequest.elapsed();
        loop.quit();
    });
    loop.exec();
    answer.largestGap = std::max(answer.largestGap, sinceTick.elapsed());
    return answer;
}
