#pragma once

#include "Platform/RecognitionService.h"

// The fragments that are trusted, as one text: from top to bottom, those of one line from left to right.
[[nodiscard]] QString inReadingOrder(const std::vector<RecognizedFragment> &fragments, QSize picture);
