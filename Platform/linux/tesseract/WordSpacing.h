#pragma once

#include "Platform/linux/tesseract/EngineWords.h"
#include "Platform/linux/tesseract/Pixels.h"

// Puts right the blanks of a line by the white between its letters. The engine puts blanks around colons and
// dashes of typewriter fonts, loses narrow ones, and takes an underscore for one.
void correctSpacing(const GreyPicture &picture, EngineLine &line);
