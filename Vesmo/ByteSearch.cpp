#include "Vesmo/ByteSearch.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdlib>
#include <cstring>
#include <string_view>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace {

// Bytes of keys, the most frequent last: Italian and English texts, counted together.
constexpr std::string_view byFrequency =
    "#@$&%~^`{}[]\\|<>*+=!?;\"()_:/'-,.\n9876543xjkwyqzb210fhvgpmducslrtnoaie ";
constexpr qsizetype bytesLookedAt = 64; // of a word, for its rarest ones

// What comparing in vain costs: so many bytes more than those of the word, of which a byte of the text may
// cost so many.
constexpr qsizetype comparison = 16, budget = 8;

constexpr auto ranks = [] {
    std::array<uint8_t, 256> made{};
    for (size_t i = 0; i < byFrequency.size(); ++i)
        made[static_cast<uint8_t>(byFrequency[i])] = static_cast<uint8_t>(i + 1);
    // A word of another script is mostly looked for in texts of that script, where few first bytes and any
    // second ones stand.
    for (size_t byte = 0x80; byte < 0xC0; ++byte)
        made[byte] = static_cast<uint8_t>(byFrequency.size() / 2);
    for (size_t byte = 0xC0; byte < 0xF8; ++byte)
        made[byte] = static_cast<uint8_t>(byFrequency.size());
    return made;
}();

uint8_t rank(char byte)
{
    return ranks[static_cast<uint8_t>(byte)];
}

qsizetype rarest(QByteArrayView word)
{
    const auto less = [](char a, char b) { return rank(a) < rank(b); };
    return std::min_element(word.begin(), word.end(), less) - word.begin();
}

// Another place than `first`, with another byte if there is one, rather not beside it: a letter and its
// neighbour, as in "qu", tell hardly more than the letter.
qsizetype secondRarest(QByteArrayView word, qsizetype first)
{
    constexpr int sameByte = 1000, neighbour = 20;
    const auto cost = [&](qsizetype place) {
        return rank(word[place]) + (word[place] == word[first] ? sameByte : 0) +
               (std::abs(place - first) == 1 ? neighbour : 0);
    };
    qsizetype best = first == 0 ? word.size() - 1 : 0;
    for (qsizetype i = 0; i < word.size(); ++i) {
        if (i != first && cost(i) < cost(best))
            best = i;
    }
    return best;
}

// Sixteen bytes, for which g++ and clang make vector instructions on every processor that has them.
using Block = uint8_t __attribute__((vector_size(16)));
constexpr qsizetype blockSize = sizeof(Block);
constexpr qsizetype blocksAtOnce = 4;

Block blockOf(char byte)
{
    return Block{} + static_cast<uint8_t>(byte);
}

Block load(const char *from)
{
    Block block;
    std::memcpy(&block, from, sizeof block);
    return block;
}

bool isEmpty(Block found)
{
#ifdef __SSE2__
    return _mm_movemask_epi8(reinterpret_cast<__m128i>(found)) == 0;
#else
    uint64_t halves[2];
    std::memcpy(halves, &found, sizeof halves);
    return (halves[0] | halves[1]) == 0;
#endif
}

// One bit a byte, the first one lowest.
uint32_t bits(Block found)
{
#ifdef __SSE2__
    return static_cast<uint32_t>(_mm_movemask_epi8(reinterpret_cast<__m128i>(found)));
#else
    uint32_t sum = 0;
    for (uint32_t i = 0; i < blockSize; ++i)
        sum |= (found[i] & 1U) << i;
    return sum;
#endif
}

// One search: where it looks and what it has spent on places that were none.
class Search {
public:
    Search(QByteArrayView text, QByteArrayView searched, qsizetype from)
        : word(searched), first(text.data() + from), end(text.data() + text.size()), last(end - word.size()),
          place(first)
    {
        const QByteArrayView start = word.first(std::min(word.size(), bytesLookedAt));
        one = rarest(start);
        other = secondRarest(start, one);
        oneByte = blockOf(word[one]);
        otherByte = blockOf(word[other]);
    }

    [[nodiscard]] const char *run()
    {
        for (; last - place >= blocksAtOnce * blockSize - 1; place += blocksAtOnce * blockSize) {
            Block found[blocksAtOnce];
            for (qsizetype i = 0; i < blocksAtOnce; ++i)
                found[i] = candidates(place + i * blockSize);
            if (isEmpty(found[0] | found[1] | found[2] | found[3]))
                continue;
            for (qsizetype i = 0; i < blocksAtOnce; ++i) {
                if (const char *match = firstMatch(place + i * blockSize, bits(found[i])))
                    return match;
            }
            if (isTooDear())
                return rest();
        }
        for (; last - place >= blockSize - 1; place += blockSize) {
            if (const char *match = firstMatch(place, bits(candidates(place))))
                return match;
        }
        return rest();
    }

private:
    [[nodiscard]] Block candidates(const char *at) const
    {
        return reinterpret_cast<Block>((load(at + one) == oneByte) & (load(at + other) == otherByte));
    }

    [[nodiscard]] const char *firstMatch(const char *at, uint32_t found)
    {
        for (; found != 0; found &= found - 1) {
            const char *candidate = at + std::countr_zero(found);
            if (std::memcmp(candidate, word.data(), static_cast<size_t>(word.size())) == 0)
                return candidate;
            spent += word.size() + comparison;
        }
        return nullptr;
    }

    [[nodiscard]] bool isTooDear() const { return spent > (place - first + bytesLookedAt) * budget; }

    [[nodiscard]] const char *rest() const
    {
        return static_cast<const char *>(
            memmem(place, static_cast<size_t>(end - place), word.data(), static_cast<size_t>(word.size())));
    }

    const QByteArrayView word;
    const char *const first;
    const char *const end;
    const char *const last; // place of the word
    const char *place;      // looked at next
    qsizetype one = 0;      // of the word's bytes
    qsizetype other = 0;
    Block oneByte;
    Block otherByte;
    qsizetype spent = 0; // in vain
};

} // namespace

qsizetype indexOfBytes(QByteArrayView text, QByteArrayView word, qsizetype from)
{
    if (word.isEmpty())
        return from;
    if (text.size() - from < word.size())
        return -1;
    const void *found = nullptr;
    if (word.size() == 1)
        found = std::memchr(text.data() + from, word[0], static_cast<size_t>(text.size() - from));
    else
        found = Search(text, word, from).run();
    return found ? static_cast<const char *>(found) - text.data() : -1;
}

int commonness(QByteArrayView word)
{
    const QByteArrayView start = word.first(std::min(word.size(), bytesLookedAt));
    return start.isEmpty() ? 0 : rank(start[rarest(start)]);
}
