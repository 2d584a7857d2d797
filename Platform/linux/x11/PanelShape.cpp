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
}

void PanelShape::update()
{
    if (!panel || panel->windowHandle() == nullptr)
        return;
    const bool canBeSmooth = compositor.isPresent() && panel->windowHandle()->format().hasAlpha();
    if (shapedSize == panel->size() && smooth == canBeSmooth)
        return;
    const bool changed = smooth != canBeSmooth;
    smooth = canBeSmooth;
    shapedSize = panel->size();
    if (smooth) {
        const double scale = panel->devicePixelRatioF();
        setInput(roundedRegion((QSizeF(shapedSize) * scale).toSize(), qRound(cornerRadius * scale)));
        if (changed)
            panel->clearMask();
    } else {
        if (changed)
            setInput({});
        panel->setMask(roundedRegion(shapedSize, qRound(cornerRadius)));
    }
    if (changed)
        panel->update();
}

// On Qt's own connection, so that it comes in order with what Qt does to the window. Empty: as the window is.
void PanelShape::setInput(const QRegion &region) const
{
    const auto *native = qApp->nativeInterface<QNativeInterface::QX11Application>();
    if (native == nullptr)
        return;
    xcb_connection_t *connection = native->connection();
    const auto window = static_cast<xcb_window_t>(panel->winId());
    if (region.isEmpty()) {
        xcb_shape_mask(connection, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_INPUT, window, 0, 0, XCB_PIXMAP_NONE);
        return;
    }
    std::vector<xcb_rectangle_t> rectangles;
    for (const QRect &part : region)
        rectangles.push_back({static_cast<int16_t>(part.x()), static_cast<int16_t>(part.y()),
                              static_cast<uint16_t>(part.width()), static_cast<uint16_t>(part.height())});
    xcb_shape_rectangles(connection, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_INPUT, XCB_CLIP_ORDERING_UNSORTED, window,
                         0, 0, static_cast<uint32_t>(rectangles.size()), rectangles.data());
}
