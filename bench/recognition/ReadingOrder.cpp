#include "bench/recognition/ReadingOrder.h"

#include <algorithm>

QString inReadingOrder(const std::vector<RecognizedFragment> &fragments, QSize picture)
{
    std::vector<RecognizedFragment> trusted;
    for (RecognizedFragment fragment : fragments) {
        fragment.box =
            QRectF(fragment.box.x() * picture.width(), fragment.box.y() * picture.height(),
                   fragment.box.width() * picture.width(), fragment.box.height() * picture.height());
        if (fragment.confidence >= 0.3F)
            trusted.push_back(fragment);
    }
    std::stable_sort(trusted.begin(), trusted.end(),
                     [](const auto &a, const auto &b) { return a.box.center().y() > b.box.center().y(); });
    QString text;
    for (auto line = trusted.begin(); line != trusted.end();) {
        const QRectF first = line->box;
        const auto next = std::find_if(line, trusted.end(), [&first](const auto &fragment) {
            const double y = fragment.box.center().y();
            return y < first.top() || y > first.bottom();
        });
        std::stable_sort(line, next,
                         [](const auto &a, const auto &b) { return a.box.left() < b.box.left(); });
        for (; line != next; ++line)
            text += line->text + u' ';
    }
    return text;
}
