#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

// The path behind a file: address, for people to read; absent for any other address and for a relative path.
// Any thread.
//
// Percent-encoding is undone byte by byte. A path that no text can hold (bytes that are not valid UTF-8, a
// NUL) is given as an address again ("file:///tmp/caff%E8"), which no path can be mistaken for: paths begin
// with a slash.
[[nodiscard]] std::optional<QString> readablePath(const QByteArray &fileAddress);
