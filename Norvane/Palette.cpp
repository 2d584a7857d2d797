#include "Norvane/Palette.h"

#include <QFontInfo>
#include <QGuiApplication>
#include <QHash>
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

struct Colours {
    QColor label;
    QColor secondary;
    QColor separator;
    QColor accent;
    QColor onAccent;
    QColor secondaryOnAccent;
    QColor field;
    QColor orange;
};

Colours coloursOf(const QPalette &palette)
{
    const QColor ground = palette.color(QPalette::Active, QPalette::Window);
    const bool dark = Palette::isDark(palette);
    Colours made;
    made.label = palette.color(QPalette::Active, QPalette::WindowText);
    made.field = blended(made.label, ground, dark ? 0.10 : 0.06);
    const QColor faint = told(blended(made.label, ground, 0.62), made.label, ground, textContrast);
    made.secondary = told(faint, made.label, made.field, textContrast);
    made.separator = blended(made.label, ground, dark ? 0.22 : 0.16);
    made.onAccent = palette.color(QPalette::Active, QPalette::HighlightedText);
    const QColor away = luminance(made.onAccent) > 0.18 ? Qt::black : Qt::white;
    made.accent =
        told(palette.color(QPalette::Active, QPalette::Highlight), away, made.onAccent, textContrast);
    made.secondaryOnAccent =
        told(blended(made.onAccent, made.accent, 0.82), made.onAccent, made.accent, textContrast);
    made.orange = told(QColor(245, 143, 10), made.label, ground, symbolContrast);
    return made;
}

// Kept, as a row asks for several and the contrasts take some computing. Widgets share few palettes.
const Colours &colours(const QPalette &palette)
{
    constexpr qsizetype palettesKept = 32;
    static QHash<qint64, Colours> known;
    const auto found = known.constFind(palette.cacheKey());
    if (found != known.constEnd())
        return *found;
    if (known.size() >= palettesKept)
        known.clear();
    return *known.insert(palette.cacheKey(), coloursOf(palette));
}

// What is made of the desktop's font, kept while that stays: asking it costs more than painting a row.
struct DesktopFont {
    QFont font;
    qreal ratio = 1; // of its size to the reference
    QHash<qreal, QFont> sizes;
};

DesktopFont &desktopFont()
{
    static DesktopFont known;
    static bool isKnown = false;
    const QFont now = QGuiApplication::font();
    if (!isKnown || now != known.font) {
        known = {now, QFontInfo(now).pixelSize() / referenceFontSize, {}};
        isKnown = true;
    }
    return known;
}

} // namespace

namespace Palette {

QColor label(const QPalette &palette)
{
    return colours(palette).label;
}

QColor secondary(const QPalette &palette)
{
    return colours(palette).secondary;
}

QColor separator(const QPalette &palette)
{
    return colours(palette).separator;
}

QColor accent(const QPalette &palette)
{
    return colours(palette).accent;
}

QColor onAccent(const QPalette &palette)
{
    return colours(palette).onAccent;
}

QColor secondaryOnAccent(const QPalette &palette)
{
    return colours(palette).secondaryOnAccent;
}

QColor field(const QPalette &palette)
{
    return colours(palette).field;
}

QColor orange(const QPalette &palette)
{
    return colours(palette).orange;
}

bool isDark(const QPalette &palette)
{
    return palette.color(QPalette::Active, QPalette::Window).lightness() < 128;
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
    return qRound(points * desktopFont().ratio);
}

QFont font(qreal points)
{
    DesktopFont &desktop = desktopFont();
    const auto known = desktop.sizes.constFind(points);
    if (known != desktop.sizes.constEnd())
        return *known;
    QFont font = desktop.font;
    if (font.pointSizeF() > 0)
        font.setPointSizeF(font.pointSizeF() * points / referenceFontSize);
    else
        font.setPixelSize(qMax(1, qRound(font.pixelSize() * points / referenceFontSize)));
    return *desktop.sizes.insert(points, font);
}

} // namespace Metrics
