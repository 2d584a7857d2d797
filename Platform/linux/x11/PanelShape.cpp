#include "Platform/linux/x11/PanelShape.h"

#include <QGuiApplication>
#include <QWindow>
#include <cmath>
#include <vector>
#include <xcb/shape.h>

namespace {

constexpr double cornerRadius = 12; // points

// A rectangle with its corners cut along a circle, line by line: a region's own ellipse and the polygon of a
// curve leave flat corners.
QRegion roundedRegion(const QSize &size, int radius)
{
    QRegion region(0, radius, size.width(), size.height() - 2 * radius);
    for (int line = 0; line < radius; ++line) {
        const double height = radius - line - 0.5; // of the line's middle above the circle's
        const int inset = radius - qRound(std::sqrt(radius * radius - height * height));
        region += QRect(inset, line, size.width() - 2 * inset, 1);
        region += QRect(inset, size.height() - 1 - line, size.width() - 2 * inset, 1);
    }
    return region;
}

} // namespace

PanelShape::PanelShape()
{
    compositor.onChange = [this] { update(); };
}

void PanelShape::adopt(QWidget *widget)
{
    panel = widget;
    panel->setAttribute(Qt::WA_TranslucentBackground);
    shadow.adopt(panel, cornerRadius);
}

void PanelShape::update()
{
    if (!panel || panel->windowHandle() == nullptr)
        return;
    const bool canBeSmooth = compositor.isPresent() && panel->windowHandle()->format().hasAlpha();
    const double scale = panel->devicePixelRatioF();
    const QSize pixels = (QSizeF(panel->size()) * scale).toSize();
    if (shapedSize == pixels && smooth == canBeSmooth)
        return;
    const bool changed = smooth != canBeSmooth;
    smooth = canBeSmooth;
    shapedSize = pixels;
    // Not by QWidget::setMask, which cuts in whole points: steps of two pixels on a finer screen.
    const QRegion rounded = roundedRegion(pixels, qRound(cornerRadius * scale));
    setShape(XCB_SHAPE_SK_BOUNDING, smooth ? QRegion() : rounded);
    setShape(XCB_SHAPE_SK_INPUT, smooth ? rounded : QRegion());
    if (changed)
        panel->update();
    shadow.setUnderCompositor(smooth);
}

// On Qt's own connection, so that it comes in order with what Qt does to the window. Empty: the whole window.
void PanelShape::setShape(quint8 kind, const QRegion &region) const
{
    const auto *native = qApp->nativeInterface<QNativeInterface::QX11Application>();
    if (native == nullptr)
        return;
    xcb_connection_t *connection = native->connection();
    const auto window = static_cast<xcb_window_t>(panel->winId());
    if (region.isEmpty()) {
        xcb_shape_mask(connection, XCB_SHAPE_SO_SET, kind, window, 0, 0, XCB_PIXMAP_NONE);
        return;
    }
    std::vector<xcb_rectangle_t> rectangles;
    rectangles.reserve(static_cast<size_t>(region.rectCount()));
    for (const QRect &part : region)
        rectangles.push_back({static_cast<int16_t>(part.x()), static_cast<int16_t>(part.y()),
                              static_cast<uint16_t>(part.width()), static_cast<uint16_t>(part.height())});
    xcb_shape_rectangles(connection, XCB_SHAPE_SO_SET, kind, XCB_CLIP_ORDERING_UNSORTED, window, 0, 0,
                         static_cast<uint32_t>(rectangles.size()), rectangles.data());
}
