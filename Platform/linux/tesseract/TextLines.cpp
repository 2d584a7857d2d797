#include "Platform/linux/tesseract/TextLines.h"

#include "Platform/linux/tesseract/BoxIndex.h"

#include <cmath>
#include <iterator>
#include <limits>
#include <numeric>

namespace {

constexpr int minLetterHeight = 4;
constexpr int maxLetterHeight = 300;
constexpr int maxLetterAspect = 30; // letters of one word that touch
constexpr double wordGap = 0.6;
constexpr double lineGap = 1.3;
constexpr double minSharedRows = 0.5; // of the lower of the two
constexpr double tallShare = 0.75;

// A letter, or some that touch: neither a dot or stroke nor a rule.
bool canBeLetter(const Blob &blob)
{
    const PixelBox &box = blob.box;
    return blob.isText && box.height >= minLetterHeight && box.height <= maxLetterHeight &&
           box.width <= maxLetterAspect * box.height && box.height <= maxLetterAspect * box.width;
}

// Whether all of a blob lies along the sides of its box, as a frame with round corners does.
bool isHollow(const BlobMap &map, std::uint32_t number)
{
    const PixelBox &box = map.blobs[number].box;
    const int band = std::max(3, 3 * std::min(box.width, box.height) / 20);
    for (int y = box.top + band; y < box.bottom() - band; ++y) {
        const auto row = map.labels.begin() + static_cast<std::ptrdiff_t>(y) * map.width;
        if (std::find(row + box.left + band, row + box.right() - band, number + 1) !=
            row + box.right() - band)
            return false;
    }
    return true;
}

// Frames and pictures: much larger than letters, with several letters inside, or hollow around anything.
std::vector<bool> findFrames(const BlobMap &map, int letterHeight)
{
    constexpr int minLettersInside = 4;
    const std::vector<Blob> &blobs = map.blobs;
    std::vector<bool> frames(blobs.size(), false);
    std::vector<PixelBox> boxes;
    boxes.reserve(blobs.size());
    for (const Blob &blob : blobs)
        boxes.push_back(blob.box);
    const BoxIndex index(boxes);
    for (std::uint32_t i = 0; i < blobs.size(); ++i) {
        const PixelBox &box = blobs[i].box;
        if (box.height < 2 * letterHeight || box.width < 2 * letterHeight)
            continue;
        int inside = 0;
        index.forEachTouching(box, [&](std::uint32_t other) {
            const PixelBox &o = boxes[other];
            if (other != i && o.height >= minLetterHeight && o.left > box.left && o.right() < box.right() &&
                o.top > box.top && o.bottom() < box.bottom())
                ++inside;
        });
        frames[i] = inside >= minLettersInside || (inside > 0 && isHollow(map, i));
    }
    return frames;
}

// Whether a rule down runs between two boxes, as it does between the cells of a table.
bool isRuleBetween(const GreyPicture &rules, const PixelBox &left, const PixelBox &right)
{
    if (rules.pixels.empty())
        return false;
    const int top = std::max(left.top, right.top);
    const int bottom = std::min(left.bottom(), right.bottom());
    for (int x = left.right(); x < right.left; ++x) {
        int y = top;
        while (y < bottom && rules.row(y)[static_cast<std::size_t>(x)] != 0)
            ++y;
        if (y == bottom && top < bottom)
            return true;
    }
    return false;
}

// Joins boxes that stand beside each other, with at most `gapLimit(a, b)` pixels and no rule between them.
template <typename Limit>
std::vector<std::vector<std::uint32_t>> joinNeighbours(const std::vector<PixelBox> &boxes,
                                                       const GreyPicture &rules, const Limit &gapLimit)
{
    const BoxIndex index(boxes);
    DisjointSets sets(boxes.size());
    for (std::uint32_t i = 0; i < boxes.size(); ++i) {
        const PixelBox &box = boxes[i];
        const int reach = static_cast<int>(lineGap * 2 * box.height) + minLetterHeight * 4;
        const PixelBox zone{box.left, box.top, box.width + reach, box.height};
        index.forEachTouching(zone, [&](std::uint32_t other) {
            const PixelBox &o = boxes[other];
            if (other == i || o.left < box.left ||
                box.sharedRows(o) < minSharedRows * std::min(box.height, o.height))
                return;
            if (o.left - box.right() <= gapLimit(box, o) && !isRuleBetween(rules, box, o))
                sets.join(i, other);
        });
    }
    std::vector<std::vector<std::uint32_t>> groups;
    std::vector<std::size_t> groupOf(boxes.size(), std::numeric_limits<std::size_t>::max());
    for (std::uint32_t i = 0; i < boxes.size(); ++i) {
        std::size_t &group = groupOf[sets.root(i)];
        if (group == std::numeric_limits<std::size_t>::max()) {
            group = groups.size();
            groups.emplace_back();
        }
        groups[group].push_back(i);
    }
    return groups;
}

// The height that a gap is measured by: the taller one's, unless it is out of all proportion.
int gapHeight(const PixelBox &a, const PixelBox &b)
{
    return std::min(std::max(a.height, b.height), 2 * std::min(a.height, b.height));
}

std::vector<TextWord> findWords(const BlobMap &map, const std::vector<std::uint32_t> &letters)
{
    std::vector<PixelBox> boxes;
    boxes.reserve(letters.size());
    for (const std::uint32_t letter : letters)
        boxes.push_back(map.blobs[letter].box);
    const auto groups = joinNeighbours(boxes, map.rules, [](const PixelBox &a, const PixelBox &b) {
        return std::max(1.0, wordGap * gapHeight(a, b));
    });
    std::vector<TextWord> words;
    for (const auto &group : groups) {
        TextWord word{boxes[group.front()], {}};
        for (const std::uint32_t member : group) {
            word.box = word.box.united(boxes[member]);
            word.blobs.push_back(letters[member]);
        }
        words.push_back(std::move(word));
    }
    return words;
}

// Words without tall letters would reach less far than their neighbours, so what is about as high as an x
// reaches as far as an X.
int reachingHeight(int height, int tallLetter)
{
    return 2 * height >= tallLetter ? std::max(height, tallLetter) : height;
}

// Joins the lines that stand near each other.
std::vector<TextLine> joinedLines(std::vector<TextLine> pieces, const GreyPicture &rules, int tallLetter)
{
    std::vector<PixelBox> boxes;
    boxes.reserve(pieces.size());
    for (const TextLine &piece : pieces)
        boxes.push_back(piece.box);
    const auto groups = joinNeighbours(boxes, rules, [tallLetter](const PixelBox &a, const PixelBox &b) {
        return lineGap * reachingHeight(gapHeight(a, b), tallLetter);
    });
    std::vector<TextLine> lines;
    for (const auto &group : groups) {
        TextLine line{boxes[group.front()], {}};
        for (const std::uint32_t member : group) {
            line.box = line.box.united(boxes[member]);
            std::move(pieces[member].words.begin(), pieces[member].words.end(),
                      std::back_inserter(line.words));
        }
        std::sort(line.words.begin(), line.words.end(),
                  [](const TextWord &a, const TextWord &b) { return a.box.left < b.box.left; });
        lines.push_back(std::move(line));
    }
    return lines;
}

// A piece that may belong to a line near it.
struct SmallPart {
    PixelBox box;
    std::vector<std::uint32_t> blobs;
    bool wasLine = false;
};

// Bars of one width above each other are the icon of a menu.
bool isBarOfMenu(const PixelBox &bar, const std::vector<PixelBox> &boxes, const BoxIndex &index)
{
    if (bar.width < 8 || bar.height > bar.width / 3)
        return false;
    int alike = 0;
    index.forEachTouching({bar.left, bar.top - bar.width, bar.width, 2 * bar.width}, [&](std::uint32_t i) {
        const PixelBox &other = boxes[i];
        if (std::abs(other.left - bar.left) <= 1 && std::abs(other.width - bar.width) <= 1 &&
            std::abs(other.height - bar.height) <= 1)
            ++alike;
    });
    return alike >= 3;
}

// Blobs in no line yet.
std::vector<SmallPart> freeParts(const BlobMap &map, const std::vector<TextLine> &lines)
{
    std::vector<bool> taken(map.blobs.size(), false);
    for (const TextLine &line : lines) {
        for (const TextWord &word : line.words) {
            for (const std::uint32_t blob : word.blobs)
                taken[blob] = true;
        }
    }
    std::vector<PixelBox> boxes;
    for (const Blob &blob : map.blobs)
        boxes.push_back(blob.box);
    const BoxIndex index(boxes);
    std::vector<SmallPart> parts;
    for (std::uint32_t i = 0; i < map.blobs.size(); ++i) {
        if (!taken[i] && map.blobs[i].isText && !isBarOfMenu(boxes[i], boxes, index))
            parts.push_back({boxes[i], {i}, false});
    }
    return parts;
}

// In large text commas and accents are as high as small letters and have become lines of their own.
void takeApartSmallLines(std::vector<TextLine> &lines, std::vector<SmallPart> &parts)
{
    std::vector<TextLine> kept;
    for (TextLine &line : lines) {
        if (line.words.size() == 1 && line.words.front().blobs.size() <= 2)
            parts.push_back({line.box, line.words.front().blobs, true});
        else
            kept.push_back(std::move(line));
    }
    lines = std::move(kept);
}

// How far a small part is from a line, infinite when too far to be its own. `reach` is how far the line
// reaches to its sides.
double distanceToLine(const PixelBox &part, const PixelBox &line, double reach)
{
    const double across = std::max({0, part.left - line.right(), line.left - part.right()});
    const double over = std::max(0, line.top - part.top);
    const double under = std::max(0, part.bottom() - line.bottom());
    const bool isSmall = 2 * part.height <= line.height + 4;
    if (!isSmall || across > reach || over > 0.7 * line.height || under > 0.5 * line.height)
        return std::numeric_limits<double>::infinity();
    return across + 2 * (over + under);
}

// Gives each part to the nearest line; the others are left.
void attachOnce(std::vector<SmallPart> &parts, std::vector<TextLine> &lines, int tallLetter)
{
    std::vector<PixelBox> zones;
    for (const TextLine &line : lines) {
        const int reach = static_cast<int>(lineGap * reachingHeight(line.box.height, tallLetter)) + 1;
        const PixelBox &box = line.box;
        zones.push_back({box.left - reach, box.top - box.height, box.width + 2 * reach, 3 * box.height});
    }
    const BoxIndex index(zones);
    std::vector<SmallPart> left;
    for (SmallPart &part : parts) {
        double nearest = std::numeric_limits<double>::infinity();
        std::size_t host = 0;
        index.forEachTouching(part.box, [&](std::uint32_t line) {
            const PixelBox &box = lines[line].box;
            const double distance =
                distanceToLine(part.box, box, lineGap * reachingHeight(box.height, tallLetter));
            if (distance < nearest) {
                nearest = distance;
                host = line;
            }
        });
        if (std::isinf(nearest)) {
            left.push_back(std::move(part));
            continue;
        }
        lines[host].words.push_back({part.box, part.blobs});
        // Accents and commas make it no higher for what comes after them.
        const PixelBox &box = lines[host].box;
        const PixelBox wider = box.united({part.box.left, box.top, part.box.width, box.height});
        lines[host].box = wider;
    }
    parts = std::move(left);
}

} // namespace

