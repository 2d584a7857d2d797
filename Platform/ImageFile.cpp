#include "Platform/ImageFile.h"

#include "Platform/HeifFile.h"

#include <QBuffer>
#include <QImageReader>
#include <algorithm>
#include <iterator>

namespace {

// Pictures made of pixels. Formats that are drawn when read (SVG) may name other files and take any time.
constexpr QByteArrayView rasterFormats[] = {"png", "jpeg", "jpg", "gif", "tiff", "tif", "webp",
                                            "bmp", "ico",  "pbm", "pgm", "ppm",  "xbm", "xpm"};

// Readers that scale while they decode escape the reader's allocation limit, not the time it takes: a JPEG of
// 64 megapixels is read in half a second. A progressive one needs up to 6 bytes a pixel and all its passes,
// of which real encoders write about ten.
constexpr qint64 maxDecodedPixels = 64'000'000;
constexpr qsizetype maxJpegScans = 100;

bool isWorthDecoding(const QByteArray &bytes, const QByteArray &format, QSize size)
{
    if (qint64{size.width()} * size.height() > maxDecodedPixels)
        return false;
    return !format.startsWith("jp") || bytes.count("\xFF\xDA") <= maxJpegScans;
}

QSize fitted(QSize size, int longestSide)
{
    return size.scaled(longestSide, longestSide, Qt::KeepAspectRatio).expandedTo(QSize(1, 1));
}

bool isLarger(QSize size, int longestSide)
{
    return std::max(size.width(), size.height()) > longestSide;
}

// As QImageReader counts: 4 bytes a pixel.
qint64 pixelsWithinLimit()
{
    const qint64 megabytes = QImageReader::allocationLimit();
    return megabytes > 0 ? std::min(megabytes * 1024 * 1024 / 4, maxDecodedPixels) : maxDecodedPixels;
}

ImageFile readWithToolkit(const QByteArray &bytes, int longestSide)
{
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer);
    reader.setAutoTransform(true);
    const QByteArray format = reader.format();
    if (std::ranges::find(rasterFormats, format) == std::end(rasterFormats))
        return {};
    ImageFile file;
    file.storedSize = reader.size();
    file.uprightSize = reader.transformation().testFlag(QImageIOHandler::TransformationRotate90)
                           ? file.storedSize.transposed()
                           : file.storedSize;
    const bool isSized = file.storedSize.isValid();
    if (isSized && !isWorthDecoding(bytes, format, file.storedSize))
        return file;
    if (isSized && isLarger(file.storedSize, longestSide))
        reader.setScaledSize(fitted(file.storedSize, longestSide));
    file.picture = reader.read();
    if (!isSized && !file.picture.isNull())
        file.storedSize = file.uprightSize = file.picture.size();
    return file;
}

} // namespace

ImageFile readImageFile(const QByteArray &bytes, int longestSide)
{
    ImageFile file =
        isHeif(bytes) ? readHeif(bytes, pixelsWithinLimit()) : readWithToolkit(bytes, longestSide);
    if (isLarger(file.picture.size(), longestSide))
        file.picture = file.picture.scaled(fitted(file.picture.size(), longestSide), Qt::IgnoreAspectRatio,
                                           Qt::SmoothTransformation);
    return file;
}
