#pragma once

#include "Platform/linux/tesseract/Pixels.h"

// A connected region of almost one colour.
struct Region {
    PixelBox box;
    std::size_t area = 0;     // pixels
    int square = 0;           // side of the largest square in it
    std::uint32_t colour = 0; // of one of its pixels
    int uneven = 0;           // pixels in its box that are on no surface
    bool isSurface = false;
};

// By size and proportions alone.
[[nodiscard]] bool canBeLargeLetter(const PixelBox &box);

// Letters of large headings have strokes thick enough for a surface. They are none: regions of strokes, thin
// beside their height, at least two of one colour in a row.
void excludeLargeLetters(std::vector<Region> &regions);
