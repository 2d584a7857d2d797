#include "Platform/linux/tesseract/TextBlocks.h"

#include "Platform/linux/tesseract/BoxIndex.h"

#include <optional>
#include <utility>

namespace {

constexpr double maxGap = 1.5;       // of the taller line's height
constexpr double maxRatio = 1.9;     // between the heights
constexpr std::size_t maxLines = 60; // keeps one block's picture small
constexpr int maxBlockSide = 8000;   // pixels, of which the engine takes 32767 after enlarging

bool canFollow(const PixelBox &upper, const PixelBox &lower)
{
    const int tall = std::max(upper.height, lower.height);
    const int low = std::min(upper.height, lower.height);
    const int gap = lower.top - upper.bottom();
    return tall <= maxRatio * low && gap > -low / 2 && gap <= maxGap * tall && lower.top > upper.top &&
           lower.bottom() > upper.bottom() && upper.sharedColumns(lower) > 0;
}

using Neighbours = std::vector<std::optional<std::uint32_t>>;

// For each line the one that follows it best: the nearest, and of two beside each other the one that shares
// more columns. `isBelow` turns the question round.
Neighbours bestNeighbours(const std::vector<PixelBox> &boxes, bool isBelow)
{
    const BoxIndex index(boxes);
    Neighbours result(boxes.size());
    for (std::uint32_t i = 0; i < boxes.size(); ++i) {
        const PixelBox &box = boxes[i];
        const int reach = static_cast<int>((maxGap * maxRatio + 1) * box.height) + 1;
        const PixelBox zone{box.left, isBelow ? box.top : box.top - reach, box.width, box.height + reach};
        std::optional<std::uint32_t> &best = result[i];
        index.forEachTouching(zone, [&](std::uint32_t other) {
            const PixelBox &o = boxes[other];
            if (other == i || !(isBelow ? canFollow(box, o) : canFollow(o, box)))
                return;
            if (!best) {
                best = other;
                return;
            }
            const PixelBox &b = boxes[*best];
            const bool beside = 2 * b.sharedRows(o) > std::min(b.height, o.height);
            const bool nearer = isBelow ? o.top < b.top : o.bottom() > b.bottom();
            if (beside ? box.sharedColumns(o) > box.sharedColumns(b) : nearer)
                best = other;
        });
    }
    return result;
}

} // namespace

TextBlock blockOf(const BlobMap &map, std::vector<TextLine> lines)
{
    TextBlock block;
    block.lines = std::move(lines);
    std::vector<Blob> letters;
    for (const TextLine &line : block.lines) {
        for (const TextWord &word : line.words) {
            for (const std::uint32_t blob : word.blobs) {
                letters.push_back(map.blobs[blob]);
                block.box = block.blobs.empty() ? letters.back().box : block.box.united(letters.back().box);
                block.blobs.push_back(blob);
            }
        }
    }
    block.letterHeight = letterHeight(letters);
    return block;
}

std::vector<TextBlock> findBlocks(const BlobMap &map, const std::vector<TextLine> &lines)
{
    std::vector<PixelBox> boxes;
    boxes.reserve(lines.size());
    for (const TextLine &line : lines)
        boxes.push_back(line.box);
    const Neighbours below = bestNeighbours(boxes, true);
    const Neighbours above = bestNeighbours(boxes, false);
    const auto follower = [&](std::uint32_t line) -> std::optional<std::uint32_t> {
        return below[line] && above[*below[line]] == line ? below[line] : std::nullopt;
    };
    std::vector<TextBlock> blocks;
    for (std::uint32_t i = 0; i < lines.size(); ++i) {
        if (above[i] && below[*above[i]] == i)
            continue; // within a block that begins higher up
        std::vector<TextLine> column;
        for (std::optional<std::uint32_t> line = i; line; line = follower(*line)) {
            const bool isFull =
                !column.empty() &&
                (column.size() >= maxLines || boxes[*line].bottom() - column.front().box.top > maxBlockSide);
            if (isFull)
                blocks.push_back(blockOf(map, std::exchange(column, {})));
            column.push_back(lines[*line]);
        }
        blocks.push_back(blockOf(map, std::move(column)));
    }
    return blocks;
}
