#include "tests/desktop/SamplePicture.h"

#include <QBuffer>
#include <QImage>

QByteArray samplePicture()
{
    QImage image(560, 200, QImage::Format_RGB32);
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            image.setPixel(x, y, qRgb(x * 255 / 560, y * 255 / 200, (x * 7 + y * 13) % 256));
    image.setText("Comment", "kept only when nothing is encoded again");
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG", 30);
    return bytes;
}
