#pragma once

#include "Platform/RecognitionService.h"

#include <QRect>
#include <vector>

// A word as the engine gives it.
struct RecognizedWord {
    QString text;
    double certainty = 0; // the engine's, 0 to 100
    QRectF box;           // pixels of the upright picture, origin top left
    bool beginsLine = false;
};

// Puts words of one line together to fragments; a gap wider than 1.5 times the taller of the two words
// begins a new one. Boxes are then parts of the picture's size with the origin bottom left.
[[nodiscard]] std::vector<RecognizedFragment> makeFragments(const std::vector<RecognizedWord> &words,
                                                            QSize picture);
