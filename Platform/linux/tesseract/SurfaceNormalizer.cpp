#include "Platform/linux/tesseract/SurfaceNormalizer.h"

#include <cmath>
#include <optional>

namespace {

// Black on white, the largest distance of two colours, becomes 0.
const float gain = 1 / std::sqrt(3.F);

constexpr std::uint32_t noColour = 0; // a surface's colour has its top byte set

struct Rgb {
    float red = 0;
    float green = 0;
    float blue = 0;
};

Rgb rgb(std::uint32_t colour)
{
    return {static_cast<float>((colour >> 16) & 0xff), static_cast<float>((colour >> 8) & 0xff),
            static_cast<float>(colour & 0xff)};
}

Rgb operator-(const Rgb &a, const Rgb &b)
{
    return {a.red - b.red, a.green - b.green, a.blue - b.blue};
}

float product(const Rgb &a, const Rgb &b)
{
    return a.red * b.red + a.green * b.green + a.blue * b.blue;
}

// Squared distance of a colour to the line between two others.
float squaredDistance(std::uint32_t colour, std::uint32_t from, std::uint32_t to)
{
    const Rgb offset = rgb(colour) - rgb(from);
    if (from == to)
        return product(offset, offset);
    const Rgb line = rgb(to) - rgb(from);
    const float share = std::clamp(product(offset, line) / product(line, line), 0.F, 1.F);
    const Rgb rest{offset.red - share * line.red, offset.green - share * line.green,
                   offset.blue - share * line.blue};
    return product(rest, rest);
}

std::optional<float> squaredDistanceBetween(std::uint32_t colour, std::uint32_t from, std::uint32_t to)
{
    if (from == noColour && to == noColour)
        return std::nullopt;
    return squaredDistance(colour, from == noColour ? to : from, to == noColour ? from : to);
}

// The next surface's colour at or below each pixel that is no surface itself.
std::vector<std::uint32_t> coloursBelow(const ColorPicture &picture, const Surfaces &surfaces)
{
    const auto width = static_cast<std::size_t>(picture.width);
    std::vector<std::uint32_t> below(picture.pixels.size(), noColour);
    std::vector<std::uint32_t> next(width, noColour);
    for (int y = picture.height - 1; y >= 0; --y) {
        const auto row = picture.row(y);
        const auto marks = surfaces.marks.row(y);
        const std::size_t start = static_cast<std::size_t>(y) * width;
        for (std::size_t x = 0; x < width; ++x) {
            if (marks[x] != 0)
                next[x] = row[x];
            else
                below[start + x] = next[x];
        }
    }
    return below;
}

} // namespace

GreyPicture normalizeSurfaces(const ColorPicture &picture, const Surfaces &surfaces)
{
    const auto width = static_cast<std::size_t>(picture.width);
    const std::vector<std::uint32_t> below = coloursBelow(picture, surfaces);
    std::vector<std::uint32_t> above(width, noColour);
    std::vector<std::uint32_t> toTheRight(width, noColour);
    GreyPicture result(picture.width, picture.height, 255);
    for (int y = 0; y < picture.height; ++y) {
        const auto row = picture.row(y);
        const auto marks = surfaces.marks.row(y);
        auto out = result.row(y);
        std::uint32_t nearest = noColour;
        for (std::size_t x = width; x-- > 0;)
            toTheRight[x] = nearest = marks[x] != 0 ? row[x] : nearest;
        nearest = noColour;
        for (std::size_t x = 0; x < width; ++x) {
            if (marks[x] != 0) {
                nearest = above[x] = row[x];
                continue;
            }
            const std::uint32_t under = below[static_cast<std::size_t>(y) * width + x];
            const auto across = squaredDistanceBetween(row[x], nearest, toTheRight[x]);
            const auto down = squaredDistanceBetween(row[x], above[x], under);
            const float squared =
                std::min(across.value_or(down.value_or(0)), down.value_or(across.value_or(0)));
            out[x] = static_cast<std::uint8_t>(255 - std::min(255.F, gain * std::sqrt(squared)));
        }
    }
    return result;
}
