#pragma once

#include "tests/desktop/Desktop.h"

#include <QImage>

// What the screen shows in a rectangle of the root window (the whole screen when it is empty). Null on
// failure.
[[nodiscard]] QImage screenshot(const Desktop &desktop, QRect part = {});

// The lightness of one point of it, 0 to 255; -1 on failure.
[[nodiscard]] int lightnessAt(const Desktop &desktop, QPoint place);

// Waits until two looks in a row show the same picture, so that nothing is caught half painted; a blinking
// caret may differ. Gives the last look when that never happens within a second.
[[nodiscard]] QImage steadyScreenshot(const Desktop &desktop, QRect part = {});
