#pragma once

#include <QColor>
#include <QFont>
#include <QPalette>

// Colours and measures of every window, taken from the desktop's palette and font. Main thread.
namespace Palette {

// Text of every kind has a contrast of at least 4.5 to the grounds it stands on, symbols one of 3 (the
// thresholds of WCAG 2.1); a desktop's palette that has less is moved there.
[[nodiscard]] QColor label(const QPalette &palette);
[[nodiscard]] QColor secondary(const QPalette &palette); // on the window and in fields
[[nodiscard]] QColor separator(const QPalette &palette);
[[nodiscard]] QColor accent(const QPalette &palette);
[[nodiscard]] QColor onAccent(const QPalette &palette);
[[nodiscard]] QColor secondaryOnAccent(const QPalette &palette);
[[nodiscard]] QColor field(const QPalette &palette);  // ground of text fields and segmented controls
[[nodiscard]] QColor orange(const QPalette &palette); // symbols on the window

[[nodiscard]] bool isDark(const QPalette &palette);

// Of two opaque colours, from 1 (the same) to 21 (black and white).
[[nodiscard]] double contrast(const QColor &one, const QColor &other);

} // namespace Palette

namespace Metrics {

// A length that is laid out for a 13-point font, for the desktop's font. In logical pixels.
[[nodiscard]] int scaled(qreal points);

// The desktop's font × points / 13.
[[nodiscard]] QFont font(qreal points);

} // namespace Metrics
