#include "Platform/linux/tesseract/Surfaces.h"

#include "Platform/linux/tesseract/LargeLetters.h"

#include <cstdlib>

namespace {

constexpr int colourTolerance = 3;
constexpr int minSquare = 8;
constexpr std::size_t minArea = 300;

bool alike(std::uint32_t a, std::uint32_t b)
{
    if (a == b)
        return true;
    for (int shift = 0; shift <= 16; shift += 8) {
        const int difference = static_cast<int>((a >> shift) & 0xff) - static_cast<int>((b >> shift) & 0xff);
        if (std::abs(difference) > colourTolerance)
            return false;
    }
    return true;
}

// A label that is hardly higher than its text: wider and fuller than letters are.
bool isLowLabel(const Region &region)
{
    constexpr int minHeight = 10;
    constexpr int minCorner = 3;
    const PixelBox &box = region.box;
    const double boxArea = static_cast<double>(box.width) * static_cast<double>(box.height);
    return box.height >= minHeight && 5 * box.width >= 9 * box.height && region.square >= minCorner &&
           static_cast<double>(region.area) >= 0.5 * boxArea;
}

// Neighbours of one row that are alike.
struct Run {
    int begin = 0;
    int end = 0;
    int square = 0; // side of the largest square of alike pixels that ends in it
};

class SurfaceFinder {
public:
    explicit SurfaceFinder(const ColorPicture &subject)
        : picture(subject), squares(static_cast<std::size_t>(subject.width) + 1, 0)
    {
    }

    Surfaces find()
    {
        std::vector<std::uint32_t> rowStarts;
        rowStarts.reserve(static_cast<std::size_t>(picture.height) + 1);
        for (int y = 0; y < picture.height; ++y) {
            rowStarts.push_back(static_cast<std::uint32_t>(runs.size()));
            splitRow(y);
            measureSquares(y, rowStarts.back());
            if (y > 0)
                joinRows(y, rowStarts[static_cast<std::size_t>(y) - 1], rowStarts.back());
        }
        rowStarts.push_back(static_cast<std::uint32_t>(runs.size()));
        return mark(rowStarts);
    }

private:
    void splitRow(int y)
    {
        const auto row = picture.row(y);
        int begin = 0;
        for (int x = 1; x <= picture.width; ++x) {
            const auto at = static_cast<std::size_t>(x);
            if (x < picture.width && alike(row[at - 1], row[at]))
                continue;
            runs.push_back({begin, x, 0});
            sets.add();
            begin = x;
        }
    }

    // squares[x + 1] is the side of the largest square of alike pixels whose lower right corner is (x, y).
    void measureSquares(int y, std::uint32_t firstRun)
    {
        const auto row = picture.row(y);
        const auto above = picture.row(std::max(0, y - 1));
        for (std::size_t index = firstRun; index < runs.size(); ++index) {
            Run &run = runs[index];
            int diagonal = squares[static_cast<std::size_t>(run.begin) + 1];
            squares[static_cast<std::size_t>(run.begin) + 1] = 1;
            for (int x = run.begin + 1; x < run.end; ++x) {
                const auto at = static_cast<std::size_t>(x);
                const int up = squares[at + 1];
                int side = 1;
                if (y > 0 && alike(row[at], above[at]) && alike(row[at], above[at - 1]))
                    side += std::min({up, diagonal, squares[at]});
                diagonal = up;
                squares[at + 1] = side;
                run.square = std::max(run.square, side);
            }
        }
    }

    void joinRows(int y, std::uint32_t previous, std::uint32_t current)
    {
        const auto row = picture.row(y);
        const auto above = picture.row(y - 1);
        const std::uint32_t previousEnd = current;
        const auto currentEnd = static_cast<std::uint32_t>(runs.size());
        while (previous < previousEnd && current < currentEnd) {
            const int begin = std::max(runs[previous].begin, runs[current].begin);
            const int end = std::min(runs[previous].end, runs[current].end);
            for (int x = begin; x < end; ++x) {
                const auto at = static_cast<std::size_t>(x);
                if (alike(row[at], above[at])) {
                    sets.join(previous, current);
                    break;
                }
            }
            if (runs[previous].end < runs[current].end)
                ++previous;
            else
                ++current;
        }
    }

