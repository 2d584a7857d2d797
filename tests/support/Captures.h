#pragma once

#include "Norvane/store/Clip.h"
#include "Platform/Pasteboard.h"

#include <QBuffer>

// Captures as the reader of the pasteboard makes them, and the pictures in them.

inline const QString plainText = QString::fromUtf16(PasteboardType::plainText);

inline CapturedClip textCapture(const QString &text, ClipKind kind = ClipKind::text)
{
    CapturedClip capture;
    capture.kind = kind;
    capture.text = text;
    capture.hash = contentHash(QString("text\n" + text));
    capture.formats = {{0, plainText, text.toUtf8()}};
    return capture;
}

inline CapturedClip imageCapture(const QByteArray &bytes, QSizeF pixels = {640, 480})
{
    CapturedClip capture;
    capture.kind = ClipKind::image;
    capture.hash = contentHash(bytes);
    capture.formats = {{0, "public.png", bytes}};
    capture.pixelSize = pixels;
    return capture;
}

inline QByteArray encoded(const QImage &image, const char *format = "PNG")
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
