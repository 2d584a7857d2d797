#pragma once

#include <QPointF>
#include <QRectF>
#include <vector>

// A screen in Qt's logical coordinates, y down. `visibleFrame` leaves out panels and docks.
struct ScreenArea {
    QRectF frame;
    QRectF visibleFrame;
};

// Screens and pointer. Main thread.
class Screens {
public:
    virtual ~Screens() = default;

    // In the system's order, the primary one first. Never empty on a running desktop.
    [[nodiscard]] virtual std::vector<ScreenArea> screens() const = 0;
    [[nodiscard]] virtual QPointF pointer() const = 0;
};
