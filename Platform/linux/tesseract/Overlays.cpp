#include "Platform/linux/tesseract/Overlays.h"

#include <cmath>
#include <optional>
#include <unordered_map>

namespace {

constexpr int tileSide = 16;
constexpr double maxEqualInTile = 0.5;
constexpr int minTilesAcross = 6;
constexpr int minTilesDown = 3;

// Tiles whose pixels hardly ever equal their neighbours.
GreyPicture photoTiles(const ColorPicture &picture)
{
    GreyPicture tiles(picture.width / tileSide, picture.height / tileSide, 0);
    for (int row = 0; row < tiles.height; ++row) {
        for (int column = 0; column < tiles.width; ++column) {
            int equal = 0;
            for (int y = row * tileSide; y < (row + 1) * tileSide; ++y) {
                const auto pixels =
                    picture.row(y).subspan(static_cast<std::size_t>(column) * tileSide, tileSide);
                for (std::size_t x = 1; x < tileSide; ++x)
                    equal += pixels[x] == pixels[x - 1] ? 1 : 0;
            }
            if (equal < maxEqualInTile * tileSide * (tileSide - 1))
                tiles.row(row)[static_cast<std::size_t>(column)] = 1;
        }
    }
    return tiles;
}

// Boxes around connected tiles, in pixels.
std::vector<PixelBox> photoBoxes(const GreyPicture &tiles)
{
    DisjointSets sets(tiles.pixels.size());
    const auto index = [&tiles](int column, int row) {
        return static_cast<std::uint32_t>(row * tiles.width + column);
    };
    const auto isPhoto = [&](int column, int row) { return tiles.pixels[index(column, row)] != 0; };
    for (int row = 0; row < tiles.height; ++row) {
        for (int column = 0; column < tiles.width; ++column) {
            if (!isPhoto(column, row))
                continue;
            if (column > 0 && isPhoto(column - 1, row))
                sets.join(index(column, row), index(column - 1, row));
            if (row > 0 && isPhoto(column, row - 1))
                sets.join(index(column, row), index(column, row - 1));
        }
    }
    std::unordered_map<std::uint32_t, PixelBox> boxes;
    for (int row = 0; row < tiles.height; ++row) {
        for (int column = 0; column < tiles.width; ++column) {
            if (!isPhoto(column, row))
                continue;
            const PixelBox tile{column * tileSide, row * tileSide, tileSide, tileSide};
            PixelBox &box = boxes.try_emplace(sets.root(index(column, row)), tile).first->second;
            box = box.united(tile);
        }
    }
    std::vector<PixelBox> large;
    for (const auto &[root, box] : boxes) {
        if (box.width >= minTilesAcross * tileSide && box.height >= minTilesDown * tileSide)
            large.push_back(box);
    }
    std::sort(large.begin(), large.end(), [](const PixelBox &a, const PixelBox &b) {
        return std::pair(a.top, a.left) < std::pair(b.top, b.left);
    });
    return large;
}

// Tiles between others to all sides belong to the photograph too: it is smooth there, or a letter fills them.
GreyPicture filled(const GreyPicture &tiles, const PixelBox &box)
{
    const PixelBox within{box.left / tileSide, box.top / tileSide, box.width / tileSide,
                          box.height / tileSide};
    std::vector<std::pair<int, int>> rows(static_cast<std::size_t>(within.height), {within.width, -1});
    std::vector<std::pair<int, int>> columns(static_cast<std::size_t>(within.width), {within.height, -1});
    const auto widen = [](std::pair<int, int> &span, int at) {
        span = {std::min(span.first, at), std::max(span.second, at)};
    };
    for (int y = 0; y < within.height; ++y) {
        for (int x = 0; x < within.width; ++x) {
            const int column = within.left + x;
            if (tiles.row(within.top + y)[static_cast<std::size_t>(column)] == 0)
                continue;
            widen(rows[static_cast<std::size_t>(y)], x);
            widen(columns[static_cast<std::size_t>(x)], y);
        }
    }
    GreyPicture result(within.width, within.height, 0);
    const auto lies = [](int at, const std::pair<int, int> &span) {
        return at >= span.first && at <= span.second;
    };
    for (int y = 0; y < within.height; ++y) {
        for (int x = 0; x < within.width; ++x)
            result.row(y)[static_cast<std::size_t>(x)] =
                lies(x, rows[static_cast<std::size_t>(y)]) && lies(y, columns[static_cast<std::size_t>(x)]);
    }
    return result;
}

int squaredDistance(std::uint32_t a, std::uint32_t b)
{
    int squares = 0;
    for (int shift = 0; shift <= 16; shift += 8) {
        const int difference = static_cast<int>((a >> shift) & 0xff) - static_cast<int>((b >> shift) & 0xff);
        squares += difference * difference;
    }
    return squares;
}

// Calls `found(colour, contrast)` for short runs of one colour with others on both sides; the contrast is the
// lesser squared distance to those.
template <typename Found>
void forEachStroke(const ColorPicture &picture, const PixelBox &box, const Found &found)
{
    constexpr std::size_t maxStroke = 24;
    constexpr std::size_t edge = 2; // pixels of soft edge
    constexpr int minContrast = 60 * 60;
    for (int y = box.top; y < box.bottom(); ++y) {
        const auto row =
            picture.row(y).subspan(static_cast<std::size_t>(box.left), static_cast<std::size_t>(box.width));
        std::size_t end = edge;
        for (std::size_t begin = edge; begin + edge < row.size(); begin = end) {
            do
                ++end;
            while (end < row.size() && row[end] == row[begin]);
            if (end - begin > maxStroke || end + edge > row.size())
                continue;
            const int contrast = std::min(squaredDistance(row[begin], row[begin - edge]),
                                          squaredDistance(row[begin], row[end + edge - 1]));
            if (contrast >= minContrast)
                found(row[begin], contrast);
        }
    }
}

// The upper five bits of each channel, and the other three.
std::size_t coarse(std::uint32_t colour)
{
    return ((colour >> 9) & 0x7c00) | ((colour >> 6) & 0x3e0) | ((colour >> 3) & 0x1f);
}
std::size_t fine(std::uint32_t colour)
{
    return ((colour >> 10) & 0x1c0) | ((colour >> 5) & 0x38) | (colour & 0x7);
}

struct Ink {
    std::uint32_t colour = 0;
    // From this distance on a colour is none of its soft edges: half of that to what lies beside most
    // strokes.
    double reach = 0;
};

// The colour of a large share of all strokes. Counted in two steps, since noise has as many colours as
// pixels.
std::optional<Ink> findInk(const ColorPicture &picture, const PixelBox &box)
{
    constexpr std::size_t minStrokes = 80;
    constexpr std::size_t minShare = 10; // one in so many
    std::vector<std::size_t> counts(1U << 15U, 0);
    std::size_t total = 0;
    forEachStroke(picture, box, [&](std::uint32_t colour, int) {
        ++counts[coarse(colour)];
        ++total;
    });
    const auto isEnough = [&total](std::size_t count) {
        return count >= minStrokes && minShare * count >= total;
    };
    const auto bin = std::max_element(counts.begin(), counts.end());
    if (!isEnough(*bin))
        return std::nullopt;
    std::vector<std::vector<int>> contrasts(1U << 9U);
    std::vector<std::uint32_t> colours(contrasts.size(), 0);
    forEachStroke(picture, box, [&](std::uint32_t colour, int contrast) {
        if (coarse(colour) != static_cast<std::size_t>(bin - counts.begin()))
            return;
        contrasts[fine(colour)].push_back(contrast);
        colours[fine(colour)] = colour;
    });
    const auto most = std::max_element(contrasts.begin(), contrasts.end(),
                                       [](const auto &a, const auto &b) { return a.size() < b.size(); });
    if (!isEnough(most->size()))
        return std::nullopt;
    const auto low = most->begin() + static_cast<std::ptrdiff_t>(most->size() / 4);
    std::nth_element(most->begin(), low, most->end());
    return Ink{colours[static_cast<std::size_t>(most - contrasts.begin())], std::sqrt(*low) / 2};
}

} // namespace