int letterHeight(const std::vector<Blob> &blobs, double share)
{
    std::vector<int> heights;
    for (const Blob &blob : blobs) {
        if (canBeLetter(blob) && blob.box.width <= 3 * blob.box.height)
            heights.push_back(blob.box.height);
    }
    if (heights.empty())
        return 0;
    const auto at =
        heights.begin() + static_cast<std::ptrdiff_t>(share * static_cast<double>(heights.size() - 1));
    std::nth_element(heights.begin(), at, heights.end());
    return *at;
}

std::vector<TextLine> findLines(const BlobMap &map)
{
    const std::vector<bool> frames = findFrames(map, letterHeight(map.blobs));
    std::vector<std::uint32_t> letters;
    for (std::uint32_t i = 0; i < map.blobs.size(); ++i) {
        if (canBeLetter(map.blobs[i]) && !frames[i])
            letters.push_back(i);
    }
    std::vector<TextLine> lines;
    for (TextWord &word : findWords(map, letters))
        lines.push_back({word.box, {std::move(word)}});
    return joinedLines(std::move(lines), map.rules, letterHeight(map.blobs, tallShare));
}

void attachSmallParts(const BlobMap &map, std::vector<TextLine> &lines)
{
    const int tallLetter = letterHeight(map.blobs, tallShare);
    std::vector<SmallPart> parts = freeParts(map, lines);
    takeApartSmallLines(lines, parts);
    attachOnce(parts, lines, tallLetter);
    // Short words are hosts too, but what is as small as a comma looks for a taller neighbour first.
    for (SmallPart &part : parts) {
        if (part.wasLine)
            lines.push_back({part.box, {{part.box, part.blobs}}});
    }
    std::erase_if(parts, [](const SmallPart &part) { return part.wasLine; });
    std::size_t before = 0;
    do {
        before = parts.size();
        attachOnce(parts, lines, tallLetter);
    } while (parts.size() < before);
    for (TextLine &line : lines) {
        for (const TextWord &word : line.words)
            line.box = line.box.united(word.box);
    }
    lines = joinedLines(std::move(lines), map.rules, tallLetter);
}
