#include "bench/recognition/SampleScreens.h"
#include "bench/recognition/SampleTexts.h"

#include <QBuffer>
#include <QFontMetrics>
#include <cmath>

namespace {

// Changes each pixel by a random amount and a factor that depends on the place.
template <typename Light>
void expose(QImage &image, QRandomGenerator &random, int noise, const Light &light)
{
    for (int y = 0; y < image.height(); ++y) {
        auto *row = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            const double factor =
                light(static_cast<double>(x) / image.width(), static_cast<double>(y) / image.height());
            const int grain = static_cast<int>(random.bounded(2 * noise + 1)) - noise;
            const auto seen = [&](int value) {
                return std::clamp(static_cast<int>(value * factor) + grain, 0, 255);
            };
            row[x] = qRgb(seen(qRed(row[x])), seen(qGreen(row[x])), seen(qBlue(row[x])));
        }
    }
}

QImage softened(const QImage &image, double factor)
{
    return image.scaled(image.size() * factor, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
        .scaled(image.size(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
        .convertToFormat(QImage::Format_RGB32);
}

QImage asJpeg(const QImage &image, int quality)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "JPEG", quality);
    return QImage::fromData(bytes).convertToFormat(QImage::Format_RGB32);
}

Sample letter(QRandomGenerator &random, bool wide)
{
    SamplePage page(random, QSize(1200, 800), QColor("#f4f1ea"));
    const QFont font = sansFont(random, page.between(22, 32), wide);
    for (int y = 60; y < 700; y += font.pixelSize() * 3 / 2) {
        QString words = page.any(sentences);
        while (QFontMetrics(font).horizontalAdvance(words) > 1040)
            words.truncate(words.lastIndexOf(u' '));
        page.text({80, y}, words, font, QColor("#26242a"));
    }
    return page.finished({});
}

Sample scan(QRandomGenerator &random, bool wide)
{
    Sample sample = letter(random, wide);
    QImage turned(sample.image.size(), QImage::Format_RGB32);
    turned.fill(QColor("#f4f1ea"));
    QPainter painter(&turned);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.rotate((static_cast<double>(random.bounded(200U)) - 100) / (wide ? 80 : 100));
    painter.drawImage(0, 0, sample.image);
    painter.end();
    sample.image = softened(turned, 0.8);
    expose(sample.image, random, 10, [](double, double) { return 0.97; });
    sample.image = asJpeg(sample.image, 80);
    return sample;
}

Sample photo(QRandomGenerator &random, bool wide)
{
    Sample sample = letter(random, wide);
    const QSize size(1500, 1050);
    QImage seen(size, QImage::Format_RGB32);
    seen.fill(QColor("#5b4a3c"));
    const auto moved = [&random](double x, double y) {
        return QPointF(x + random.bounded(40.0) - 20, y + random.bounded(40.0) - 20);
    };
    const QPolygonF corners({moved(130, 90), moved(1370, 100), moved(1400, 960), moved(110, 940)});
    QTransform view;
    const QPolygonF sheet({QPointF(0, 0), QPointF(1200, 0), QPointF(1200, 800), QPointF(0, 800)});
    QTransform::quadToQuad(sheet, corners, view);
    QPainter painter(&seen);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.setTransform(view);
    painter.drawImage(0, 0, sample.image);
    painter.end();
    sample.image = softened(seen, 0.75);
    const double shadow = 0.2 + random.bounded(0.6);
    const double depth = wide ? 0.6 : 0.5;
    expose(sample.image, random, 8, [=](double x, double y) {
        return 1 - depth / (1 + std::exp(-20 * (x + 0.4 * y - shadow - 0.2)));
    });
    sample.image = asJpeg(sample.image, 85);
    return sample;
}

} // namespace

QImage landscape(QRandomGenerator &random, QSize size)
{
    QImage image(size, QImage::Format_RGB32);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    QLinearGradient sky(0, 0, 0, size.height());
    sky.setColorAt(0, QColor::fromHsv(static_cast<int>(200 + random.bounded(40U)), 150, 220));
    sky.setColorAt(1, QColor("#f0e0d0"));
    painter.fillRect(image.rect(), sky);
    painter.setPen(Qt::NoPen);
    for (int i = 0; i < 60; ++i) {
        const double y = size.height() * (0.4 + random.bounded(0.6));
        painter.setBrush(QColor::fromHsv(static_cast<int>(60 + random.bounded(90U)),
                                         static_cast<int>(60 + random.bounded(150U)),
                                         static_cast<int>(40 + random.bounded(180U)), 160));
        painter.drawEllipse(QPointF(random.bounded(1.0) * size.width(), y), 10 + random.bounded(90.0),
                            6 + random.bounded(60.0));
    }
    painter.end();
    expose(image, random, 6, [](double, double) { return 1.0; });
    return image;
}

namespace {

Sample emptyPhoto(QRandomGenerator &random, bool)
{
    return {{}, asJpeg(landscape(random, QSize(1000, 700)), 88), {}};
}

Sample noise(QRandomGenerator &random, bool)
{
    QImage image(600, 400, QImage::Format_RGB32);
    image.fill(QColor(128, 128, 128));
    expose(image, random, static_cast<int>(40 + random.bounded(80U)), [](double, double) { return 1.0; });
    return {{}, random.bounded(2U) == 0 ? image : softened(image, 0.5), {}};
}

Sample blank(QRandomGenerator &random, bool)
{
    QImage image(static_cast<int>(1 + random.bounded(900U)), static_cast<int>(1 + random.bounded(600U)),
                 QImage::Format_RGB32);
    image.fill(QColor::fromRgb(random.generate()));
    return {{}, image, {}};
}

// A photograph in a window, with a caption drawn over it and text of the window around it.
Sample pictureInWindow(QRandomGenerator &random, bool wide)
{
    SamplePage page(random, QSize(900, 700), QColor(Qt::white));
    const QFont font = sansFont(random, page.between(13, 16), wide);
    page.text({30, 16}, page.any(sentences), font, QColor("#222222"));
    page.text({30, 46}, page.any(sentences), font, QColor("#222222"));
    page.paint().drawImage(QPoint(30, 90), landscape(random, QSize(840, 480)));
    QFont caption = sansFont(random, page.between(24, 40), wide);
    caption.setBold(true);
    page.text({60, 110}, page.any(places) + u' ' + page.any(labels), caption, Qt::white);
    page.text({30, 590}, page.any(sentences), font, QColor("#222222"));
    page.text({30, 620}, page.any(sentences), font, QColor("#222222"));
    return page.finished({});
}

} // namespace

const std::vector<SampleKind> &cameraKinds()
{
    static const std::vector<SampleKind> kinds{
        {"scan", 5, scan},   {"photo", 5, photo}, {"picture in window", 5, pictureInWindow},
        {"blank", 4, blank}, {"noise", 4, noise}, {"photo without text", 4, emptyPhoto},
    };
    return kinds;
}