std::vector<Overlay> findOverlays(const ColorPicture &picture)
{
    std::vector<Overlay> overlays;
    const GreyPicture tiles = photoTiles(picture);
    std::size_t budget = 4 * picture.pixels.size(); // boxes may lie within each other
    for (const PixelBox &box : photoBoxes(tiles)) {
        const std::size_t area = static_cast<std::size_t>(box.width) * static_cast<std::size_t>(box.height);
        if (area > budget)
            break;
        budget -= area;
        const auto ink = findInk(picture, box);
        if (!ink)
            continue;
        const GreyPicture photo = filled(tiles, box);
        GreyPicture grey(box.width, box.height, 255);
        for (int y = 0; y < box.height; ++y) {
            const auto from = picture.row(box.top + y).subspan(static_cast<std::size_t>(box.left));
            auto to = grey.row(y);
            const auto inPhoto = photo.row(y / tileSide);
            for (std::size_t x = 0; x < to.size(); ++x) {
                if (inPhoto[x / tileSide] != 0)
                    to[x] = static_cast<std::uint8_t>(
                        std::min(255.0, 255 * std::sqrt(squaredDistance(from[x], ink->colour)) / ink->reach));
            }
        }
        overlays.push_back({box, std::move(grey)});
    }
    return overlays;
}
