#include "Platform/linux/tesseract/PagePictures.h"

#include <QPainter>
#include <cmath>
#include <map>

namespace {

constexpr double maxArea = 40e6;     // pixels
constexpr double reducedArea = 16e6; // pixels
constexpr int maxSide = 32767 / 2;   // the engine takes 32767, and small text is enlarged twice

QSize readableSize(QSize size)
{
    const double area = static_cast<double>(size.width()) * size.height();
    double factor = area > maxArea ? std::sqrt(reducedArea / area) : 1;
    factor = std::min(factor, static_cast<double>(maxSide) / std::max(size.width(), size.height()));
    if (factor >= 1)
        return size;
    return {std::max(1, static_cast<int>(size.width() * factor)),
            std::max(1, static_cast<int>(size.height() * factor))};
}

} // namespace

QImage readableCopy(const QImage &image)
{
    if (image.isNull())
        return {};
    const QSize size = readableSize(image.size());
    const QImage sized =
        size == image.size() ? image : image.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    if (!sized.hasAlphaChannel())
        return sized.convertToFormat(QImage::Format_RGB32);
    QImage opaque(sized.size(), QImage::Format_RGB32);
    opaque.fill(Qt::white);
    QPainter(&opaque).drawImage(0, 0, sized);
    return opaque;
}

bool needsMargin(const QImage &readable)
{
    constexpr int smallSide = 64;
    return std::min(readable.width(), readable.height()) < smallSide;
}

QImage withMargin(const QImage &readable)
{
    std::map<QRgb, int> counts;
    for (int x = 0; x < readable.width(); ++x) {
        ++counts[readable.pixel(x, 0)];
        ++counts[readable.pixel(x, readable.height() - 1)];
    }
    for (int y = 0; y < readable.height(); ++y) {
        ++counts[readable.pixel(0, y)];
        ++counts[readable.pixel(readable.width() - 1, y)];
    }
    const auto most = std::max_element(counts.begin(), counts.end(),
                                       [](const auto &a, const auto &b) { return a.second < b.second; });
    QImage result(readable.size() + QSize(2 * smallMargin, 2 * smallMargin), QImage::Format_RGB32);
    result.fill(most->first);
    QPainter(&result).drawImage(smallMargin, smallMargin, readable);
    return result;
}

ColorPicture colorPicture(const QImage &image)
{
    const auto count = static_cast<std::size_t>(image.width()) * static_cast<std::size_t>(image.height());
    return {image.width(), image.height(),
            std::span(reinterpret_cast<const std::uint32_t *>(image.constBits()), count)};
}

QImage imageOf(const GreyPicture &picture, int factor)
{
    QImage image(picture.width, picture.height, QImage::Format_Grayscale8);
    for (int y = 0; y < picture.height; ++y) {
        const auto row = picture.row(y);
        std::transform(row.begin(), row.end(), image.scanLine(y),
                       [factor](std::uint8_t value) { return static_cast<uchar>(value * factor); });
    }
    return image;
}

QImage outlined(const GreyPicture &picture, const std::vector<TextLine> &lines,
                const std::vector<TextBlock> &blocks)
{
    QImage image = imageOf(picture, 1).convertToFormat(QImage::Format_RGB32);
    QPainter painter(&image);
    const auto outline = [&painter](const PixelBox &box, const QColor &color) {
        painter.setPen(color);
        painter.drawRect(box.left - 1, box.top - 1, box.width + 1, box.height + 1);
    };
    for (const TextLine &line : lines)
        outline(line.box, QColor(0, 160, 0));
    for (const TextBlock &block : blocks)
        outline(block.box.grown(2, picture.width, picture.height), QColor(220, 0, 0));
    return image;
}
