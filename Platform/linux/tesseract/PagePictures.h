#pragma once

#include "Platform/linux/tesseract/TextBlocks.h"

#include <QImage>

// Between Qt's images and the plain pictures of the stages.

// The image as the stages want it: opaque, and of a size that can be worked on (above 40 megapixels, or with
// a side that the engine could not take, it is made smaller). Null for a null image.
[[nodiscard]] QImage readableCopy(const QImage &image);

// A picture cut close around a word or two gets a margin of `smallMargin` pixels in the colour that most of
// its edge has; others stay as they are.
inline constexpr int smallMargin = 16;
[[nodiscard]] bool needsMargin(const QImage &readable);
[[nodiscard]] QImage withMargin(const QImage &readable);

// Borrows the pixels of a readable copy.
[[nodiscard]] ColorPicture colorPicture(const QImage &image);

// For developers: a picture, its values times `factor`, as an image; and one with its lines (green) and
// blocks (red) outlined.
[[nodiscard]] QImage imageOf(const GreyPicture &picture, int factor);
[[nodiscard]] QImage outlined(const GreyPicture &picture, const std::vector<TextLine> &lines,
                              const std::vector<TextBlock> &blocks);
