#include "Vesmo/Text.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <bit>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/utf16.h>

// Nearly every code point folds to the same few bytes whatever stands around it: those come from a table,
// made once a page from the Unicode data, and ASCII goes in bulk. What is left (marks that stay and may be
// reordered, second halves of compositions) is folded together with its neighbours by the whole rule.

namespace {

// Letters whose stroke or ligature is no decomposition in Unicode, but which people type without.
struct BareLetter {
    char16_t letter;
    std::u16string_view bare;
};
constexpr BareLetter bareLetters[] = {
    {u'ø', u"o"}, {u'đ', u"d"}, {u'ł', u"l"}, {u'ħ', u"h"}, {u'ŧ', u"t"}, {u'æ', u"ae"}, {u'œ', u"oe"},
};

struct Normalizers {
    const icu::Normalizer2 *nfd = nullptr;
    const icu::Normalizer2 *nfc = nullptr;
};

const Normalizers &normalizers()
{
    static const Normalizers instances = [] {
        UErrorCode status = U_ZERO_ERROR;
        Normalizers made{icu::Normalizer2::getNFDInstance(status), icu::Normalizer2::getNFCInstance(status)};
        return U_SUCCESS(status) ? made : Normalizers{};
    }();
    return instances;
}

// Accents, Hebrew and Arabic points, joiners, variation selectors: a reader takes the letter without for the
// same. Kana voicing (combining class 8), viramas (9), Indic vowel signs (0), Thai and Tibetan marks (84 to
// 132) stay.
bool isDropped(UChar32 c)
{
    if (c == 0x200C || c == 0x200D || c == 0xAD || c == 0x640 || (c >= 0xFE00 && c <= 0xFE0F))
        return true;
    const int8_t category = u_charType(c);
    if (category == U_ENCLOSING_MARK)
        return true;
    if (category != U_NON_SPACING_MARK)
        return false;
    const int combiningClass = u_getCombiningClass(c);
    return combiningClass == 1 || combiningClass == 7 || (combiningClass >= 10 && combiningClass <= 36) ||
           (combiningClass >= 202 && combiningClass <= 240);
}

icu::UnicodeString decomposedWithoutMarks(const icu::UnicodeString &text)
{
    UErrorCode status = U_ZERO_ERROR;
    const icu::UnicodeString decomposed =
        normalizers().nfd ? normalizers().nfd->normalize(text, status) : text;
    icu::UnicodeString bare;
    for (int32_t i = 0; i < decomposed.length(); i = decomposed.moveIndex32(i, 1)) {
        const UChar32 c = decomposed.char32At(i);
        if (!isDropped(c))
            bare.append(c);
    }
    return bare;
}

icu::UnicodeString withBareLetters(const icu::UnicodeString &text)
{
    icu::UnicodeString bare;
    for (int32_t i = 0; i < text.length(); ++i) {
        const char16_t unit = text.charAt(i);
        const auto *found =
            std::find_if(std::begin(bareLetters), std::end(bareLetters),
                         [unit](const BareLetter &candidate) { return candidate.letter == unit; });
        if (found == std::end(bareLetters))
            bare.append(unit);
        else
            bare.append(found->bare.data(), static_cast<int32_t>(found->bare.size()));
    }
    return bare;
}

// The whole rule. Marks go before the folding, which turns U+0345 into a letter, and once more after it, for
// what the folding decomposes; the composition at the end keeps Hangul syllables and voiced kana whole.
icu::UnicodeString foldedWhole(icu::UnicodeString text)
{
    UErrorCode status = U_ZERO_ERROR;
    text = decomposedWithoutMarks(text);
    text.foldCase(U_FOLD_CASE_DEFAULT);
    text.findAndReplace(u"ı", u"i");
    text = withBareLetters(decomposedWithoutMarks(text));
    return normalizers().nfc ? normalizers().nfc->normalize(text, status) : text;
}

// What one code point folds to, or that its neighbours have a say in it.
struct Folded {
    static constexpr uint8_t dependsOnNeighbours = 0xFF;
    uint8_t length = 0;
    std::array<char, 7> bytes{};
};
static_assert(sizeof(Folded) == 8);

constexpr size_t pageSize = 256;
constexpr size_t pageCount = 0x110000 / pageSize;
using Page = std::array<Folded, pageSize>;

Folded folded(UChar32 c)
{
    if (U_IS_SURROGATE(c))
        return {3, {'\xEF', '\xBF', '\xBD'}}; // without its other half: no character
    const icu::UnicodeString whole = foldedWhole(icu::UnicodeString(c));
    if (whole.isEmpty())
        return {};
    Folded result;
    std::string utf8;
    whole.toUTF8String(utf8);
    const icu::Normalizer2 *nfc = normalizers().nfc;
    if (utf8.size() > result.bytes.size() || !nfc || !nfc->hasBoundaryBefore(whole.char32At(0))) {
        result.length = Folded::dependsOnNeighbours;
        return result;
    }
    result.length = static_cast<uint8_t>(utf8.size());
    std::copy(utf8.begin(), utf8.end(), result.bytes.begin());
    return result;
}

const Page &makePage(std::atomic<const Page *> &slot, size_t index)
{
    auto page = std::make_unique<Page>();
    for (size_t i = 0; i < pageSize; ++i)
        (*page)[i] = folded(static_cast<UChar32>(index * pageSize + i));
    const Page *present = nullptr;
    if (slot.compare_exchange_strong(present, page.get(), std::memory_order_acq_rel))
        return *page.release(); // for the rest of the process
    return *present;            // another thread was faster
}

const Folded &foldedByTable(UChar32 c)
{
    static std::array<std::atomic<const Page *>, pageCount> pages{};
    const size_t index = static_cast<size_t>(c) / pageSize;
    const Page *page = pages[index].load(std::memory_order_acquire);
    return (page ? *page : makePage(pages[index], index))[static_cast<size_t>(c) % pageSize];
}

// Folds a text from front to back into a buffer that grows.
class Folding {
public:
    explicit Folding(QStringView source)
        : units(source.utf16()), size(source.size()),
          key(source.size() + source.size() / 8 + slack, Qt::Uninitialized)
    {
    }

