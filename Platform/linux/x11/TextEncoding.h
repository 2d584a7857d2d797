#pragma once

#include <QByteArray>
#include <optional>

// Plain text as it crosses the clipboard. Inside the program text is always UTF-8.

// STRING, TEXT and text/plain do not say what they hold: Latin-1 by the standard, UTF-8 in half of the
// programs. Strict UTF-8 is tried first.
[[nodiscard]] QByteArray utf8FromUnlabelled(const QByteArray &bytes);

// Text in a named character set ("utf-16"; any case). Absent when the set is unknown or the bytes do not fit
// it.
[[nodiscard]] std::optional<QByteArray> utf8FromCharset(const QByteArray &bytes, const QByteArray &charset);

// Whether every character of a UTF-8 text is one of Latin-1's.
[[nodiscard]] bool fitsLatin1(const QByteArray &utf8);

// A text that fits, in Latin-1. Shares the bytes when they are plain ASCII.
[[nodiscard]] QByteArray latin1FromUtf8(const QByteArray &utf8);

// Whether a UTF-8 text has nothing but white space.
[[nodiscard]] bool isBlank(const QByteArray &utf8);
