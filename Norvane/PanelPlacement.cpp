#include "Norvane/PanelPlacement.h"

#include <algorithm>

namespace PanelPlacement {

namespace {

constexpr double anchorGap = 6;    // between the panel and the caret or pointer
constexpr double screenMargin = 8; // between the panel and the visible frame
constexpr double largestShare = 0.8;
constexpr double centreLift = 0.08;
constexpr double largestSide = 32767; // a window's on X11; settings may say anything

const Screen &screenAt(QPointF point, const std::vector<Screen> &screens, size_t mainScreen)
{
    const auto found = std::find_if(screens.begin(), screens.end(),
                                    [point](const Screen &screen) { return screen.frame.contains(point); });
    if (found != screens.end())
        return *found;
    return mainScreen < screens.size() ? screens[mainScreen] : screens.front();
}

} // namespace

bool Rect::contains(QPointF point) const
{
    return point.x() >= x && point.x() < maxX() && point.y() >= y && point.y() < maxY();
}

Rect flipped(const QRectF &rect, double primaryHeight)
{
    return {rect.x(), primaryHeight - rect.y() - rect.height(), rect.width(), rect.height()};
}

QRectF flipped(const Rect &rect, double primaryHeight)
{
    return {rect.x, primaryHeight - rect.y - rect.height, rect.width, rect.height};
}

QPointF flipped(QPointF point, double primaryHeight)
{
    return {point.x(), primaryHeight - point.y()};
}

QSizeF initialSize(double rememberedWidth, double rememberedHeight)
{
    const double width = rememberedWidth == 0 ? defaultSize.width() : rememberedWidth;
    const double height = rememberedHeight == 0 ? defaultSize.height() : rememberedHeight;
    return {std::clamp(width, minimumSize.width(), largestSide),
            std::clamp(height, minimumSize.height(), largestSide)};
}

Rect place(QSizeF size, PopupPosition position, const std::optional<Rect> &caret, QPointF pointer,
           const std::vector<Screen> &screens, size_t mainScreen)
{
    const bool atCaret = position == PopupPosition::caret && caret;
    const Rect anchor = atCaret ? *caret : Rect{pointer.x(), pointer.y(), 0, 0};
    const QPointF reference = atCaret ? QPointF(anchor.midX(), anchor.midY()) : pointer;
    const Rect visible = screenAt(reference, screens, mainScreen).visibleFrame;

    Rect panel;
    panel.width = std::min(largestShare * visible.width, size.width());
    panel.height = std::min(largestShare * visible.height, size.height());
    if (position == PopupPosition::center) {
        panel.x = visible.midX() - panel.width / 2;
        panel.y = visible.midY() - panel.height / 2 + centreLift * visible.height;
    } else {
        panel.x = anchor.x;
        panel.y = anchor.y - panel.height - anchorGap;
        if (panel.y < visible.y)
            panel.y = anchor.maxY() + anchorGap;
    }
    panel.y =
        std::min(visible.maxY() - panel.height - screenMargin, std::max(visible.y + screenMargin, panel.y));
    panel.x =
        std::min(visible.maxX() - panel.width - screenMargin, std::max(visible.x + screenMargin, panel.x));
    return panel;
}

} // namespace PanelPlacement
