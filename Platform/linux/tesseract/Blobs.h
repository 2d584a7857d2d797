#pragma once

#include "Platform/linux/tesseract/Pixels.h"

// A connected piece of ink: a letter, a dot, an accent, several letters that touch, an icon.
struct Blob {
    PixelBox box;
    int area = 0;       // pixels of ink
    bool isText = true; // until it is found to be a part of a frame or an icon
};

struct BlobMap {
    std::vector<Blob> blobs;
    int width = 0; // of the picture
    // For each pixel 1 + the index of its blob, 0 for paper.
    std::vector<std::uint32_t> labels;
    // 1 where a rule was erased (LineEraser.h); empty until that is known.
    GreyPicture rules;
};

[[nodiscard]] BlobMap findBlobs(const GreyPicture &picture);
