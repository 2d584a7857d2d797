#pragma once

#include "Platform/linux/tesseract/EngineWords.h"
#include "Platform/linux/tesseract/Pixels.h"

// Puts right the blanks of a column in a typewriter font (code, terminals) by the white between its letters,
// which stand at equal distances. The engine puts blanks around colons and dashes there, and takes
// underscores for blanks. Columns in other fonts stay as they are: their blanks vary too much.
void correctSpacing(const GreyPicture &picture, std::vector<EngineLine> &lines);
