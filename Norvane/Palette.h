#pragma once

#include <QColor>
#include <QFont>
#include <QPalette>

// Colours and measures of every window, taken from the desktop's palette and font. Main thread.
namespace Palette {

[[nodiscard]] QColor label(const QPalette &palette);
[[nodiscard]] QColor secondary(const QPalette &palette);
[[nodiscard]] QColor separator(const QPalette &palette);
[[nodiscard]] QColor accent(const QPalette &palette);
[[nodiscard]] QColor onAccent(const QPalette &palette);
[[nodiscard]] QColor field(const QPalette &palette); // ground of text fields and segmented controls
[[nodiscard]] QColor orange();

[[nodiscard]] bool isDark(const QPalette &palette);

} // namespace Palette

namespace Metrics {

// A length that is laid out for a 13-point font, for the desktop's font. In logical pixels.
[[nodiscard]] int scaled(qreal points);

// The desktop's font × points / 13.
[[nodiscard]] QFont font(qreal points);

} // namespace Metrics