    QByteArray result()
    {
        while (position < size) {
            reserveBlock();
            foldASCII();
            if (position < size)
                foldOne();
        }
        key.truncate(length);
        return std::move(key);
    }

private:
    static constexpr qsizetype blockLength = 16;
    static constexpr qsizetype slack = 64;
    // Units; no language comes near it. Sorting many marks in one piece takes the square of their number.
    static constexpr int32_t mostTogether = 64;

    void reserveBlock()
    {
        if (key.size() - length < slack)
            key.resize(key.size() * 2);
        out = key.data();
    }

    // Lower-cases a block of units to bytes; the number of units before the first that is not ASCII.
    qsizetype foldBlock(char *to) const
    {
        const char16_t *from = units + position;
        for (qsizetype i = 0; i < blockLength; ++i) {
            const auto byte = static_cast<unsigned char>(from[i]);
            to[i] = static_cast<char>(byte | ((static_cast<unsigned char>(byte - 'A') < 26) << 5));
        }
        for (qsizetype word = 0; word < blockLength / 4; ++word) {
            uint64_t four = 0;
            std::memcpy(&four, from + word * 4, sizeof four);
            if (const uint64_t high = four & 0xFF80FF80FF80FF80)
                return word * 4 + std::countr_zero(high) / 16;
        }
        return blockLength;
    }

    void foldASCII()
    {
        while (position + blockLength <= size && key.size() - length >= slack) {
            const qsizetype taken = foldBlock(out + length);
            position += taken;
            length += taken;
            if (taken < blockLength)
                return;
        }
    }

    void foldOne()
    {
        const auto [c, next] = codePoint(position);
        const Folded &one = foldedByTable(c);
        if (one.length == Folded::dependsOnNeighbours) {
            foldWithNeighbours();
            return;
        }
        std::memcpy(out + length, one.bytes.data(), one.bytes.size());
        length += one.length;
        position = next;
    }

    struct CodePoint {
        UChar32 value;
        qsizetype next;
    };

    CodePoint codePoint(qsizetype at) const
    {
        const char16_t unit = units[at];
        if (U16_IS_LEAD(unit) && at + 1 < size && U16_IS_TRAIL(units[at + 1]))
            return {U16_GET_SUPPLEMENTARY(unit, units[at + 1]), at + 2};
        return {unit, at + 1};
    }

    // Folds the code point before that left something in the key together with all that depends on it. What
    // the table drops may stay away: it would be dropped between any two.
    void foldWithNeighbours()
    {
        icu::UnicodeString together;
        if (const auto before = takeBackLast())
            together.append(*before);
        while (position < size && together.length() < mostTogether) {
            const auto [c, next] = codePoint(position);
            const Folded &one = foldedByTable(c);
            if (one.length == Folded::dependsOnNeighbours)
                together.append(c);
            else if (one.length != 0)
                break;
            position = next;
        }
        std::string utf8;
        foldedWhole(together).toUTF8String(utf8);
        const auto added = static_cast<qsizetype>(utf8.size());
        if (key.size() - length < added + slack)
            key.resize((key.size() + added) * 2);
        out = key.data();
        std::memcpy(out + length, utf8.data(), utf8.size());
        length += added;
    }

    // The last code point that the table put into the key, which it leaves again.
    std::optional<UChar32> takeBackLast()
    {
        qsizetype start = position;
        while (start > 0) {
            const bool pair = start >= 2 && U16_IS_TRAIL(units[start - 1]) && U16_IS_LEAD(units[start - 2]);
            start -= pair ? 2 : 1;
            const UChar32 c = codePoint(start).value;
            const Folded &before = foldedByTable(c);
            if (before.length == Folded::dependsOnNeighbours)
                return std::nullopt;
            if (before.length == 0)
                continue;
            length -= before.length;
            return c;
        }
        return std::nullopt;
    }

    const char16_t *units;
    qsizetype size;
    qsizetype position = 0;
    QByteArray key;
    char *out = nullptr;
    qsizetype length = 0; // bytes of the key that are filled
};

} // namespace

QByteArray foldedKey(QStringView text)
{
    return Folding(text).result();
}
