#pragma once

#include "Platform/linux/tesseract/TextBlocks.h"

// One block cut out of the normalised picture for the engine: everything foreign white, small text enlarged
// twice, a border of paper around it.
struct BlockPicture {
    GreyPicture picture;
    PixelBox source; // what it shows of the whole picture
    int scale = 1;
    int border = 0; // pixels, after enlarging
};

[[nodiscard]] BlockPicture cutBlock(const GreyPicture &normalized, const BlobMap &map, const TextBlock &block);

// Twice the size, with values in between mixed.
[[nodiscard]] GreyPicture doubled(const GreyPicture &picture);
