#include "Norvane/Palette.h"

#include <QFontInfo>
#include <QGuiApplication>

namespace {

constexpr qreal referenceFontSize = 13;

QColor blended(const QColor &over, const QColor &under, qreal share)
{
    const auto mix = [share](int a, int b) { return static_cast<int>(share * a + (1 - share) * b); };
    return QColor(mix(over.red(), under.red()), mix(over.green(), under.green()),
                  mix(over.blue(), under.blue()));
}

// The desktop font's size as a share of the reference. Kept: asking the font costs more than painting a row.
qreal desktopRatio()
{
    static QFont known;
    static qreal ratio = 0;
    const QFont now = QGuiApplication::font();
    if (ratio == 0 || now != known) {
        known = now;
        ratio = QFontInfo(now).pixelSize() / referenceFontSize;
    }
    return ratio;
}

} // namespace

namespace Palette {

QColor label(const QPalette &palette)
{
    return palette.color(QPalette::Active, QPalette::WindowText);
}

QColor secondary(const QPalette &palette)
{
    return blended(label(palette), palette.color(QPalette::Active, QPalette::Window), 0.62);
}

QColor separator(const QPalette &palette)
{
    return blended(label(palette), palette.color(QPalette::Active, QPalette::Window),
                   isDark(palette) ? 0.22 : 0.16);
}

QColor accent(const QPalette &palette)
{
    return palette.color(QPalette::Active, QPalette::Highlight);
}

QColor onAccent(const QPalette &palette)
{
    return palette.color(QPalette::Active, QPalette::HighlightedText);
}

QColor field(const QPalette &palette)
{
    return blended(label(palette), palette.color(QPalette::Active, QPalette::Window),
                   isDark(palette) ? 0.10 : 0.06);
}

QColor orange()
{
    return QColor(245, 143, 10);
}

bool isDark(const QPalette &palette)
{
    return palette.color(QPalette::Active, QPalette::Window).lightness() < 128;
}

} // namespace Palette

namespace Metrics {

int scaled(qreal points)
{
    return qRound(points * desktopRatio());
}

QFont font(qreal points)
{
    QFont font = QGuiApplication::font();
    if (font.pointSizeF() > 0)
        font.setPointSizeF(font.pointSizeF() * points / referenceFontSize);
    else
        font.setPixelSize(qMax(1, qRound(font.pixelSize() * points / referenceFontSize)));
    return font;
}

} // namespace Metrics
