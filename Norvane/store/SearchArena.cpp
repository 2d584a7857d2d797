#include "Norvane/store/SearchArena.h"

#include "Vesmo/Text.h"

#include <algorithm>
#include <limits>

namespace {

constexpr qsizetype segmentLength = 1 << 20; // bytes; about what the worker folds in one go
constexpr size_t keysAhead = 6;
constexpr quint32 noRecord = std::numeric_limits<quint32>::max();

quint32 endOfKey(const FoldedKeys &block, size_t index)
{
    return index + 1 < block.keys.size() ? block.keys[index + 1].start
                                         : static_cast<quint32>(block.bytes.size());
}

} // namespace

void SearchArena::add(FoldedKeys block, const std::function<bool(const FoldedKeys::Key &)> &wanted)
{
    const bool whole = std::all_of(block.keys.begin(), block.keys.end(), wanted);
    if (whole && block.bytes.size() >= segmentLength / 4) {
        adopt(std::move(block));
        return;
    }
    for (size_t i = 0; i < block.keys.size(); ++i) {
        const auto &key = block.keys[i];
        if (wanted(key))
            append(key.record, QByteArrayView(block.bytes).sliced(key.start, endOfKey(block, i) - key.start));
    }
}

void SearchArena::discard(Place place)
{
    Segment &segment = segments[place.segment];
    const auto entry = std::lower_bound(segment.entries.begin(), segment.entries.end(), place.start,
                                        [](const Entry &one, quint32 start) { return one.start < start; });
    entry->record = noRecord;
    segment.garbage += place.length;
    packIfWasteful(place.segment);
}

QByteArrayView SearchArena::key(Place place) const
{
    return QByteArrayView(segments[place.segment].bytes).sliced(place.start, place.length);
}

void SearchArena::search(QByteArrayView word, const std::function<void(quint32)> &found) const
{
    for (const auto &segment : segments) {
        size_t entry = 0;
        qsizetype position = 0;
        while (entry < segment.entries.size() &&
               (position = indexOfKey(segment.bytes, word, position)) >= 0) {
            while (entry + 1 < segment.entries.size() && segment.entries[entry + 1].start <= position)
                ++entry;
            if (segment.entries[entry].record != noRecord)
                found(segment.entries[entry].record);
            if (++entry < segment.entries.size())
                position = segment.entries[entry].start;
            if (entry + keysAhead < segment.entries.size()) // a frequent word goes from key to key
                __builtin_prefetch(segment.bytes.constData() + segment.entries[entry + keysAhead].start);
        }
    }
}

qsizetype SearchArena::size() const
{
    qsizetype sum = 0;
    for (const auto &segment : segments)
        sum += segment.bytes.size();
    return sum;
}

void SearchArena::append(quint32 record, QByteArrayView key)
{
    if (!open || segments[*open].bytes.size() >= segmentLength)
        open = emptySegment();
    Segment &segment = segments[*open];
    const auto start = static_cast<quint32>(segment.bytes.size());
    segment.bytes.append(key);
    segment.entries.push_back({start, record});
    placed(record, {static_cast<quint32>(*open), start, static_cast<quint32>(key.size())});
}

void SearchArena::adopt(FoldedKeys block)
{
    const size_t index = emptySegment();
    Segment &segment = segments[index];
    segment.entries.reserve(block.keys.size());
    for (size_t i = 0; i < block.keys.size(); ++i) {
        const auto &key = block.keys[i];
        segment.entries.push_back({key.start, key.record});
        placed(key.record, {static_cast<quint32>(index), key.start, endOfKey(block, i) - key.start});
    }
    segment.bytes = std::move(block.bytes);
}

size_t SearchArena::emptySegment()
{
    const auto unused = std::find_if(segments.begin(), segments.end(),
                                     [](const Segment &one) { return one.entries.empty(); });
    if (unused != segments.end())
        return static_cast<size_t>(unused - segments.begin());
    segments.emplace_back();
    return segments.size() - 1;
}

void SearchArena::packIfWasteful(size_t index)
{
    if (segments[index].garbage * 2 <= segments[index].bytes.size())
        return;
    const Segment old = std::exchange(segments[index], {});
    if (open == index)
        open.reset();
    for (size_t i = 0; i < old.entries.size(); ++i) {
        const auto &[start, record] = old.entries[i];
        const auto end = i + 1 < old.entries.size() ? old.entries[i + 1].start : old.bytes.size();
        if (record != noRecord)
            append(record, QByteArrayView(old.bytes).sliced(start, end - start));
    }
}
