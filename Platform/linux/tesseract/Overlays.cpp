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
            if (tiles.row(within.top + y)[static_cast<std::size_t>(within.left + x)] == 0)
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

double distance(std::uint32_t a, std::uint32_t b)
{
    double squares = 0;
    for (int shift = 0; shift <= 16; shift += 8) {
        const int difference = static_cast<int>((a >> shift) & 0xff) - static_cast<int>((b >> shift) & 0xff);
        squares += difference * difference;
    }
    return std::sqrt(squares);
}

struct Ink {
    std::uint32_t colour = 0;
    double reach = 0; // distance from which on a colour is none of its soft edges: half of that to what lies
                      // beside most strokes
};

// The colour of most strokes: short runs of one colour with others on both sides.
std::optional<Ink> findInk(const ColorPicture &picture, const PixelBox &box)
{
    constexpr std::size_t maxStroke = 24;
    constexpr std::size_t edge = 2; // pixels of soft edge
    constexpr double minContrast = 60;
    constexpr std::size_t minStrokes = 80;
    std::unordered_map<std::uint32_t, std::vector<float>> strokes;
    std::size_t total = 0;
    for (int y = box.top; y < box.bottom(); ++y) {
        const auto row =
            picture.row(y).subspan(static_cast<std::size_t>(box.left), static_cast<std::size_t>(box.width));
        for (std::size_t begin = edge, end = begin; begin + edge < row.size(); begin = end) {
            for (end = begin + 1; end < row.size() && row[end] == row[begin];)
                ++end;
            if (end - begin > maxStroke || end + edge > row.size())
                continue;
            const double contrast =
                std::min(distance(row[begin], row[begin - edge]), distance(row[begin], row[end + edge - 1]));
            if (contrast < minContrast)
                continue;
            ++total;
            strokes[row[begin]].push_back(static_cast<float>(contrast));
        }
    }
    const auto most = std::max_element(strokes.begin(), strokes.end(), [](const auto &a, const auto &b) {
        return std::pair(a.second.size(), a.first) < std::pair(b.second.size(), b.first);
    });
    if (most == strokes.end() || most->second.size() < minStrokes || 10 * most->second.size() < total)
        return std::nullopt;
    std::vector<float> &contrasts = most->second;
    const auto low = contrasts.begin() + static_cast<std::ptrdiff_t>(contrasts.size() / 4);
    std::nth_element(contrasts.begin(), low, contrasts.end());
    return Ink{most->first, *low / 2};
}

} // namespace

std::vector<Overlay> findOverlays(const ColorPicture &picture)
{
    std::vector<Overlay> overlays;
    const GreyPicture tiles = photoTiles(picture);
    for (const PixelBox &box : photoBoxes(tiles)) {
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
                        std::min(255.0, 255 * distance(from[x], ink->colour) / ink->reach));
            }
        }
        overlays.push_back({box, std::move(grey)});
    }
    return overlays;
}
