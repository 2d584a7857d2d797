#pragma once

#include "Platform/linux/tesseract/Pixels.h"
#include "Platform/linux/tesseract/Surfaces.h"

// Turns a screenshot of any theme into dark text on white: surfaces become white, every other pixel the
// darker the farther its colour is from the mix of the two surfaces beside it (left and right, or above and
// below, whichever is nearer). So text comes out dark whatever it stands on, and the soft edge between a
// button and its page, a mix of both, vanishes.
[[nodiscard]] GreyPicture normalizeSurfaces(const ColorPicture &picture, const Surfaces &surfaces);
