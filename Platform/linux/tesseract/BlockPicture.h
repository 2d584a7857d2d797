#pragma once

#include "Platform/linux/tesseract/TextBlocks.h"

#include <QRectF>

// One block cut out of the normalised picture for the engine: everything foreign white, small text enlarged
// twice, a border of paper around it.
struct BlockPicture {
    GreyPicture picture;
    PixelBox source; // what it shows of the whole picture
    int scale = 1;
    int border = 0; // pixels, after enlarging

    // Where a box of this picture is in the whole one.
    [[nodiscard]] QRectF placeOf(const QRectF &box) const
    {
        return {source.left + (box.left() - border) / scale, source.top + (box.top() - border) / scale,
                box.width() / scale, box.height() / scale};
    }
};

[[nodiscard]] BlockPicture cutBlock(const GreyPicture &normalized, const BlobMap &map,
                                    const TextBlock &block);

// Twice the size, with values in between mixed.
[[nodiscard]] GreyPicture doubled(const GreyPicture &picture);
