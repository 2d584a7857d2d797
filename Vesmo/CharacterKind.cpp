#include "Vesmo/Text.h"

#include <unicode/uchar.h>
#include <unicode/utf16.h>

namespace {

UChar32 scalarAt(QStringView text, qsizetype &position)
{
    const char16_t *units = text.utf16();
    UChar32 scalar = 0;
    U16_NEXT(units, position, text.size(), scalar);
    return scalar;
}

// The scalar that says what a cluster is. U_SENTINEL where there is none.
UChar32 base(QStringView cluster)
{
    if (cluster.size() == 1 && cluster.utf16()[0] < 0x80)
        return cluster.utf16()[0];
    for (qsizetype position = 0; position < cluster.size();) {
        const UChar32 scalar = scalarAt(cluster, position);
        constexpr uint32_t accessories = U_GC_MN_MASK | U_GC_ME_MASK | U_GC_CF_MASK;
        if ((U_GET_GC_MASK(scalar) & accessories) == 0)
            return scalar;
    }
    return U_SENTINEL;
}

constexpr bool isAsciiLetter(UChar32 scalar, char first)
{
    return scalar >= first && scalar < first + 26;
}

bool isHorizontalSpace(char16_t unit)
{
    return unit == u'\t' || unit == u' ' || (unit >= 0xA0 && u_charType(unit) == U_SPACE_SEPARATOR);
}

// Whether these are one character with a space before, or after them.
bool joinsSpaceBefore(QStringView text)
{
    if (text.isEmpty() || text.utf16()[0] < 0x300)
        return false;
    qsizetype position = 0;
    const int kind = u_getIntPropertyValue(scalarAt(text, position), UCHAR_GRAPHEME_CLUSTER_BREAK);
    return kind == U_GCB_EXTEND || kind == U_GCB_SPACING_MARK || kind == U_GCB_ZWJ;
}

bool joinsSpaceAfter(QStringView text)
{
    if (text.isEmpty() || text.utf16()[text.size() - 1] < 0x300)
        return false;
    UChar32 scalar = 0;
    qsizetype position = text.size();
    U16_PREV(text.utf16(), 0, position, scalar);
    return u_getIntPropertyValue(scalar, UCHAR_GRAPHEME_CLUSTER_BREAK) == U_GCB_PREPEND;
}

} // namespace

bool isLetter(QStringView cluster)
{
    const UChar32 scalar = base(cluster);
    if (scalar < 0x80)
        return isAsciiLetter(scalar, 'a') || isAsciiLetter(scalar, 'A');
    return u_hasBinaryProperty(scalar, UCHAR_ALPHABETIC);
}

bool isNumber(QStringView cluster)
{
    const UChar32 scalar = base(cluster);
    return scalar >= 0 && (U_GET_GC_MASK(scalar) & U_GC_N_MASK) != 0;
}

bool isUppercase(QStringView cluster)
{
    const UChar32 scalar = base(cluster);
    return scalar < 0x80 ? isAsciiLetter(scalar, 'A') : u_hasBinaryProperty(scalar, UCHAR_UPPERCASE);
}

bool isLowercase(QStringView cluster)
{
    const UChar32 scalar = base(cluster);
    return scalar < 0x80 ? isAsciiLetter(scalar, 'a') : u_hasBinaryProperty(scalar, UCHAR_LOWERCASE);
}

QStringView withoutOuterSpaces(QStringView text)
{
    const char16_t *units = text.utf16();
    qsizetype start = 0;
    while (start < text.size() && isHorizontalSpace(units[start]))
        ++start;
    if (start > 0 && joinsSpaceBefore(text.sliced(start)))
        --start;
    qsizetype end = text.size();
    while (end > start && isHorizontalSpace(units[end - 1]))
        --end;
    if (end < text.size() && joinsSpaceAfter(text.sliced(start, end - start)))
        ++end;
    return text.sliced(start, end - start);
}
