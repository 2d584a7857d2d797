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

// Height of a usual letter: the median of what can be letters, 0 without any.
[[nodiscard]] int medianLetterHeight(const std::vector<Blob> &blobs);

// Puts letters together to words and words to lines. Frames, pictures and what is left of rules are in none
// of them, nor are dots and strokes too small to be letters (attachSmallParts).
[[nodiscard]] std::vector<TextLine> findLines(const BlobMap &map);

// Gives accents, dots, colons, quotes, dashes and underscores to the line that they stand in or next to.
void attachSmallParts(const BlobMap &map, std::vector<TextLine> &lines);
