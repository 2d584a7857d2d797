#include "Norvane/capture/Thumbnail.h"

#include "Platform/ImageFile.h"

#include <QBuffer>
#include <QColorSpace>

namespace {

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
    ImageFile file = readImageFile(imageBytes, maxPixels);
    Thumbnail thumbnail;
    if (file.storedSize.isValid())
        thumbnail.pixelSize = file.storedSize;
    if (!file.picture.isNull())
        thumbnail.png = encodedPng(std::move(file.picture));
    return thumbnail;
}

QImage decodedPicture(const QByteArray &imageBytes, int maxPixels)
{
    return readImageFile(imageBytes, maxPixels).picture;
}
