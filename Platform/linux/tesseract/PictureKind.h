#pragma once

#include "Platform/linux/tesseract/Pixels.h"

// How a picture came to be, which decides how it is prepared for the engine.
enum class PictureKind {
    screenshot, // drawn by programs: flat surfaces with sharp text on them
    photo       // seen by a camera or a scanner: noise and uneven light
};

// Share of pixels that equal their right neighbour exactly. Measured: screenshots 0.87 to 1, stored as JPEG
// still 0.73 and more; scans about 0.33; photos and noise below 0.2.
[[nodiscard]] double equalNeighbourShare(const ColorPicture &picture);

// surfaceShare: Surfaces::share of the same picture.
[[nodiscard]] PictureKind pictureKind(double equalNeighbours, double surfaceShare);
