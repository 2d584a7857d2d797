#pragma once

#include "Platform/Pasteboard.h"

#include <QBuffer>
#include <QImage>

// Copies as programs make them, for the tests of this room.

inline const QString plainText = QString::fromUtf16(PasteboardType::plainText);

inline PasteboardRepresentation form(const QString &type, const QByteArray &data)
{
    return {type, data};
}

inline PasteboardRepresentation offeredOnly(const QString &type)
{
    return {type, std::nullopt};
}

inline PasteboardItem textItem(const QString &text)
{
    return {{form(plainText, text.toUtf8())}};
}

inline PasteboardItem fileItem(const QByteArray &address)
{
    return {{form(QString::fromUtf16(PasteboardType::fileURL), address)}};
}

inline QByteArray encoded(const QImage &image, const char *format)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, format);
    return bytes;
}

inline QImage filledImage(int width, int height, const QColor &colour)
{
    QImage image(width, height, QImage::Format_ARGB32);
    image.fill(colour);
    return image;
}
