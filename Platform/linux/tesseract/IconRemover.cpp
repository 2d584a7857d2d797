#include "Platform/linux/tesseract/IconRemover.h"

namespace {

constexpr int minSide = 11;
constexpr int maxSide = 72;
constexpr double minRatio = 1.15; // of an icon's height to the text's
constexpr double minGap = 0.2;    // of the icon's smaller side
constexpr double minGapBetween = 0.5;

// Blobs of a line that share columns: a letter with its accent, an icon with its parts.
struct Piece {
    PixelBox box;
    std::vector<std::uint32_t> blobs;
};

std::vector<Piece> piecesOf(const BlobMap &map, const TextLine &line)
{
    std::vector<std::uint32_t> blobs;
    for (const TextWord &word : line.words)
        blobs.insert(blobs.end(), word.blobs.begin(), word.blobs.end());
    std::sort(blobs.begin(), blobs.end(), [&map](std::uint32_t a, std::uint32_t b) {
        return map.blobs[a].box.left < map.blobs[b].box.left;
    });
    std::vector<Piece> pieces;
    for (const std::uint32_t blob : blobs) {
        const PixelBox &box = map.blobs[blob].box;
        if (pieces.empty() || box.left > pieces.back().box.right()) {
            pieces.push_back({box, {blob}});
            continue;
        }
        pieces.back().box = pieces.back().box.united(box);
        pieces.back().blobs.push_back(blob);
    }
    return pieces;
}

bool hasIconShape(const PixelBox &box)
{
    return box.width >= minSide && box.height >= minSide && box.width <= maxSide && box.height <= maxSide &&
           4 * box.width >= 3 * box.height && 20 * box.width <= 27 * box.height;
}

// Height that text beside it has: of a capital, even where there are small letters only.
double heightOfText(const std::vector<Piece> &pieces, std::size_t except)
{
    std::vector<int> heights;
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        if (i != except && !hasIconShape(pieces[i].box))
            heights.push_back(pieces[i].box.height);
    }
    if (heights.empty())
        return 0;
    std::sort(heights.begin(), heights.end());
    return std::max<double>(heights[heights.size() * 9 / 10], 1.35 * heights[heights.size() / 4]);
}

bool standsOff(const std::vector<Piece> &pieces, std::size_t number, double space)
{
    const PixelBox &box = pieces[number].box;
    return (number == 0 || box.left - pieces[number - 1].box.right() >= space) &&
           (number + 1 == pieces.size() || pieces[number + 1].box.left - box.right() >= space);
}

// Farther from text than words are from each other: then text may be as low as the picture's capitals, even
// where touching letters make up pieces as high as a line.
bool standsFarOff(const std::vector<Piece> &pieces, std::size_t number, int tallLetter)
{
    constexpr double minSpace = 1.1; // typewriter fonts have up to 1
    constexpr double maxLine = 1.4;
    int highest = 0;
    for (std::size_t i = 0; i < pieces.size(); ++i)
        highest = i == number ? highest : std::max(highest, pieces[i].box.height);
    return highest <= maxLine * tallLetter && standsOff(pieces, number, minSpace * tallLetter);
}

// No letter is a filled square.
bool isSolid(const BlobMap &map, const Piece &piece)
{
    constexpr int minSolidSide = 11;
    const PixelBox &box = piece.box;
    int ink = 0;
    for (const std::uint32_t blob : piece.blobs)
        ink += map.blobs[blob].area;
    return box.width >= minSolidSide && box.height >= minSolidSide && 5 * box.width >= 3 * box.height &&
           3 * box.width <= 5 * box.height && 100 * ink >= 94 * box.width * box.height;
}

// Three bars above each other, the sign for a menu.
bool isMenu(const BlobMap &map, const Piece &piece)
{
    return piece.blobs.size() >= 3 &&
           std::all_of(piece.blobs.begin(), piece.blobs.end(), [&](std::uint32_t blob) {
               const PixelBox &box = map.blobs[blob].box;
               return box.width >= 3 * box.height && box.width + 2 >= piece.box.width;
           });
}

