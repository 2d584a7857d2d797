#pragma once

#include <QByteArray>
#include <vector>

// Lists of addresses as file managers exchange them. Addresses are kept as the bytes that were given:
// percent-encoded, and not always of valid UTF-8.

// The addresses of a text/uri-list: one a line, ended by CRLF, LF or NUL; comments and blank lines are left
// out.
[[nodiscard]] std::vector<QByteArray> addressesOfUriList(const QByteArray &list);

[[nodiscard]] bool isFileAddress(const QByteArray &address);

// The path of a file: address, percent-decoded. An address that would decode to a NUL is not decoded.
[[nodiscard]] QByteArray pathOfFileAddress(const QByteArray &address);

// text/uri-list: CRLF after every address.
[[nodiscard]] QByteArray uriList(const std::vector<QByteArray> &addresses);

// x-special/gnome-copied-files (MATE's is the same): "copy", then the addresses, LF between, none at the end.
[[nodiscard]] QByteArray copiedFilesList(const std::vector<QByteArray> &addresses);

// Plain paths, LF between.
[[nodiscard]] QByteArray pathList(const std::vector<QByteArray> &addresses);
