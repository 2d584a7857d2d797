#pragma once

#include "Platform/RecognitionService.h"
#include "Platform/linux/tesseract/EngineWords.h"

// Puts words of one line together to fragments; a gap wider than 1.5 times the letters' height begins a new
// one. The lines are in pixels of the whole picture, the boxes of the fragments parts of its size with the
// origin bottom left.
[[nodiscard]] std::vector<RecognizedFragment> makeFragments(const std::vector<EngineLine> &lines,
                                                            QSize picture);
