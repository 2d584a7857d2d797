#include "Platform/linux/tesseract/Blobs.h"

namespace {

// Ink beside each other in one row.
struct Run {
    int y = 0;
    int begin = 0;
    int end = 0;
};

// Runs of this row that touch one of the row above, corners included.
void joinRows(const std::vector<Run> &runs, DisjointSets &sets, std::size_t previous, std::size_t current)
{
    const std::size_t previousEnd = current;
    while (previous < previousEnd && current < runs.size()) {
        if (runs[previous].begin <= runs[current].end && runs[current].begin <= runs[previous].end)
            sets.join(static_cast<std::uint32_t>(previous), static_cast<std::uint32_t>(current));
        if (runs[previous].end < runs[current].end)
            ++previous;
        else
            ++current;
    }
}

} // namespace

BlobMap findBlobs(const GreyPicture &picture)
{
    std::vector<Run> runs;
    DisjointSets sets;
    std::size_t previous = 0;
    for (int y = 0; y < picture.height; ++y) {
        const auto row = picture.row(y);
        const std::size_t current = runs.size();
        for (int x = 0; x < picture.width; ++x) {
            if (row[static_cast<std::size_t>(x)] >= inkLimit)
                continue;
            const int begin = x;
            while (x < picture.width && row[static_cast<std::size_t>(x)] < inkLimit)
                ++x;
            runs.push_back({y, begin, x});
            sets.add();
        }
        joinRows(runs, sets, previous, current);
        previous = current;
    }

    BlobMap map;
    map.width = picture.width;
    map.labels.assign(picture.pixels.size(), 0);
    std::vector<std::uint32_t> numbers(runs.size(), 0);
    for (std::uint32_t i = 0; i < runs.size(); ++i) {
        const Run &run = runs[i];
        const PixelBox box{run.begin, run.y, run.end - run.begin, 1};
        std::uint32_t &number = numbers[sets.root(i)];
        if (number == 0) {
            map.blobs.push_back({box, 0, true});
            number = static_cast<std::uint32_t>(map.blobs.size());
        }
        Blob &blob = map.blobs[number - 1];
        blob.box = blob.box.united(box);
        blob.area += box.width;
        const auto start = static_cast<std::ptrdiff_t>(run.y) * picture.width;
        std::fill(map.labels.begin() + start + run.begin, map.labels.begin() + start + run.end, number);
    }
    return map;
}