    // What is known of each region, at the index of its root.
    std::vector<Region> regions(const std::vector<std::uint32_t> &rowStarts)
    {
        std::vector<Region> found(runs.size());
        for (int y = 0; y < picture.height; ++y) {
            for (std::uint32_t i = rowStarts[static_cast<std::size_t>(y)];
                 i < rowStarts[static_cast<std::size_t>(y) + 1]; ++i) {
                const Run &run = runs[i];
                Region &region = found[sets.root(i)];
                const PixelBox box{run.begin, y, run.end - run.begin, 1};
                if (region.area == 0) {
                    region.box = box;
                    region.colour = picture.row(y)[static_cast<std::size_t>(run.begin)];
                }
                region.box = region.box.united(box);
                region.area += static_cast<std::size_t>(box.width);
                region.square = std::max(region.square, run.square);
            }
        }
        for (Region &region : found)
            region.isSurface = (region.square >= minSquare && region.area >= minArea) || isLowLabel(region);
        return found;
    }

    // Pixels in a box that are on no surface.
    int unevenPixels(const PixelBox &box, const std::vector<std::uint32_t> &rowStarts,
                     const std::vector<Region> &found)
    {
        int uneven = 0;
        for (int y = box.top; y < box.bottom(); ++y) {
            const auto begin = runs.begin() + rowStarts[static_cast<std::size_t>(y)];
            const auto end = runs.begin() + rowStarts[static_cast<std::size_t>(y) + 1];
            for (auto run =
                     std::partition_point(begin, end, [&box](const Run &r) { return r.end <= box.left; });
                 run != end && run->begin < box.right(); ++run) {
                if (!found[sets.root(static_cast<std::uint32_t>(run - runs.begin()))].isSurface)
                    uneven += std::min(run->end, box.right()) - std::max(run->begin, box.left);
            }
        }
        return uneven;
    }

    // A panel around a picture can have the shape of a letter, but the paper in and around a letter is even.
    void measurePaper(const std::vector<std::uint32_t> &rowStarts, std::vector<Region> &found)
    {
        std::size_t budget = 4 * picture.pixels.size();
        for (Region &region : found) {
            const PixelBox &box = region.box;
            const std::size_t cost =
                static_cast<std::size_t>(box.width) * static_cast<std::size_t>(box.height);
            if (!region.isSurface || !canBeLargeLetter(box) || cost > budget)
                continue;
            budget -= cost;
            region.uneven = unevenPixels(box, rowStarts, found);
        }
    }

    Surfaces mark(const std::vector<std::uint32_t> &rowStarts)
    {
        std::vector<Region> found = regions(rowStarts);
        measurePaper(rowStarts, found);
        excludeLargeLetters(found);
        Surfaces result{GreyPicture(picture.width, picture.height, 0), 0};
        std::size_t total = 0;
        for (int y = 0; y < picture.height; ++y) {
            auto row = result.marks.row(y);
            for (std::uint32_t i = rowStarts[static_cast<std::size_t>(y)];
                 i < rowStarts[static_cast<std::size_t>(y) + 1]; ++i) {
                if (!found[sets.root(i)].isSurface)
                    continue;
                std::fill(row.begin() + runs[i].begin, row.begin() + runs[i].end, std::uint8_t{1});
                total += static_cast<std::size_t>(runs[i].end - runs[i].begin);
            }
        }
        if (!picture.pixels.empty())
            result.share = static_cast<double>(total) / static_cast<double>(picture.pixels.size());
        return result;
    }

    const ColorPicture &picture;
    std::vector<Run> runs;
    DisjointSets sets;
    std::vector<int> squares;
};

} // namespace

Surfaces findSurfaces(const ColorPicture &picture)
{
    return SurfaceFinder(picture).find();
}
