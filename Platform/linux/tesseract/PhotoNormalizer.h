#pragma once

#include "Platform/linux/tesseract/Pixels.h"

// Evens out the light of a photograph or scan: grey, with the paper's brightness taken from its
// surroundings. A shadow would otherwise be read as ink.
[[nodiscard]] GreyPicture normalizePhoto(const ColorPicture &picture);
