#pragma once

#include <QByteArray>
#include <QString>
#include <QStringView>
#include <vector>

// Text as people count and compare it. Any thread.

// The number of extended grapheme clusters (Unicode Standard Annex 29; a CR LF is one).
[[nodiscard]] qsizetype clusterCount(QStringView text);

// The length in UTF-16 units of the first `clusters` grapheme clusters; the whole length when there are
// fewer.
[[nodiscard]] qsizetype lengthOfClusters(QStringView text, qsizetype clusters);

// Reads a text cluster by cluster, in time proportional to its length. The text must outlive the reader.
class ClusterReader {
public:
    explicit ClusterReader(QStringView whole) : text(whole) {}

    [[nodiscard]] bool atEnd() const { return position == text.size(); }
    // The next cluster; not to be called at the end.
    QStringView next();

private:
    void readAhead();

    QStringView text;
    qsizetype position = 0;
    std::vector<qsizetype> boundaries; // known beyond the position, from `upcoming` on
    size_t upcoming = 0;
};

// What a cluster is to readers: what its first scalar is that is neither a combining mark nor invisible.
// ½, Ⅳ and a keycap are numbers, a flag is neither letter nor number. A cluster of marks alone is nothing.
[[nodiscard]] bool isLetter(QStringView cluster);
[[nodiscard]] bool isNumber(QStringView cluster);
[[nodiscard]] bool isUppercase(QStringView cluster);
[[nodiscard]] bool isLowercase(QStringView cluster);

// The text without the spaces (of any width) and tabs at its ends. Line ends stay, and so does a space that
// carries a combining mark.
[[nodiscard]] QStringView withoutOuterSpaces(QStringView text);

// The full case mappings of Unicode, whatever the user's language: "ß" becomes "SS", a final "Σ" becomes "ς".
// A text too long for the result to be counted in 32 bits comes back as it is.
[[nodiscard]] QString uppercased(QStringView text);
[[nodiscard]] QString lowercased(QStringView text);
// The first cluster in upper case, all others in lower case.
[[nodiscard]] QString capitalizedWord(QStringView word);

// The UTF-8 key under which two texts are the same that differ in case and diacritics only. A text contains a
// word when indexOfKey finds the word's key in the text's.
//
// What readers see as a letter of its own stays one: kana voicing, Indic vowel signs and viramas, Thai tones,
// full and half width. The key of a text of joiners and combining marks alone is empty.
[[nodiscard]] QByteArray foldedKey(QStringView text);

// Stands between keys that lie behind each other in one buffer; no key contains it.
inline constexpr char keySeparator = '\xFF';

// Where a word's key first begins in `keys`, `from` on, but never in the middle of a character: 🇹🇫 is not in
// 🇮🇹🇫🇷. -1 when nowhere. An empty word is at `from`.
[[nodiscard]] qsizetype indexOfKey(QByteArrayView keys, QByteArrayView word, qsizetype from = 0);
