#pragma once

#include <QByteArray>
#include <QString>
#include <QStringView>

// Text as people count and compare it. Any thread.

// The number of extended grapheme clusters (Unicode Standard Annex 29; a CR LF is one).
[[nodiscard]] qsizetype clusterCount(QStringView text);

// The length in UTF-16 units of the first `clusters` grapheme clusters; the whole length when there are
// fewer.
[[nodiscard]] qsizetype lengthOfClusters(QStringView text, qsizetype clusters);

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
