#include "Platform/linux/tesseract/IconRemover.h"

namespace {

constexpr int minSide = 11;
constexpr int maxSide = 72;

// Letters stand beside each other with paper between them, the parts of an icon do not.
bool isOnePiece(const BlobMap &map, const TextWord &word)
{
    std::vector<PixelBox> boxes;
    for (const std::uint32_t blob : word.blobs)
        boxes.push_back(map.blobs[blob].box);
    std::sort(boxes.begin(), boxes.end(),
              [](const PixelBox &a, const PixelBox &b) { return a.left < b.left; });
    int right = boxes.front().right();
    for (const PixelBox &box : boxes) {
        if (box.left > right)
            return false;
        right = std::max(right, box.right());
    }
    return true;
}

bool hasIconShape(const BlobMap &map, const TextWord &word)
{
    const PixelBox &box = word.box;
    return box.width >= minSide && box.height >= minSide && box.width <= maxSide && box.height <= maxSide &&
           4 * box.width >= 3 * box.height && 3 * box.width <= 5 * box.height && isOnePiece(map, word);
}

// The tallest other word of the line, 0 without one.
int heightOfOthers(const TextLine &line, std::size_t except)
{
    int height = 0;
    for (std::size_t i = 0; i < line.words.size(); ++i) {
        if (i != except)
            height = std::max(height, line.words[i].box.height);
    }
    return height;
}

bool isIcon(const BlobMap &map, const TextLine &line, std::size_t number, int letterHeight)
{
    const TextWord &word = line.words[number];
    if (!hasIconShape(map, word))
        return false;
    const int others = heightOfOthers(line, number);
    const int reference = others > 0 ? others : letterHeight * 3 / 2;
    if (20 * word.box.height < 23 * reference)
        return false;
    const double space = 0.5 * std::min(word.box.width, word.box.height);
    const bool apart = number == 0 || word.box.left - line.words[number - 1].box.right() >= space;
    const bool followed = number + 1 < line.words.size();
    return apart && (!followed || line.words[number + 1].box.left - word.box.right() >= space / 2);
}

} // namespace

void removeIcons(const BlobMap &map, std::vector<TextLine> &lines)
{
    const int letterHeight = medianLetterHeight(map.blobs);
    for (TextLine &line : lines) {
        std::vector<TextWord> kept;
        for (std::size_t i = 0; i < line.words.size(); ++i) {
            if (!isIcon(map, line, i, letterHeight))
                kept.push_back(line.words[i]);
        }
        if (kept.size() == line.words.size())
            continue;
        line.words = std::move(kept);
        for (std::size_t i = 0; i < line.words.size(); ++i)
            line.box = i == 0 ? line.words[i].box : line.box.united(line.words[i].box);
    }
    std::erase_if(lines, [](const TextLine &line) { return line.words.empty(); });
}
