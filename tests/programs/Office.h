#pragma once

#include "tests/programs/Trip.h"

// LibreOffice's text documents and spreadsheets.
[[nodiscard]] const Program &writer();
[[nodiscard]] const Program &calc();

// A text document with bold words, a heading and a table; `name` stands in its first line.
[[nodiscard]] std::function<QString(const QString &path)> styledDocument(const QString &name);

// A sheet of three columns: texts, numbers and a formula, one cell bold; `name` stands in the first cell.
[[nodiscard]] std::function<QString(const QString &path)> sheet(const QString &name);

// What an HTML copy shows; the heads differ, as the documents' styles do.
[[nodiscard]] QByteArray htmlBody(const QByteArray &html);
