#pragma once

#include "Platform/linux/tesseract/Pixels.h"

// The parts of a screenshot that something is drawn on: connected regions of almost one colour (neighbours
// differ by at most 3 a channel) with an area of at least 300 pixels that hold a square of 8 by 8, and labels
// hardly higher than their text, which are told by being wider and fuller than letters. Pages,
// buttons, selected rows and slight gradients are surfaces; strokes of text are too thin to be one, but for
// those of large headings, which are told by their shape (LargeLetters.h).
struct Surfaces {
    GreyPicture marks; // 1 on a surface
    double share = 0;  // of all pixels
};

[[nodiscard]] Surfaces findSurfaces(const ColorPicture &picture);
