#pragma once

#include <QString>

// From the engine's certainty, 0 to 100 on average over the characters, to the confidence of a fragment, 0 to
// 1. `isAlone`: all that its column holds is at most three characters long.
//
// The figure is no probability: measured on some 4000 right fragments, 99 of 100 with more than three
// characters are above 98.4 and half above 99.5, while what is read into things that are no letters stays
// below 97. So 97 becomes 0.3, and 99.5 becomes 1. Icons are read as one to three characters, often with a
// high figure: what stands alone needs 98 as figures, 98.9 with a letter, 99.3 without either to reach 0.3.
[[nodiscard]] float confidenceOf(const QString &text, double certainty, bool isAlone);
