#pragma once

#include "Norvane/app/Preferences.h"

#include <QPointF>
#include <QRectF>
#include <QSizeF>
#include <optional>
#include <vector>

// Where and how large the panel opens: arithmetic on rectangles, no screen needed.
//
// All of it counts from the bottom left corner of the primary screen, y up, as the rules are written;
// `flipped` is the one place that changes to and from Qt's coordinates.
namespace PanelPlacement {

inline constexpr QSizeF defaultSize{780, 470};
inline constexpr QSizeF minimumSize{460, 300};

// A rectangle whose origin is its bottom left corner.
struct Rect {
    double x = 0, y = 0, width = 0, height = 0;

    [[nodiscard]] double maxX() const { return x + width; }
    [[nodiscard]] double maxY() const { return y + height; }
    [[nodiscard]] double midX() const { return x + width / 2; }
    [[nodiscard]] double midY() const { return y + height / 2; }
    [[nodiscard]] bool contains(QPointF point) const;

    bool operator==(const Rect &) const = default;
};

struct Screen {
    Rect frame;
    Rect visibleFrame;
};

// Qt's rectangle (y down) in these coordinates, or back; `primaryHeight` is the height of the primary screen.
[[nodiscard]] Rect flipped(const QRectF &rect, double primaryHeight);
[[nodiscard]] QRectF flipped(const Rect &rect, double primaryHeight);
[[nodiscard]] QPointF flipped(QPointF point, double primaryHeight);

// The size of a new panel; a remembered width or height of 0 means none.
[[nodiscard]] QSizeF initialSize(double rememberedWidth, double rememberedHeight);

// The panel's frame. `screens` in the system's order, not empty; `caret` only counts for
// PopupPosition::caret.
[[nodiscard]] Rect place(QSizeF size, PopupPosition position, const std::optional<Rect> &caret,
                         QPointF pointer, const std::vector<Screen> &screens, size_t mainScreen = 0);

} // namespace PanelPlacement
