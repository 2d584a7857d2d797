#include "tests/programs/Pictures.h"

#include <QBuffer>
#include <QImage>

namespace {

// It was ended by a signal before, after which it would ask about the pictures that it saved then.
Child::Setting gimpOn(Stage &, const QString &file)
{
    QDir(qEnvironmentVariable("XDG_CONFIG_HOME") + QStringLiteral("/GIMP/2.10/backups")).removeRecursively();
    return {QStringLiteral("gimp"),
            {QStringLiteral("--new-instance"), QStringLiteral("--no-splash"), file},
            {},
            {}};
}

} // namespace

const Program &gimp()
{
    static const Program program{
        .name = QStringLiteral("GIMP"),
        .package = QStringLiteral("gimp"),
        .windowClass = QStringLiteral("Gimp"),
        .command = gimpOn,
        .makeBlank = picture(0),
        .copy = {QStringLiteral("Ctrl+Shift+C")}, // what is visible: what was pasted floats above the rest
        .changedTitle = QStringLiteral(", 2 layers)"), // what was pasted, and what was there
        .startBound = Desktop::Milliseconds(120000),
        .attempt = Desktop::Milliseconds(40000)};
    return program;
}

QByteArray pictureBytes(int variant)
{
    QImage image(90, 60, QImage::Format_RGB32);
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            image.setPixel(x, y, qRgb(x * 2, y * 4, (x * y + variant * 70) % 256));
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    require(image.save(&buffer, "PNG"), QStringLiteral("no PNG"));
    return bytes;
}

std::function<QString(const QString &)> picture(int variant)
{
    return [variant](const QString &path) {
        const QString file = path + QStringLiteral(".png");
        writeFile(file, pictureBytes(variant));
        return file;
    };
}

QByteArray pixels(const QByteArray &encoded)
{
    const auto image = QImage::fromData(encoded).convertToFormat(QImage::Format_RGBA8888);
    return image.isNull()
               ? QByteArray()
               : QByteArray::number(image.width()) + ' ' +
                     QByteArray(reinterpret_cast<const char *>(image.constBits()), image.sizeInBytes());
}
