#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

// The plain pictures that the stages of the reading work on: rows from top to bottom without gaps between
// them, so that a stage is a loop over bytes.

// A rectangle of pixels, origin top left. Empty where a side is 0.
struct PixelBox {
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;

    [[nodiscard]] int right() const { return left + width; } // first column beyond
    [[nodiscard]] int bottom() const { return top + height; }
    [[nodiscard]] bool operator==(const PixelBox &) const = default;

    [[nodiscard]] PixelBox united(const PixelBox &other) const
    {
        const int x = std::min(left, other.left);
        const int y = std::min(top, other.top);
        return {x, y, std::max(right(), other.right()) - x, std::max(bottom(), other.bottom()) - y};
    }

    // Grown by so many pixels to each side, kept inside a picture of that size.
    [[nodiscard]] PixelBox grown(int by, int pictureWidth, int pictureHeight) const
    {
        const int x = std::max(0, left - by);
        const int y = std::max(0, top - by);
        return {x, y, std::min(pictureWidth, right() + by) - x, std::min(pictureHeight, bottom() + by) - y};
    }

    // Rows that both have, negative when there is a gap between them.
    [[nodiscard]] int sharedRows(const PixelBox &other) const
    {
        return std::min(bottom(), other.bottom()) - std::max(top, other.top);
    }
    [[nodiscard]] int sharedColumns(const PixelBox &other) const
    {
        return std::min(right(), other.right()) - std::max(left, other.left);
    }
};

// 0xffRRGGBB, borrowed from whoever holds the picture.
struct ColorPicture {
    int width = 0;
    int height = 0;
    std::span<const std::uint32_t> pixels;

    [[nodiscard]] std::span<const std::uint32_t> row(int y) const
    {
        return pixels.subspan(static_cast<std::size_t>(y) * static_cast<std::size_t>(width),
                              static_cast<std::size_t>(width));
    }
};

// One value a pixel: brightness, or a mark (0 or 1).
struct GreyPicture {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> pixels;

    GreyPicture() = default;
    GreyPicture(int columns, int rows, std::uint8_t value)
        : width(columns), height(rows),
          pixels(static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows), value)
    {
    }
    [[nodiscard]] std::span<std::uint8_t> row(int y)
    {
        return std::span(pixels).subspan(static_cast<std::size_t>(y) * static_cast<std::size_t>(width),
                                         static_cast<std::size_t>(width));
    }
    [[nodiscard]] std::span<const std::uint8_t> row(int y) const
    {
        return std::span(pixels).subspan(static_cast<std::size_t>(y) * static_cast<std::size_t>(width),
                                         static_cast<std::size_t>(width));
    }
};

// Brightness below which a pixel of a normalised picture (SurfaceNormalizer.h) counts as ink.
inline constexpr std::uint8_t inkLimit = 240;

// Disjoint sets over 0 … n-1; the root of a set is its smallest member.
class DisjointSets {
public:
    explicit DisjointSets(std::size_t count = 0)
    {
        for (std::size_t i = 0; i < count; ++i)
            add();
    }
    std::uint32_t add()
    {
        parents.push_back(static_cast<std::uint32_t>(parents.size()));
        return parents.back();
    }
    [[nodiscard]] std::uint32_t root(std::uint32_t member)
    {
        while (parents[member] != member) {
            parents[member] = parents[parents[member]];
            member = parents[member];
        }
        return member;
    }
    void join(std::uint32_t first, std::uint32_t second)
    {
        const std::uint32_t a = root(first);
        const std::uint32_t b = root(second);
        parents[std::max(a, b)] = std::min(a, b);
    }
    [[nodiscard]] std::size_t size() const { return parents.size(); }

private:
    std::vector<std::uint32_t> parents;
};
