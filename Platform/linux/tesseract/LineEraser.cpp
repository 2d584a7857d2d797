#include "Platform/linux/tesseract/LineEraser.h"

namespace {

constexpr int maxThickness = 3;
constexpr int minLengthAcross = 50;
constexpr int minLengthDown = 30;
// A run through touching letters is mostly thicker than a rule.
constexpr double minThinShare = 0.6;

// For each pixel the length of the run of ink down through it, 0 for paper, at most 255.
GreyPicture thicknessDown(const GreyPicture &picture)
{
    GreyPicture lengths(picture.width, picture.height, 0);
    for (int y = 0; y < picture.height; ++y) {
        const auto ink = picture.row(y);
        const auto above = lengths.row(std::max(0, y - 1));
        auto out = lengths.row(y);
        for (std::size_t x = 0; x < ink.size(); ++x) {
            const int before = y > 0 ? above[x] : 0;
            out[x] = ink[x] < inkLimit ? static_cast<std::uint8_t>(std::min(255, before + 1)) : std::uint8_t{0};
        }
    }
    for (int y = picture.height - 2; y >= 0; --y) {
        const auto below = lengths.row(y + 1);
        auto out = lengths.row(y);
        for (std::size_t x = 0; x < out.size(); ++x) {
            if (out[x] != 0 && below[x] != 0)
                out[x] = below[x];
        }
    }
    return lengths;
}

// Rules across: marks what is to go in `erased`.
void markAcross(const GreyPicture &lengths, GreyPicture &erased)
{
    for (int y = 0; y < lengths.height; ++y) {
        const auto down = lengths.row(y);
        auto out = erased.row(y);
        std::size_t begin = 0;
        std::size_t thin = 0;
        for (std::size_t x = 0; x <= down.size(); ++x) {
            if (x < down.size() && down[x] != 0) {
                thin += down[x] <= maxThickness ? 1U : 0U;
                continue;
            }
            const std::size_t length = x - begin;
            if (length >= minLengthAcross &&
                static_cast<double>(thin) >= minThinShare * static_cast<double>(length)) {
                for (std::size_t i = begin; i < x; ++i)
                    out[i] = down[i] <= maxThickness ? 1 : 0;
            }
            begin = x + 1;
            thin = 0;
        }
    }
}

// Marks ink that is part of a run across of at most the thickness of a rule.
void markThinAcross(std::span<const std::uint8_t> ink, std::span<std::uint8_t> thin)
{
    std::size_t begin = 0;
    for (std::size_t x = 0; x <= ink.size(); ++x) {
        if (x < ink.size() && ink[x] != 0)
            continue;
        const bool isThin = x > begin && x - begin <= maxThickness;
        std::fill(thin.begin() + static_cast<std::ptrdiff_t>(begin),
                  thin.begin() + static_cast<std::ptrdiff_t>(x), isThin ? std::uint8_t{1} : std::uint8_t{0});
        begin = x + 1;
    }
}

struct ColumnRun {
    int length = 0;
    int thin = 0;
};

// Rules down: marks what is to go in `erased`.
void markDown(const GreyPicture &lengths, GreyPicture &erased)
{
    GreyPicture thin(lengths.width, lengths.height, 0);
    std::vector<ColumnRun> runs(static_cast<std::size_t>(lengths.width));
    for (int y = 0; y < lengths.height; ++y) {
        const auto ink = lengths.row(y);
        auto thinRow = thin.row(y);
        markThinAcross(ink, thinRow);
        const bool isLast = y + 1 == lengths.height;
        for (std::size_t x = 0; x < runs.size(); ++x) {
            ColumnRun &run = runs[x];
            if (ink[x] != 0) {
                ++run.length;
                run.thin += thinRow[x];
                if (!isLast)
                    continue;
            }
            const int end = ink[x] != 0 ? y + 1 : y;
            if (run.length >= minLengthDown && run.thin >= minThinShare * run.length) {
                for (int i = end - run.length; i < end; ++i)
                    erased.row(i)[x] = std::max(erased.row(i)[x], thin.row(i)[x]);
            }
            run = {};
        }
    }
}

} // namespace

void eraseLines(GreyPicture &picture)
{
    const GreyPicture lengths = thicknessDown(picture);
    GreyPicture erased(picture.width, picture.height, 0);
    markAcross(lengths, erased);
    markDown(lengths, erased);
    for (std::size_t i = 0; i < picture.pixels.size(); ++i) {
        if (erased.pixels[i] != 0)
            picture.pixels[i] = 255;
    }
}
