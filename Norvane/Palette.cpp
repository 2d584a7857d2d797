#include "Norvane/Palette.h"

#include <QFontInfo>
#include <QGuiApplication>
#include <cmath>

namespace {

constexpr qreal referenceFontSize = 13;
constexpr double textContrast = 4.5, symbolContrast = 3;
constexpr qreal step = 0.04; // of a move towards more contrast

QColor blended(const QColor &over, const QColor &under, qreal share)
{
    const auto mix = [share](int a, int b) { return qRound(share * a + (1 - share) * b); };
    return QColor(mix(over.red(), under.red()), mix(over.green(), under.green()),
                  mix(over.blue(), under.blue()));
}

// The share of each colour of light that reaches the eye, by the standard of WCAG 2.1.
double luminance(const QColor &colour)
{
    const auto linear = [](double value) {
        return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) +
           0.0722 * linear(colour.blueF());
}

// `colour`, moved towards `target` until it can be told from `ground`.
QColor told(const QColor &colour, const QColor &target, const QColor &ground, double wanted)
{
    QColor moved = colour;
    for (qreal share = step; Palette::contrast(moved, ground) < wanted && share <= 1; share += step)
        moved = blended(target, colour, share);
    return moved;
}

QColor window(const QPalette &palette)
{
    return palette.color(QPalette::Active, QPalette::Window);
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
    const QColor text = label(palette);
    const QColor faint = told(blended(text, window(palette), 0.62), text, window(palette), textContrast);
    return told(faint, text, field(palette), textContrast);
}

QColor separator(const QPalette &palette)
{
    return blended(label(palette), window(palette), isDark(palette) ? 0.22 : 0.16);
}

QColor accent(const QPalette &palette)
{
    const QColor text = onAccent(palette);
    const QColor away = luminance(text) > 0.18 ? Qt::black : Qt::white;
    return told(palette.color(QPalette::Active, QPalette::Highlight), away, text, textContrast);
}

QColor onAccent(const QPalette &palette)
{
    return palette.color(QPalette::Active, QPalette::HighlightedText);
}

QColor secondaryOnAccent(const QPalette &palette)
{
    const QColor text = onAccent(palette), ground = accent(palette);
    return told(blended(text, ground, 0.82), text, ground, textContrast);
}

QColor field(const QPalette &palette)
{
    return blended(label(palette), window(palette), isDark(palette) ? 0.10 : 0.06);
}

QColor orange(const QPalette &palette)
{
    return told(QColor(245, 143, 10), label(palette), window(palette), symbolContrast);
}

bool isDark(const QPalette &palette)
{
    return window(palette).lightness() < 128;
}

double contrast(const QColor &one, const QColor &other)
{
    const double a = luminance(one), b = luminance(other);
    return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
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
