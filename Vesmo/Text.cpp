#include "Vesmo/Text.h"

#include <limits>
#include <memory>
#include <unicode/brkiter.h>
#include <unicode/locid.h>
#include <unicode/utext.h>

// Below U+0300 the only two units that belong together are CR LF, so that long stretches are counted in
// blocks the compiler vectorises. A stretch from U+0300 on goes to the break iterator with the unit before it
// and the unit after it: either may join it (a letter with a combining mark, a number after U+0600, © ZWJ ®).

namespace {

constexpr char16_t firstJoiningUnit = 0x300;
constexpr qsizetype blockLength = 128;
constexpr qsizetype sliceLength = 4096;

struct Extent {
    qsizetype clusters = 0;
    qsizetype length = 0; // UTF-16 units
};

bool isLineEnd(char16_t unit)
{
    return unit == u'\r' || unit == u'\n';
}

std::unique_ptr<icu::BreakIterator> makeIterator()
{
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::BreakIterator> made(
        icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
    return U_SUCCESS(status) ? std::move(made) : nullptr;
}

thread_local const std::unique_ptr<icu::BreakIterator> clusterIterator = makeIterator();

// The clusters of a slice that starts at a boundary. Where the text goes on behind the slice, its last
// cluster is left out: it may not be whole. `visit` is called with each cluster's end.
template <typename Visit>
Extent walkSlice(const char16_t *slice, qsizetype length, qsizetype wanted, bool goesOn, const Visit &visit)
{
    icu::BreakIterator *iterator = clusterIterator.get();
    UErrorCode status = U_ZERO_ERROR;
    UText source = UTEXT_INITIALIZER;
    utext_openUChars(&source, slice, length, &status);
    if (iterator)
        iterator->setText(&source, status);
    if (!iterator || U_FAILURE(status)) {
        utext_close(&source);
        const qsizetype taken = std::min(length, wanted); // no break data on this machine: units
        for (qsizetype unit = 1; unit <= taken; ++unit)
            visit(unit);
        return {taken, taken};
    }
    Extent extent;
    while (extent.clusters < wanted) {
        const int32_t boundary = iterator->next();
        if (boundary == icu::BreakIterator::DONE || (goesOn && boundary == length))
            break;
        extent = {extent.clusters + 1, boundary};
        visit(boundary);
    }
    utext_close(&source);
    return extent;
}

// The end of the stretch for the break iterator that holds `position`, or `limit` if it reaches further.
qsizetype endOfJoiningStretch(QStringView text, qsizetype position, qsizetype limit)
{
    const char16_t *units = text.utf16();
    while (position < limit) {
        while (position < limit && units[position] >= firstJoiningUnit)
            ++position;
        if (position >= limit || isLineEnd(units[position]))
            break;
        ++position;
        if (position >= limit || units[position] < firstJoiningUnit)
            break;
    }
    return position;
}

// A piece of a stretch for the break iterator, from a boundary on.
struct Slice {
    qsizetype end = 0;
    bool goesOn = false; // the stretch does, behind the slice
};

Slice nextSlice(QStringView text, qsizetype start, qsizetype firstJoining, qsizetype reach)
{
    const qsizetype limit = std::min(text.size(), start + reach);
    const qsizetype from = std::max(start, firstJoining);
    Slice slice{endOfJoiningStretch(text, std::min(from, limit), limit)};
    slice.goesOn = slice.end == limit && limit < text.size();
    if (slice.goesOn && QChar::isHighSurrogate(text.utf16()[slice.end - 1]))
        --slice.end;
    return slice;
}

Extent walkJoiningStretch(QStringView text, qsizetype start, qsizetype firstJoining, qsizetype wanted)
{
    Extent total{0, start};
    qsizetype reach = sliceLength;
    while (total.clusters < wanted) {
        const Slice slice = nextSlice(text, total.length, firstJoining, reach);
        const Extent part = walkSlice(text.utf16() + total.length, slice.end - total.length,
                                      wanted - total.clusters, slice.goesOn, [](qsizetype) {});
        total = {total.clusters + part.clusters, total.length + part.length};
        if (!slice.goesOn)
            break;
        reach = part.clusters == 0 ? reach * 2 : sliceLength;
    }
    return total;
}

struct Block {
    char16_t highest = 0;
    char16_t lineEnds = 0; // pairs of CR LF whose CR is in the block
};

// Reads one unit beyond the block.
Block inspectBlock(const char16_t *units)
{
    Block block;
    for (qsizetype i = 0; i < blockLength; ++i) {
        block.highest = std::max(block.highest, units[i]);
        block.lineEnds =
            static_cast<char16_t>(block.lineEnds + ((units[i] == u'\r') & (units[i + 1] == u'\n')));
    }
    return block;
}

// Stops at the first unit from U+0300 on.
Extent walkSimpleStretch(QStringView text, qsizetype start, qsizetype wanted)
{
    const char16_t *units = text.utf16();
    const qsizetype size = text.size();
    Extent total{0, start};
    while (total.length + blockLength < size && total.clusters + blockLength <= wanted) {
        const Block block = inspectBlock(units + total.length);
        if (block.highest >= firstJoiningUnit)
            break;
        // A pair over the block's end is counted with its LF, in the next block.
        total = {total.clusters + blockLength - block.lineEnds, total.length + blockLength};
    }
    while (total.length < size && total.clusters < wanted && units[total.length] < firstJoiningUnit) {
        const bool pair =
            units[total.length] == u'\r' && total.length + 1 < size && units[total.length + 1] == u'\n';
        total = {total.clusters + 1, total.length + (pair ? 2 : 1)};
    }
    return total;
}

// The length of the cluster at `position` where the units alone tell it, or 0.
qsizetype simpleClusterLength(QStringView text, qsizetype position)
{
    const char16_t unit = text.utf16()[position];
    if (unit >= firstJoiningUnit)
        return 0;
    if (position + 1 == text.size())
        return 1;
    const char16_t next = text.utf16()[position + 1];
    if (unit == u'\r' && next == u'\n')
        return 2;
    return next < firstJoiningUnit || isLineEnd(unit) ? 1 : 0;
}

// At most `wanted` clusters from the start of the text.
Extent walk(QStringView text, qsizetype wanted)
{
    const char16_t *units = text.utf16();
    Extent total;
    while (total.length < text.size() && total.clusters < wanted) {
        Extent part = walkSimpleStretch(text, total.length, wanted - total.clusters);
        const bool atJoining = part.length < text.size() && units[part.length] >= firstJoiningUnit;
        if (atJoining) {
            const qsizetype firstJoining = part.length;
            if (firstJoining > total.length && !isLineEnd(units[firstJoining - 1]))
                part = {part.clusters - 1, part.length - 1};
            const Extent joined =
                walkJoiningStretch(text, part.length, firstJoining, wanted - total.clusters - part.clusters);
            part = {part.clusters + joined.clusters, joined.length};
        }
        total = {total.clusters + part.clusters, part.length};
    }
    return total;
}

} // namespace

qsizetype clusterCount(QStringView text)
{
    return walk(text, std::numeric_limits<qsizetype>::max()).clusters;
}

qsizetype lengthOfClusters(QStringView text, qsizetype clusters)
{
    if (clusters <= 0)
        return 0;
    if (text.size() <= clusters) // a cluster has at least one unit
        return text.size();
    return walk(text, clusters).length;
}

QStringView ClusterReader::next()
{
    const qsizetype start = position;
    if (upcoming == boundaries.size()) {
        if (const qsizetype length = simpleClusterLength(text, position)) {
            position += length;
            return text.mid(start, length);
        }
        readAhead();
    }
    position = boundaries[upcoming++];
    return text.mid(start, position - start);
}

void ClusterReader::readAhead()
{
    boundaries.clear();
    upcoming = 0;
    const qsizetype firstJoining = position + (text.utf16()[position] < firstJoiningUnit ? 1 : 0);
    for (qsizetype reach = sliceLength; boundaries.empty(); reach *= 2) {
        const Slice slice = nextSlice(text, position, firstJoining, reach);
        walkSlice(text.utf16() + position, slice.end - position, slice.end - position, slice.goesOn,
                  [this](qsizetype end) { boundaries.push_back(position + end); });
    }
}