// Two letters that touch, as in "by", may be as high as a line, but no higher.
bool isWithinText(const std::vector<Piece> &pieces, std::size_t number)
{
    const PixelBox &box = pieces[number].box;
    int top = box.bottom();
    int bottom = box.top;
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        if (i == number || hasIconShape(pieces[i].box))
            continue;
        top = std::min(top, pieces[i].box.top);
        bottom = std::max(bottom, pieces[i].box.bottom());
    }
    return box.top >= top - 1 && box.bottom() <= bottom + 1;
}

bool isIcon(const std::vector<Piece> &pieces, std::size_t number, int tallLetter)
{
    const PixelBox &box = pieces[number].box;
    if (!hasIconShape(box))
        return false;
    const double text = standsFarOff(pieces, number, tallLetter) ? 0 : heightOfText(pieces, number);
    if (box.height < minRatio * (text > 0 ? text : tallLetter))
        return false;
    if (isWithinText(pieces, number))
        return false;
    // Between words an icon stands farther off than words do.
    const bool isBetween = number > 0 && number + 1 < pieces.size();
    const double space = (isBetween ? minGapBetween : minGap) * std::min(box.width, box.height);
    return standsOff(pieces, number, space);
}

// Words without the white of a word between them.
std::vector<Piece> clustersOf(const BlobMap &map, const TextLine &line)
{
    constexpr double maxGapWithin = 0.3; // of the height
    std::vector<Piece> clusters;
    for (const Piece &piece : piecesOf(map, line)) {
        const bool isNear =
            !clusters.empty() && piece.box.left - clusters.back().box.right() <=
                                     maxGapWithin * std::max(piece.box.height, clusters.back().box.height);
        if (!isNear) {
            clusters.push_back(piece);
            continue;
        }
        clusters.back().box = clusters.back().box.united(piece.box);
        clusters.back().blobs.insert(clusters.back().blobs.end(), piece.blobs.begin(), piece.blobs.end());
    }
    return clusters;
}

// Several pieces that together are larger than text and far from it.
bool isIconOfPieces(const std::vector<Piece> &clusters, std::size_t number, int tallLetter)
{
    const Piece &cluster = clusters[number];
    return clusters.size() > 1 && cluster.blobs.size() > 1 && hasIconShape(cluster.box) &&
           cluster.box.height >= minRatio * tallLetter && standsFarOff(clusters, number, tallLetter);
}

void takeOut(const std::vector<std::uint32_t> &blobs, BlobMap &map, TextLine &line)
{
    for (const std::uint32_t blob : blobs)
        map.blobs[blob].isText = false;
    for (TextWord &word : line.words) {
        std::erase_if(word.blobs, [&blobs](std::uint32_t blob) {
            return std::find(blobs.begin(), blobs.end(), blob) != blobs.end();
        });
        for (std::size_t i = 0; i < word.blobs.size(); ++i) {
            const PixelBox &box = map.blobs[word.blobs[i]].box;
            word.box = i == 0 ? box : word.box.united(box);
        }
    }
    std::erase_if(line.words, [](const TextWord &word) { return word.blobs.empty(); });
    for (std::size_t i = 0; i < line.words.size(); ++i)
        line.box = i == 0 ? line.words[i].box : line.box.united(line.words[i].box);
}

} // namespace

void removeIcons(BlobMap &map, std::vector<TextLine> &lines)
{
    const int tallLetter = letterHeight(map.blobs, 0.75);
    for (TextLine &line : lines) {
        const std::vector<Piece> pieces = piecesOf(map, line);
        for (std::size_t i = 0; i < pieces.size(); ++i) {
            if (isSolid(map, pieces[i]) || isMenu(map, pieces[i]) || isIcon(pieces, i, tallLetter))
                takeOut(pieces[i].blobs, map, line);
        }
    }
    std::erase_if(lines, [](const TextLine &line) { return line.words.empty(); });
}

void removeIconsOfPieces(BlobMap &map, std::vector<TextLine> &lines)
{
    const int tallLetter = letterHeight(map.blobs, 0.75);
    for (TextLine &line : lines) {
        const std::vector<Piece> clusters = clustersOf(map, line);
        for (std::size_t i = 0; i < clusters.size(); ++i) {
            if (isIconOfPieces(clusters, i, tallLetter))
                takeOut(clusters[i].blobs, map, line);
        }
    }
    std::erase_if(lines, [](const TextLine &line) { return line.words.empty(); });
}
