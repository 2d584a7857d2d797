#include "Platform/linux/tesseract/PhotoNormalizer.h"

#include <leptonica/allheaders.h>
#include <memory>

namespace {

struct PixDeleter {
    void operator()(Pix *pix) const { pixDestroy(&pix); }
};
using OwnedPix = std::unique_ptr<Pix, PixDeleter>;

GreyPicture greyOf(const ColorPicture &picture)
{
    GreyPicture grey(picture.width, picture.height, 255);
    for (std::size_t i = 0; i < grey.pixels.size(); ++i) {
        const std::uint32_t c = picture.pixels[i];
        grey.pixels[i] = static_cast<std::uint8_t>(
            (((c >> 16) & 0xff) * 77 + ((c >> 8) & 0xff) * 150 + (c & 0xff) * 29 + 128) >> 8);
    }
    return grey;
}

OwnedPix toPix(const GreyPicture &grey)
{
    OwnedPix pix(pixCreate(grey.width, grey.height, 8));
    if (!pix)
        return pix;
    for (int y = 0; y < grey.height; ++y) {
        l_uint32 *line = pixGetData(pix.get()) + static_cast<std::ptrdiff_t>(y) * pixGetWpl(pix.get());
        const auto row = grey.row(y);
        for (int x = 0; x < grey.width; ++x)
            SET_DATA_BYTE(line, x, row[static_cast<std::size_t>(x)]);
    }
    return pix;
}

} // namespace

GreyPicture normalizePhoto(const ColorPicture &picture)
{
    GreyPicture grey = greyOf(picture);
    const OwnedPix pix = toPix(grey);
    // Fails on pictures that are too small to have surroundings.
    const OwnedPix even(pix ? pixBackgroundNormSimple(pix.get(), nullptr, nullptr) : nullptr);
    if (!even || pixGetWidth(even.get()) != grey.width || pixGetHeight(even.get()) != grey.height)
        return grey;
    for (int y = 0; y < grey.height; ++y) {
        const l_uint32 *line =
            pixGetData(even.get()) + static_cast<std::ptrdiff_t>(y) * pixGetWpl(even.get());
        auto row = grey.row(y);
        for (int x = 0; x < grey.width; ++x)
            row[static_cast<std::size_t>(x)] = static_cast<std::uint8_t>(GET_DATA_BYTE(line, x));
    }
    return grey;
}
