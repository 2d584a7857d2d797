#pragma once

#include "Norvane/store/Clip.h"

#include <QString>

// What a clip is called in lists and menus. Main thread. "Character" is a grapheme cluster throughout.

inline constexpr qsizetype listTitleLength = 240;

// One line: the text's beginning, line breaks shown as ⏎; of an image its recognised text or its measures; of
// files their names. At most maxLength characters, then "…".
[[nodiscard]] QString titleText(const Clip &clip, qsizetype maxLength);

// Application, age, and length, measures or size.
[[nodiscard]] QString detailText(const Clip &clip);

// "adesso" below 45 seconds and in the future, else the largest unit of which at least one whole has passed.
// `date` in seconds since the reference date.
[[nodiscard]] QString relativeTime(double date);

// Day and time as the application's language and the user's region write them: "5 mar 2024, 14:07",
// "Mar 5, 2024, 2:07 PM". `date` as above.
[[nodiscard]] QString dateText(double date);

// Bytes as a file manager shows them: decimal units, no decimals for kB, one for MB, two above.
[[nodiscard]] QString byteCountText(qint64 bytes);
