#pragma once

#include "bench/recognition/SamplePage.h"

#include <vector>

// A class of sample pictures.
struct SampleKind {
    const char *name;
    int count; // in a full set
    Sample (*make)(QRandomGenerator &random, bool wide);
};

// Screenshots and parts of them, scans, photographs, and pictures without text. `wide` in a maker: with
// fonts, colours and degrees of damage that nothing was tuned on.
[[nodiscard]] const std::vector<SampleKind> &screenKinds();
[[nodiscard]] const std::vector<SampleKind> &programKinds();
[[nodiscard]] const std::vector<SampleKind> &cameraKinds();

// What a camera sees where there is nothing to read: hills, a sky, and things that are no letters.
[[nodiscard]] QImage landscape(QRandomGenerator &random, QSize size);
