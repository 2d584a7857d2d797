#pragma once

#include <QByteArray>
#include <QString>
#include <QStringView>

// Text as people count and compare it. Any thread.

// The number of extended grapheme clusters (Unicode Standard Annex 29; a CR LF is one).
[[nodiscard]] qsizetype clusterCount(QStringView text);

// The length in UTF-16 units of the first `clusters` grapheme clusters; the whole length when there are fewer.
[[nodiscard]] qsizetype lengthOfClusters(QStringView text, qsizetype clusters);

// The UTF-8 key under which two texts are the same that differ in case and diacritics only. A text contains a word
// when its key contains the word's key.
[[nodiscard]] QByteArray foldedKey(QStringView text);
