#pragma once

#include <QByteArray>
#include <QImage>
#include <QSizeF>
#include <optional>

// The size of an image and a small PNG of it. Any thread.
struct Thumbnail {
    // Of the whole image as it lies in the file, before its orientation; 0 × 0 when unknown.
    QSizeF pixelSize{0, 0};
    std::optional<QByteArray> png;
};

// The longer side of the PNG is at most maxPixels; a smaller image is not enlarged. Orientation is applied.
[[nodiscard]] Thumbnail makeThumbnail(const QByteArray &imageBytes, int maxPixels);

// The picture for the screen, its longer side at most maxPixels, its orientation applied. Null for what is no
// picture made of pixels or would take too much memory or time. Any thread.
[[nodiscard]] QImage decodedPicture(const QByteArray &imageBytes, int maxPixels);
