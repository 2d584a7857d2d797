#pragma once

#include "Platform/linux/tesseract/EngineWords.h"
#include "Platform/linux/tesseract/Pixels.h"

// Puts right the blanks of a column by the white between its letters.
//
// In a typewriter font (code, terminals), where letters stand at equal distances, blanks are set anew: the
// engine puts some around colons and dashes there and takes underscores for blanks. In other fonts only wide
// ones are added that it lost, as in "€ 4,75".
void correctSpacing(const GreyPicture &picture, std::vector<EngineLine> &lines);
