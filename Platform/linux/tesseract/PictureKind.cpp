#include "Platform/linux/tesseract/PictureKind.h"

namespace {

constexpr double minEqualNeighbours = 0.5;
constexpr double minSurfaceShare = 0.35;

} // namespace

double equalNeighbourShare(const ColorPicture &picture)
{
    if (picture.width < 2 || picture.height < 1)
        return 1;
    std::size_t equal = 0;
    for (int y = 0; y < picture.height; ++y) {
        const auto row = picture.row(y);
        for (std::size_t x = 1; x < row.size(); ++x)
            equal += row[x] == row[x - 1] ? 1U : 0U;
    }
    return static_cast<double>(equal) /
           (static_cast<double>(picture.width - 1) * static_cast<double>(picture.height));
}

PictureKind pictureKind(double equalNeighbours, double surfaceShare)
{
    const bool drawn = equalNeighbours >= minEqualNeighbours && surfaceShare >= minSurfaceShare;
    return drawn ? PictureKind::screenshot : PictureKind::photo;
}
