#include "Platform/HeifFile.h"

#include <QColorSpace>
#include <libheif/heif.h>
#include <memory>

namespace {

template <typename Object, auto release>
struct Release {
    void operator()(Object *object) const { release(object); }
};
using Context = std::unique_ptr<heif_context, Release<heif_context, heif_context_free>>;
using Handle = std::unique_ptr<heif_image_handle, Release<heif_image_handle, heif_image_handle_release>>;
using Decoded = std::unique_ptr<heif_image, Release<heif_image, heif_image_release>>;

constexpr int longestSide = 32767; // pixels, like the toolkit's pictures

Handle primaryImage(heif_context *context, const QByteArray &bytes)
{
    heif_context_set_maximum_image_size_limit(context, longestSide);
    heif_context_set_max_decoding_threads(context, 0); // on the thread that asks
    const auto size = static_cast<size_t>(bytes.size());
    if (heif_context_read_from_memory_without_copy(context, bytes.constData(), size, nullptr).code !=
        heif_error_Ok)
        return nullptr;
    heif_image_handle *handle = nullptr;
    if (heif_context_get_primary_image_handle(context, &handle).code != heif_error_Ok)
        return nullptr;
    return Handle(handle);
}

QColorSpace colours(const heif_image_handle *handle)
{
    const size_t size = heif_image_handle_get_raw_color_profile_size(handle);
    if (size == 0 || size > 4'000'000)
        return {};
    QByteArray profile(static_cast<qsizetype>(size), '\0');
    if (heif_image_handle_get_raw_color_profile(handle, profile.data()).code != heif_error_Ok)
        return {};
    return QColorSpace::fromIccProfile(profile);
}

QImage pixelsOf(const heif_image_handle *handle)
{
    const bool hasAlpha = heif_image_handle_has_alpha_channel(handle) != 0;
    heif_image *decoded = nullptr;
    const auto chroma = hasAlpha ? heif_chroma_interleaved_RGBA : heif_chroma_interleaved_RGB;
    if (heif_decode_image(handle, &decoded, heif_colorspace_RGB, chroma, nullptr).code != heif_error_Ok)
        return {};
    const Decoded image(decoded);
    int stride = 0;
    const uint8_t *plane = heif_image_get_plane_readonly(decoded, heif_channel_interleaved, &stride);
    const QSize size(heif_image_get_width(decoded, heif_channel_interleaved),
                     heif_image_get_height(decoded, heif_channel_interleaved));
    if (!plane || size.isEmpty())
        return {};
    const auto format = hasAlpha ? QImage::Format_RGBA8888 : QImage::Format_RGB888;
    QImage picture = QImage(plane, size.width(), size.height(), stride, format).copy();
    if (const QColorSpace space = colours(handle); space.isValid())
        picture.setColorSpace(space);
    return picture;
}

} // namespace

bool isHeif(const QByteArray &bytes)
{
    constexpr qsizetype enough = 64; // of the list of brands
    const auto length = static_cast<int>(std::min(bytes.size(), enough));
    const auto *start = reinterpret_cast<const uint8_t *>(bytes.constData());
    const auto type = length >= 12 ? heif_check_filetype(start, length) : heif_filetype_no;
    return type == heif_filetype_yes_supported || type == heif_filetype_maybe; // a brand that has any coding
}

ImageFile readHeif(const QByteArray &bytes, qint64 maxPixels)
{
    const Context context(heif_context_alloc());
    const Handle handle = primaryImage(context.get(), bytes);
    if (!handle)
        return {};
    ImageFile file;
    file.uprightSize = {heif_image_handle_get_width(handle.get()),
                        heif_image_handle_get_height(handle.get())};
    file.storedSize = {heif_image_handle_get_ispe_width(handle.get()),
                       heif_image_handle_get_ispe_height(handle.get())};
    for (const QSize size : {file.storedSize, file.uprightSize}) { // which a hostile file lets differ
        if (size.isEmpty() || qint64{size.width()} * size.height() > maxPixels)
            return file;
    }
    file.picture = pixelsOf(handle.get());
    return file;
}
