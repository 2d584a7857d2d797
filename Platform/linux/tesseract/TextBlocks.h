#pragma once

#include "Platform/linux/tesseract/TextLines.h"

// Lines below each other that the engine reads as one column: each at most 1.5 letter heights below the one
// before it, of about the same height. A line continues one line only and is continued by one only, so that
// columns beside each other never get into one block.
struct TextBlock {
    PixelBox box;
    std::vector<std::uint32_t> blobs;
    int letterHeight = 0; // median
    std::vector<TextLine> lines;
};

[[nodiscard]] TextBlock blockOf(const BlobMap &map, std::vector<TextLine> lines);

[[nodiscard]] std::vector<TextBlock> findBlocks(const BlobMap &map, const std::vector<TextLine> &lines);
