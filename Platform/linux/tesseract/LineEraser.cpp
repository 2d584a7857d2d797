#include "Platform/linux/tesseract/LineEraser.h"

namespace {

// Rules are often fainter than text can be; left alone, the corners of their frames stay.
constexpr std::uint8_t faintestRule = 250;
constexpr int maxThickness = 3;
constexpr int minLengthAcross = 50;
constexpr int minLengthDown = 30;
// A run through touching letters is thicker than a rule nearly everywhere; one that strikes letters out is
// thin between and within them.
constexpr double minThinShare = 0.6;
constexpr double minThinShareAcross = 0.3;

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
            out[x] = ink[x] < faintestRule ? static_cast<std::uint8_t>(std::min(255, before + 1))
                                           : std::uint8_t{0};
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
                static_cast<double>(thin) >= minThinShareAcross * static_cast<double>(length)) {
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

// Rules that end at the left, right, upper or lower side of a box.
struct EndsOfRules {
    int left = 0;
    int right = 0;
    int above = 0;
    int below = 0;
};

EndsOfRules endsAt(const GreyPicture &erased, const PixelBox &box)
{
    const auto isErased = [&erased](int x, int y) {
        return x >= 0 && y >= 0 && x < erased.width && y < erased.height &&
               erased.row(y)[static_cast<std::size_t>(x)] != 0;
    };
    // A thick rule may begin above the box.
    const auto beginsAt = [&](int x, int y) {
        return isErased(x, y) && (y < box.top || !isErased(x, y - 1)) ? 1 : 0;
    };
    EndsOfRules ends;
    for (int y = box.top - 1; y <= box.bottom(); ++y) {
        ends.left += beginsAt(box.left - 1, y);
        ends.right += beginsAt(box.right(), y);
    }
    // A rule across that runs along the upper or lower side ends at none of the two.
    const auto endsOn = [&](int y) {
        int found = 0;
        for (int x = box.left; x < box.right(); ++x) {
            int width = 0;
            while (width <= maxThickness && isErased(x + width, y))
                ++width;
            found += width > 0 && width <= maxThickness && !isErased(x - 1, y) ? 1 : 0;
        }
        return found;
    };
    ends.above = endsOn(box.top - 1);
    ends.below = endsOn(box.bottom());
    return ends;
}

} // namespace

GreyPicture eraseLines(GreyPicture &picture)
{
    const GreyPicture lengths = thicknessDown(picture);
    GreyPicture erased(picture.width, picture.height, 0);
    markAcross(lengths, erased);
    markDown(lengths, erased);
    for (std::size_t i = 0; i < picture.pixels.size(); ++i) {
        if (erased.pixels[i] != 0)
            picture.pixels[i] = 255;
    }
    return erased;
}

void findFrameParts(GreyPicture erased, BlobMap &map)
{
    constexpr int maxSide = 48;
    for (Blob &blob : map.blobs) {
        if (std::min(blob.box.width, blob.box.height) > maxSide / 2 ||
            std::max(blob.box.width, blob.box.height) > maxSide)
            continue;
        const EndsOfRules ends = endsAt(erased, blob.box);
        const bool isCrossing = std::max(blob.box.width, blob.box.height) <= maxThickness + 1;
        const bool isCrossed =
            !isCrossing && ((ends.left > 0 && ends.right > 0) || (ends.above > 0 && ends.below > 0));
        blob.isText = isCrossed || ends.left + ends.right + ends.above + ends.below < 2;
    }
    map.rules = std::move(erased);
}
