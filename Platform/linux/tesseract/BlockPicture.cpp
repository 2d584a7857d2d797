#include "Platform/linux/tesseract/BlockPicture.h"

#include <array>

namespace {

constexpr int paperBorder = 10;
constexpr int largeLetters = 18; // pixels; twice that and more the engine scales down anyway
constexpr int halo = 2;          // soft edges around a letter that are lighter than ink

GreyPicture framed(const GreyPicture &picture, int border)
{
    GreyPicture result(picture.width + 2 * border, picture.height + 2 * border, 255);
    for (int y = 0; y < picture.height; ++y) {
        const auto row = picture.row(y);
        std::copy(row.begin(), row.end(), result.row(y + border).begin() + border);
    }
    return result;
}

// The row in between, and one on: 3 parts of the nearer value, 1 of the other.
void doubleRow(std::span<const std::uint8_t> from, std::span<std::uint8_t> to)
{
    const std::size_t last = from.size() - 1;
    for (std::size_t x = 0; x < from.size(); ++x) {
        const unsigned here = 3U * from[x] + 2U;
        to[2 * x] = static_cast<std::uint8_t>((here + from[x == 0 ? 0 : x - 1]) / 4);
        to[2 * x + 1] = static_cast<std::uint8_t>((here + from[std::min(last, x + 1)]) / 4);
    }
}

// Makes the darkest ink black: text of little contrast would otherwise be read worse.
void stretchContrast(GreyPicture &picture)
{
    std::array<std::size_t, 256> counts{};
    std::size_t ink = 0;
    for (const std::uint8_t value : picture.pixels) {
        ++counts[value];
        ink += value < inkLimit ? 1U : 0U;
    }
    std::size_t darker = 0;
    unsigned darkest = 0;
    while (darkest < inkLimit && (darker += counts[darkest]) * 10 < ink)
        ++darkest;
    std::array<std::uint8_t, 256> stretched{};
    for (unsigned value = 0; value < stretched.size(); ++value)
        stretched[value] = static_cast<std::uint8_t>(
            value <= darkest ? 0 : (value - darkest) * 255 / std::max(1U, 255 - darkest));
    for (std::uint8_t &value : picture.pixels)
        value = stretched[value];
}

} // namespace

GreyPicture doubled(const GreyPicture &picture)
{
    GreyPicture wide(picture.width * 2, picture.height, 255);
    for (int y = 0; y < picture.height; ++y)
        doubleRow(picture.row(y), wide.row(y));
    GreyPicture result(wide.width, picture.height * 2, 255);
    for (int y = 0; y < result.height; ++y) {
        const int other = std::clamp(y / 2 + (y % 2 == 0 ? -1 : 1), 0, picture.height - 1);
        const auto near = wide.row(y / 2);
        const auto far = wide.row(other);
        auto out = result.row(y);
        for (std::size_t x = 0; x < out.size(); ++x)
            out[x] = static_cast<std::uint8_t>((3U * near[x] + far[x] + 2U) / 4);
    }
    return result;
}

BlockPicture cutBlock(const GreyPicture &normalized, const BlobMap &map, const TextBlock &block)
{
    BlockPicture cut;
    cut.source = block.box.grown(halo, normalized.width, normalized.height);
    GreyPicture own(cut.source.width, cut.source.height, 255);
    const auto width = static_cast<std::size_t>(normalized.width);
    for (const std::uint32_t blob : block.blobs) {
        const PixelBox box = map.blobs[blob].box.grown(halo, normalized.width, normalized.height);
        for (int y = box.top; y < box.bottom(); ++y) {
            const auto from = normalized.row(y);
            auto to = own.row(y - cut.source.top);
            for (int x = box.left; x < box.right(); ++x) {
                const auto at = static_cast<std::size_t>(x);
                const std::uint32_t label = map.labels[static_cast<std::size_t>(y) * width + at];
                if (label == 0 || label == blob + 1)
                    to[static_cast<std::size_t>(x - cut.source.left)] = from[at];
            }
        }
    }
    stretchContrast(own);
    cut.scale = block.letterHeight >= largeLetters ? 1 : 2;
    cut.border = paperBorder;
    cut.picture = framed(cut.scale == 2 ? doubled(own) : own, cut.border);
    return cut;
}
