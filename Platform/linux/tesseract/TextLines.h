#pragma once

#include "Platform/linux/tesseract/Blobs.h"

// Letters that stand close to each other.
struct TextWord {
    PixelBox box;
    std::vector<std::uint32_t> blobs; // indices into BlobMap::blobs
};

// Words beside each other that are near enough to belong together: at most 1.3 letter heights apart.
struct TextLine {
    PixelBox box;
    std::vector<TextWord> words; // from left to right

    [[nodiscard]] int height() const { return box.height; }
};

// Height of a usual letter: that which the given share of what can be letters keeps below; 0 without any. A
// half gives about the height of an x, three quarters that of an X.
[[nodiscard]] int letterHeight(const std::vector<Blob> &blobs, double share = 0.5);

// Puts letters together to words and words to lines. Frames, pictures and what is left of rules are in none
// of them, nor are dots and strokes too small to be letters (attachSmallParts).
[[nodiscard]] std::vector<TextLine> findLines(const BlobMap &map);

// Gives accents, dots, colons, quotes, dashes and underscores to the line that they stand in or next to, and
// puts together the lines that have come near each other by it.
void attachSmallParts(const BlobMap &map, std::vector<TextLine> &lines);
