#pragma once

#include <QString>
#include <array>
#include <optional>
#include <span>

// Conversions of a clip's plain text on its way to the pasteboard. The enumerators' names are their raw
// values.
enum class TextTransform {
    upper,
    lower,
    capitalized,      // first letters of words
    sentence,         // the first letter of the whole text, all others lowered
    trimLines,        // spaces and tabs at the ends of every line
    singleLine,       // trimmed lines that are not empty, joined by a space
    removeEmptyLines, // also those of spaces and tabs alone
    camel,
    snake,
    kebab,
    quoted, // a JSON string
    urlEncode,
    urlDecode,
    base64Encode,
    base64Decode,
};

namespace TextTransforms {

inline constexpr std::array allCases = {
    TextTransform::upper,
    TextTransform::lower,
    TextTransform::capitalized,
    TextTransform::sentence,
    TextTransform::trimLines,
    TextTransform::singleLine,
    TextTransform::removeEmptyLines,
    TextTransform::camel,
    TextTransform::snake,
    TextTransform::kebab,
    TextTransform::quoted,
    TextTransform::urlEncode,
    TextTransform::urlDecode,
    TextTransform::base64Encode,
    TextTransform::base64Decode,
};

// As menus show them, with a separator between two groups: letter case, lines, identifiers, encodings.
inline constexpr std::array groups = {
    std::span(allCases).subspan(0, 4),
    std::span(allCases).subspan(4, 3),
    std::span(allCases).subspan(7, 3),
    std::span(allCases).subspan(10, 5),
};

} // namespace TextTransforms

[[nodiscard]] QString rawValue(TextTransform transform);

// Absent for any text that is no raw value.
[[nodiscard]] std::optional<TextTransform> textTransform(QStringView rawValue);

// The transform's name in menus.
[[nodiscard]] QString title(TextTransform transform);

// The converted text. Never fails: a text that cannot be converted (no Base64, a malformed percent sequence,
// half a surrogate pair where bytes are asked for) comes back unchanged. Any thread; time is proportional to
// the text's length.
[[nodiscard]] QString apply(TextTransform transform, const QString &text);
