#pragma once

#include <QByteArray>
#include <QImage>
#include <QSize>

// The picture in an image file: the one place where files that other programs made become pixels. Any thread.
//
// Formats are those of the toolkit's plug-ins that are made of pixels, HEIC and AVIF. Of an animation the
// first frame counts. A JPEG that ends too early shows what there is of it; any other damaged file has no
// picture.
struct ImageFile {
    QSize storedSize;  // pixels, as it lies in the file, before its orientation; invalid when unknown
    QSize uprightSize; // after its orientation; invalid when unknown
    QImage picture;    // upright; null where it cannot be read or would take too much memory or time
};

// The longer side of the picture is at most longestSide pixels; a smaller one is not enlarged. Bounded by
// QImageReader's allocation limit, and by 64 million pixels where a picture is scaled while it is decoded.
[[nodiscard]] ImageFile readImageFile(const QByteArray &bytes, int longestSide);
