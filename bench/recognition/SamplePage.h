#pragma once

#include <QColor>
#include <QFont>
#include <QImage>
#include <QPainter>
#include <QRandomGenerator>
#include <QStringList>
#include <memory>

// A picture with what can be read in it, in reading order.
struct Sample {
    QString kind;
    QImage image;
    QString truth; // empty where nothing is to be read
};

// Draws one sample and writes down what it says. Everything comes from the generator of random numbers, so
// that a seed gives the same picture on every run.
class SamplePage {
public:
    SamplePage(QRandomGenerator &source, QSize size, const QColor &paper);

    // Draws text with its top left corner there and notes it; gives the space that it took.
    QRect text(QPoint topLeft, const QString &words, const QFont &font, const QColor &color);
    QRect centred(const QRect &box, const QString &words, const QFont &font, const QColor &color);

    [[nodiscard]] Sample finished(const QString &kind);
    [[nodiscard]] QPainter &paint() { return *painter; }
    [[nodiscard]] QSize size() const { return image.size(); }

    int below(int limit) { return static_cast<int>(random.bounded(limit)); }
    int between(int low, int high) { return low + below(high - low + 1); }
    bool chance(int percent) { return below(100) < percent; }
    template <typename List>
    QString any(const List &list)
    {
        return QString::fromUtf16(list[static_cast<std::size_t>(below(static_cast<int>(list.size())))]);
    }

private:
    QRandomGenerator &random;
    QImage image;
    std::unique_ptr<QPainter> painter;
    QStringList said;
};

// Fonts of a desktop; `wide` adds those that nothing was tuned on.
[[nodiscard]] QFont sansFont(QRandomGenerator &random, int pixels, bool wide);
[[nodiscard]] QFont monoFont(QRandomGenerator &random, int pixels, bool wide);
