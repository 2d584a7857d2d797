#pragma once

#include "Platform/linux/tesseract/Pixels.h"

#include <cmath>

// Finds which of many boxes touch a given one, without looking at all of them: boxes are kept in bands of
// rows, each sorted by the left edge. Borrows the boxes.
class BoxIndex {
public:
    explicit BoxIndex(const std::vector<PixelBox> &all) : boxes(all)
    {
        for (const PixelBox &box : boxes) {
            lowest = std::min(lowest, box.top);
            highest = std::max(highest, box.bottom());
        }
        bands.resize(static_cast<std::size_t>((highest - lowest) / bandHeight) + 1);
        std::vector<std::uint32_t> order(boxes.size());
        for (std::uint32_t i = 0; i < order.size(); ++i)
            order[i] = i;
        std::sort(order.begin(), order.end(),
                  [this](std::uint32_t a, std::uint32_t b) { return boxes[a].left < boxes[b].left; });
        for (const std::uint32_t member : order) {
            for (std::size_t band = bandOf(boxes[member].top); band <= bandOf(boxes[member].bottom() - 1);
                 ++band) {
                bands[band].members.push_back(member);
                bands[band].widest = std::max(bands[band].widest, boxes[member].width);
            }
        }
    }

    // Calls `found(index)` once for each box that shares a pixel with the zone.
    template <typename Found>
    void forEachTouching(const PixelBox &zone, const Found &found) const
    {
        if (boxes.empty() || zone.width <= 0 || zone.height <= 0)
            return;
        const std::size_t first = bandOf(zone.top);
        for (std::size_t number = first; number <= bandOf(zone.bottom() - 1); ++number) {
            const Band &band = bands[number];
            auto it = std::lower_bound(
                band.members.begin(), band.members.end(), zone.left - band.widest,
                [this](std::uint32_t member, int left) { return boxes[member].left < left; });
            for (; it != band.members.end() && boxes[*it].left < zone.right(); ++it) {
                const PixelBox &box = boxes[*it];
                const bool seenBefore = number > first && bandOf(box.top) < number;
                if (!seenBefore && box.sharedRows(zone) > 0 && box.sharedColumns(zone) > 0)
                    found(*it);
            }
        }
    }

private:
    struct Band {
        std::vector<std::uint32_t> members;
        int widest = 0;
    };

    [[nodiscard]] std::size_t bandOf(int y) const
    {
        return static_cast<std::size_t>((std::clamp(y, lowest, highest) - lowest) / bandHeight);
    }

    static constexpr int bandHeight = 16;
    const std::vector<PixelBox> &boxes;
    std::vector<Band> bands;
    int lowest = 0;
    int highest = 0;
};
