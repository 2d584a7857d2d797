#pragma once

#include "Platform/linux/tesseract/Pixels.h"

// A photograph, or a part of one, that a program wrote on: captions, subtitles, titles over pictures. Such
// text has exactly one colour, which nothing in a photograph has as often with other colours on both sides.
struct Overlay {
    PixelBox box;        // in the whole picture
    GreyPicture picture; // of that box: the text dark on white, and what else comes near its colour
};

[[nodiscard]] std::vector<Overlay> findOverlays(const ColorPicture &picture);
