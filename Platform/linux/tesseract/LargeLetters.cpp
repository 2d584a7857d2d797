#include "Platform/linux/tesseract/LargeLetters.h"

#include "Platform/linux/tesseract/BoxIndex.h"

#include <cstdlib>

namespace {

constexpr int minHeight = 24;
constexpr int maxHeight = 320;
constexpr int maxEdges = 14; // pixels of soft edges, of the height: those of about seven strokes

// Neither a filled box nor wide, and nowhere as thick as a panel of that height.
bool hasLetterShape(const Region &region)
{
    const PixelBox &box = region.box;
    const double fill =
        static_cast<double>(region.area) / (static_cast<double>(box.width) * static_cast<double>(box.height));
    const bool isBar = 20 * box.width <= 9 * box.height;
    return canBeLargeLetter(box) && region.uneven <= maxEdges * box.height &&
           (isBar || (20 * region.square <= 9 * box.height && fill <= 0.78));
}

bool haveOneColour(std::uint32_t a, std::uint32_t b)
{
    constexpr int tolerance = 12;
    for (int shift = 0; shift <= 16; shift += 8) {
        if (std::abs(static_cast<int>((a >> shift) & 0xff) - static_cast<int>((b >> shift) & 0xff)) >
            tolerance)
            return false;
    }
    return true;
}

bool standInOneRow(const PixelBox &a, const PixelBox &b)
{
    const int low = std::min(a.height, b.height);
    const int tall = std::max(a.height, b.height);
    return 2 * a.sharedRows(b) >= low && tall <= 2 * low && -a.sharedColumns(b) <= tall &&
           4 * a.sharedColumns(b) <= std::min(a.width, b.width);
}

} // namespace

bool canBeLargeLetter(const PixelBox &box)
{
    return box.height >= minHeight && box.height <= maxHeight && 5 * box.width <= 8 * box.height;
}

void excludeLargeLetters(std::vector<Region> &regions)
{
    std::vector<std::size_t> candidates;
    std::vector<PixelBox> boxes;
    for (std::size_t i = 0; i < regions.size(); ++i) {
        if (regions[i].isSurface && hasLetterShape(regions[i])) {
            candidates.push_back(i);
            boxes.push_back(regions[i].box);
        }
    }
    const BoxIndex index(boxes);
    for (std::uint32_t i = 0; i < boxes.size(); ++i) {
        const PixelBox &box = boxes[i];
        const PixelBox zone{box.left - 2 * box.height, box.top, box.width + 4 * box.height, box.height};
        bool hasNeighbour = false;
        index.forEachTouching(zone, [&](std::uint32_t other) {
            hasNeighbour = hasNeighbour ||
                           (other != i && standInOneRow(box, boxes[other]) &&
                            haveOneColour(regions[candidates[i]].colour, regions[candidates[other]].colour));
        });
        if (hasNeighbour)
            regions[candidates[i]].isSurface = false;
    }
}
