#include "Platform/linux/tesseract/PictureKind.h"

namespace {

constexpr double minEqualNeighbours = 0.5;
constexpr double minSurfaceShare = 0.35;
constexpr double minFlat = 0.2;
constexpr std::size_t flatRun = 8;
constexpr std::size_t maxUneven = 10'000'000; // pixels; finding surfaces among so many colours takes memory

} // namespace

Evenness evennessOf(const ColorPicture &picture)
{
    if (picture.width < 2 || picture.height < 1)
        return {};
    std::size_t equal = 0;
    std::size_t flat = 0;
    for (int y = 0; y < picture.height; ++y) {
        const auto row = picture.row(y);
        std::size_t begin = 0;
        for (std::size_t x = 1; x <= row.size(); ++x) {
            if (x < row.size() && row[x] == row[x - 1])
                continue;
            equal += x - begin - 1;
            flat += x - begin >= flatRun ? x - begin : 0;
            begin = x;
        }
    }
    const auto height = static_cast<double>(picture.height);
    return {static_cast<double>(equal) / (static_cast<double>(picture.width - 1) * height),
            static_cast<double>(flat) / (static_cast<double>(picture.width) * height)};
}

PictureKind pictureKind(const ColorPicture &picture, const Evenness &evenness, double surfaceShare)
{
    const bool isDrawn = evenness.equal >= minEqualNeighbours && surfaceShare >= minSurfaceShare;
    const bool showsPhotos = evenness.flat >= minFlat && picture.pixels.size() <= maxUneven;
    return isDrawn || showsPhotos ? PictureKind::screenshot : PictureKind::photo;
}
