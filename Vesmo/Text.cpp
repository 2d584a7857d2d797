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

icu::BreakIterator *clusterIterator()
{
    thread_local const std::unique_ptr<icu::BreakIterator> iterator = [] {
        UErrorCode status = U_ZERO_ERROR;
        std::unique_ptr<icu::BreakIterator> made(
            icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
        return U_SUCCESS(status) ? std::move(made) : nullptr;
    }();
    return iterator.get();
}

// The clusters of a slice that starts at a boundary. Where the text goes on behind the slice, its last
// cluster is left out: it may not be whole.
Extent walkSlice(const char16_t *slice, qsizetype length, qsizetype wanted, bool goesOn)
{
    icu::BreakIterator *iterator = clusterIterator();
    UErrorCode status = U_ZERO_ERROR;
    UText source = UTEXT_INITIALIZER;
    utext_openUChars(&source, slice, length, &status);
    if (iterator)
        iterator->setText(&source, status);
    if (!iterator || U_FAILURE(status)) {
        utext_close(&source);
        const qsizetype taken = std::min(length, wanted); // no break data on this machine: units
        return {taken, taken};
    }
    Extent extent;
    while (extent.clusters < wanted) {
        const int32_t boundary = iterator->next();
        if (boundary == icu::BreakIterator::DONE || (goesOn && boundary == length))
            break;
        extent = {extent.clusters + 1, boundary};
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

Extent walkJoiningStretch(QStringView text, qsizetype start, qsizetype firstJoining, qsizetype wanted)
{
    Extent total{0, start};
    qsizetype reach = sliceLength;
    while (total.clusters < wanted) {
        const qsizetype limit = std::min(text.size(), total.length + reach);
        const qsizetype from = std::max(total.length, firstJoining);
        qsizetype end = endOfJoiningStretch(text, std::min(from, limit), limit);
        const bool goesOn = end == limit && limit < text.size();
        if (goesOn && QChar::isHighSurrogate(text.utf16()[end - 1]))
            --end;
        const Extent part =
            walkSlice(text.utf16() + total.length, end - total.length, wanted - total.clusters, goesOn);
        total = {total.clusters + part.clusters, total.length + part.length};
        if (!goesOn)
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
