#pragma once

#include "Platform/linux/tesseract/Pixels.h"

// How a picture came to be, which decides how it is prepared for the engine.
enum class PictureKind {
    screenshot, // drawn by programs: flat surfaces with sharp text on them
    photo       // seen by a camera or a scanner: noise and uneven light
};

// How much of a picture has exactly one colour beside itself.
struct Evenness {
    // Share of pixels that equal their right neighbour. Measured: screenshots 0.87 to 1, stored as JPEG still
    // 0.73 and more; scans about 0.33; photos and noise below 0.2; windows that show photos in between.
    double equal = 1;
    // Share of pixels in runs of at least 8 equal ones, which cameras and scanners do not see.
    double flat = 1;
};

[[nodiscard]] Evenness evennessOf(const ColorPicture &picture);

// surfaceShare: Surfaces::share of the same picture.
[[nodiscard]] PictureKind pictureKind(const ColorPicture &picture, const Evenness &evenness,
                                      double surfaceShare);
