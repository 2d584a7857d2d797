#include "Norvane/capture/Thumbnail.h"

#include <QBuffer>
#include <QColorSpace>
#include <QImage>
#include <QImageReader>
#include <algorithm>
#include <iterator>

namespace {

// Pictures made of pixels. Formats that are drawn when read (SVG) may name other files and take any time.
constexpr QByteArrayView rasterFormats[] = {"png", "jpeg", "jpg", "gif", "tiff", "tif",  "webp", "bmp", "ico",
                                            "pbm", "pgm",  "ppm", "xbm", "xpm",  "heic", "heif", "avif"};

// Readers that scale while they decode escape the reader's allocation limit, not the time it takes: a JPEG of
// 64 megapixels is read in half a second. A progressive one needs up to 6 bytes a pixel and all its passes,
// of which real encoders write about ten.
constexpr qint64 maxDecodedPixels = 64'000'000;
constexpr qsizetype maxJpegScans = 100;

bool isRaster(const QByteArray &format)
{
    return std::ranges::find(rasterFormats, format) != std::end(rasterFormats);
}

bool isWorthDecoding(const QByteArray &bytes, const QByteArray &format, QSize size)
{
    if (qint64{size.width()} * size.height() > maxDecodedPixels)
        return false;
    return !format.startsWith("jp") || bytes.count("\xFF\xDA") <= maxJpegScans;
}

QSize fitted(QSize size, int maxPixels)
{
    return size.scaled(maxPixels, maxPixels, Qt::KeepAspectRatio).expandedTo(QSize(1, 1));
}

bool isLarger(QSize size, int maxPixels)
{
    return std::max(size.width(), size.height()) > maxPixels;
}

// The pixels alone, in sRGB: what else the picture carried (comments, place, camera) stays out of the
// thumbnail.
std::optional<QByteArray> encodedPng(QImage image)
{
    const QColorSpace colours = image.colorSpace();
    if (colours.isValid() && colours != QColorSpace(QColorSpace::SRgb))
        image.convertToColorSpace(QColorSpace::SRgb);
    QImage bare(image.constBits(), image.width(), image.height(), image.bytesPerLine(), image.format());
    bare.setColorTable(image.colorTable());
    QByteArray png;
    QBuffer buffer(&png);
    buffer.open(QIODevice::WriteOnly);
    if (!bare.save(&buffer, "PNG"))
        return std::nullopt;
    return png;
}

} // namespace

Thumbnail makeThumbnail(const QByteArray &imageBytes, int maxPixels)
{
    QBuffer buffer;
    buffer.setData(imageBytes);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer);
    reader.setAutoTransform(true);
    const QByteArray format = reader.format();
    if (!isRaster(format))
        return {};

    const QSize size = reader.size();
    Thumbnail thumbnail{size.isValid() ? QSizeF(size) : QSizeF(0, 0), std::nullopt};
    if (size.isValid() && !isWorthDecoding(imageBytes, format, size))
        return thumbnail;
    if (size.isValid() && isLarger(size, maxPixels))
        reader.setScaledSize(fitted(size, maxPixels));
    QImage image = reader.read();
    if (image.isNull())
        return thumbnail;
    if (!size.isValid())
        thumbnail.pixelSize = image.size();
    if (isLarger(image.size(), maxPixels))
        image =
            image.scaled(fitted(image.size(), maxPixels), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    thumbnail.png = encodedPng(std::move(image));
    return thumbnail;
}

QImage decodedPicture(const QByteArray &imageBytes, int maxPixels)
{
    QBuffer buffer;
    buffer.setData(imageBytes);
    QImageReader reader(&buffer);
    reader.setAutoTransform(true);
    const QByteArray format = reader.format();
    const QSize size = reader.size();
    if (!isRaster(format) || (size.isValid() && !isWorthDecoding(imageBytes, format, size)))
        return {};
    if (size.isValid() && isLarger(size, maxPixels))
        reader.setScaledSize(fitted(size, maxPixels));
    return reader.read();
}
