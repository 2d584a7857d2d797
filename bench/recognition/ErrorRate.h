#pragma once

#include <QString>

// How much of a text was read wrongly.

// NFC, kinds of quotes, dashes and dots made one, white space made single blanks.
[[nodiscard]] QString comparable(const QString &text);

// Least number of characters to insert, delete or change that turns one into the other.
[[nodiscard]] qsizetype editDistance(const QString &from, const QString &to);
