#include "Vesmo/ByteSearch.h"
#include "Vesmo/Text.h"

#include <algorithm>
#include <iterator>
#include <unicode/uchar.h>
#include <unicode/uscript.h>
#include <unicode/utf8.h>

// A run over the bytes of the keys, whose finds are looked at: what begins in the middle of a character is no
// find.

namespace {

int clusterBreak(UChar32 c)
{
    return u_getIntPropertyValue(c, UCHAR_GRAPHEME_CLUSTER_BREAK);
}

// The code point that ends before `end`, and where it begins.
UChar32 codePointBefore(QByteArrayView keys, qsizetype end, qsizetype &begin)
{
    const auto *bytes = reinterpret_cast<const uint8_t *>(keys.data());
    UChar32 c = 0;
    qsizetype i = end - 1;
    while (i > 0 && end - i < 4 && U8_IS_TRAIL(bytes[i]))
        --i;
    begin = i;
    U8_NEXT(bytes, i, end, c);
    return c;
}

// Whether a flag lacks its second half at a position. Positions come in rising order, and each walks back to
// the one before at most: a text of many flags would take the square of their number otherwise.
class FlagHalves {
public:
    bool isOpen(QByteArrayView keys, qsizetype position)
    {
        bool open = false;
        qsizetype at = position;
        qsizetype begin = 0;
        while (at > known && clusterBreak(codePointBefore(keys, at, begin)) == U_GCB_REGIONAL_INDICATOR) {
            open = !open;
            at = begin;
        }
        if (at == known) // all halves back to there
            open ^= openAtKnown;
        known = position;
        openAtKnown = open;
        return open;
    }

private:
    qsizetype known = 0;
    bool openAtKnown = false;
};

bool isLinkingConsonant(UChar32 c)
{
    constexpr UScriptCode linking[] = {USCRIPT_BENGALI,   USCRIPT_DEVANAGARI, USCRIPT_GUJARATI,
                                       USCRIPT_MALAYALAM, USCRIPT_ORIYA,      USCRIPT_TELUGU};
    UErrorCode status = U_ZERO_ERROR;
    const UScriptCode script = uscript_getScript(c, &status);
    return u_getIntPropertyValue(c, UCHAR_INDIC_SYLLABIC_CATEGORY) == U_INSC_CONSONANT &&
           std::find(std::begin(linking), std::end(linking), script) != std::end(linking);
}

bool isVirama(UChar32 c)
{
    return u_getIntPropertyValue(c, UCHAR_INDIC_SYLLABIC_CATEGORY) == U_INSC_VIRAMA;
}

// The rules of Unicode Standard Annex 29, and the one for Indic conjuncts that the cluster count follows too,
// for what stands in keys: they have no joiners left.
bool isCharacterStart(QByteArrayView keys, qsizetype position, UChar32 first, FlagHalves &flags)
{
    if (position == 0 || keys[position - 1] == keySeparator)
        return true;
    qsizetype begin = 0;
    const UChar32 previous = codePointBefore(keys, position, begin);
    if (first < 0x300 && previous < 0x300)
        return !(previous == '\r' && first == '\n');
    const int before = clusterBreak(previous);
    const int after = clusterBreak(first);
    const auto isControl = [](int kind) {
        return kind == U_GCB_CONTROL || kind == U_GCB_CR || kind == U_GCB_LF;
    };
    if (isControl(before) || isControl(after))
        return true;
    if (after == U_GCB_EXTEND || after == U_GCB_ZWJ || after == U_GCB_SPACING_MARK || before == U_GCB_PREPEND)
        return false;
    if (before == U_GCB_L)
        return !(after == U_GCB_L || after == U_GCB_V || after == U_GCB_LV || after == U_GCB_LVT);
    if (before == U_GCB_LV || before == U_GCB_V)
        return !(after == U_GCB_V || after == U_GCB_T);
    if (before == U_GCB_LVT || before == U_GCB_T)
        return after != U_GCB_T;
    if (isVirama(previous))
        return !isLinkingConsonant(first);
    return after != U_GCB_REGIONAL_INDICATOR || !flags.isOpen(keys, position);
}

} // namespace

qsizetype indexOfKey(QByteArrayView keys, QByteArrayView word, qsizetype from)
{
    if (word.isEmpty())
        return from;
    const auto *bytes = reinterpret_cast<const uint8_t *>(word.data());
    UChar32 first = 0;
    qsizetype read = 0;
    U8_NEXT(bytes, read, word.size(), first);
    FlagHalves flags;
    while (from < keys.size()) {
        const qsizetype position = indexOfBytes(keys, word, from);
        if (position < 0 || isCharacterStart(keys, position, first, flags))
            return position;
        from = position + 1;
    }
    return -1;
}
