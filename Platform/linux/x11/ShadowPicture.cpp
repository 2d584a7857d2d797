#include "Platform/linux/x11/ShadowPicture.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace {

constexpr double reach = 40; // points: three deviations of the widest layer and its drop

// One light's shadow. Lengths in points.
struct Layer {
    double drop;      // how far below the panel
    double deviation; // of the blur
    double light, dark;
};

// A wide one for the height, a narrow one that sets the edge off.
constexpr std::array<Layer, 2> layers{{{7, 11, 0.30, 0.55}, {1, 1.6, 0.14, 0.35}}};

// The panel's outline in pixels, from its top left corner.
struct Outline {
    double width, height, radius;

    // Distance from the outline, negative inside.
    [[nodiscard]] double distance(double x, double y) const
    {
        const double beyondX = std::abs(x - width / 2) - width / 2 + radius;
        const double beyondY = std::abs(y - height / 2) - height / 2 + radius;
        return std::hypot(std::max(beyondX, 0.0), std::max(beyondY, 0.0)) +
               std::min(std::max(beyondX, beyondY), 0.0) - radius;
    }
};

class Painter {
public:
    Painter(const QSize &panel, double radius, double givenScale, bool isDark)
        : outline{double(panel.width()), double(panel.height()), radius * givenScale}, scale(givenScale),
          dark(isDark), margin(static_cast<int>(std::ceil(reach * givenScale)))
    {
    }

    // Lines of the picture, from the panel's line `first` on; lines above the panel are negative.
    [[nodiscard]] QImage lines(int first, int count) const
    {
        const int width = static_cast<int>(outline.width) + 2 * margin;
        QImage image(width, count, QImage::Format_ARGB32_Premultiplied);
        const int corner = margin + static_cast<int>(std::ceil(outline.radius)) + 1;
        for (int row = 0; row < count; ++row) {
            auto *pixels = reinterpret_cast<QRgb *>(image.scanLine(row));
            const double y = first + row + 0.5;
            for (int x = 0; x <= corner; ++x)
                pixels[x] = pixels[width - 1 - x] = qRgba(0, 0, 0, opacity(x - margin + 0.5, y));
            std::fill(pixels + corner + 1, pixels + width - 1 - corner, pixels[corner]);
        }
        return image;
    }

    const Outline outline;
    const double scale;
    const bool dark;
    const int margin;

private:
    [[nodiscard]] int opacity(double x, double y) const
    {
        // The panel's own edge is smooth, and shows some of what lies beneath it.
        const double free = std::clamp(outline.distance(x, y) + 1.5, 0.0, 1.0);
        if (free == 0)
            return 0;
        double through = 1;
        for (const Layer &layer : layers) {
            const double distance = outline.distance(x, y - layer.drop * scale);
            const double share = 0.5 * std::erfc(distance / (layer.deviation * scale * std::sqrt(2.0)));
            through *= 1 - (dark ? layer.dark : layer.light) * share;
        }
        return static_cast<int>(std::lround(255 * free * (1 - through)));
    }
};

} // namespace

ShadowPicture ShadowPicture::make(const QSize &panel, double radius, double scale, bool dark)
{
    const Painter painter(panel, radius, scale, dark);
    // Of the panel's height, what the corners of the panel and of the lowest layer take.
    const int corners = static_cast<int>(std::ceil((radius + layers.front().drop) * scale)) + 1;
    if (panel.width() <= 2 * corners || panel.height() <= 2 * corners)
        return {};
    return {painter.lines(-painter.margin, painter.margin + corners), painter.lines(panel.height() / 2, 1),
            painter.lines(panel.height() - corners, corners + painter.margin), painter.margin};
}
