#pragma once

#include "tests/support/Captures.h"

#include <algorithm>
#include <libheif/heif.h>
#include <memory>
#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/lsan_interface.h>
#endif

// Image files that take more than an encoder of the toolkit to make.

// A JPEG whose camera was held as `orientation` says: an Exif block with that one entry after the first
// marker.
inline QByteArray jpegWithOrientation(const QImage &image, char orientation)
{
    QByteArray exif("Exif\0\0"
                    "MM\0\x2A\0\0\0\x08"          // big-endian TIFF, directory at 8
                    "\0\x01"                      // one entry
                    "\x01\x12\0\x03\0\0\0\x01\0", // orientation, one short
                    25);
    exif += orientation;
    exif += QByteArray("\0\0\0\0\0\0", 6);
    QByteArray block("\xFF\xE1\0", 3);
    block += static_cast<char>(exif.size() + 2);
    return encoded(image, "JPEG").insert(2, block + exif);
}

// A PNG of 60000 × 60000 pixels by its header, and an empty stream of pixels.
inline const QByteArray pngBomb("\x89PNG\r\n\x1A\n"
                                "\0\0\0\x0DIHDR\0\0\xEA\x60\0\0\xEA\x60\x08\x02\0\0\0\x0F\xB0\xE2\x15"
                                "\0\0\0\0IDAT\x35\xAF\x06\x1E",
                                45);

// A HEIC file that is to be turned as an EXIF orientation says. Empty where it cannot be made.
inline QByteArray heicOf(const QImage &image, int orientation)
{
#if defined(__SANITIZE_ADDRESS__)
    const __lsan::ScopedDisabler encoderKeepsSomeMemoryForever;
#endif
    const QImage rgb = image.convertToFormat(QImage::Format_RGB888);
    const std::unique_ptr<heif_context, void (*)(heif_context *)> context(heif_context_alloc(),
                                                                          heif_context_free);
    heif_image *raw = nullptr;
    heif_image_create(rgb.width(), rgb.height(), heif_colorspace_RGB, heif_chroma_interleaved_RGB, &raw);
    const std::unique_ptr<heif_image, void (*)(const heif_image *)> pixels(raw, heif_image_release);
    heif_image_add_plane(raw, heif_channel_interleaved, rgb.width(), rgb.height(), 8);
    int stride = 0;
    uint8_t *plane = heif_image_get_plane(raw, heif_channel_interleaved, &stride);
    for (int y = 0; y < rgb.height(); ++y)
        std::copy_n(rgb.constScanLine(y), 3 * rgb.width(), plane + qsizetype{y} * stride);
    heif_encoder *encoder = nullptr;
    if (heif_context_get_encoder_for_format(context.get(), heif_compression_HEVC, &encoder).code !=
        heif_error_Ok)
        return {};
    heif_encoding_options *options = heif_encoding_options_alloc();
    options->image_orientation = static_cast<heif_orientation>(orientation);
    heif_context_encode_image(context.get(), raw, encoder, options, nullptr);
    heif_encoding_options_free(options);
    heif_encoder_release(encoder);
    QByteArray bytes;
    heif_writer writer{1, [](heif_context *, const void *data, size_t size, void *target) {
                           static_cast<QByteArray *>(target)->append(static_cast<const char *>(data),
                                                                     static_cast<qsizetype>(size));
                           return heif_error{heif_error_Ok, heif_suberror_Unspecified, "written"};
                       }};
    heif_context_write(context.get(), &writer, &bytes);
    // This encoder notes the turned size where cameras note the stored one.
    const qsizetype size = bytes.indexOf("ispe") + 8;
    if (orientation > 4)
        std::rotate(bytes.begin() + size, bytes.begin() + size + 4, bytes.begin() + size + 8);
    return bytes;
}
