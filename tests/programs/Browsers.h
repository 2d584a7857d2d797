#pragma once

#include "tests/programs/Trip.h"

// Programs that show a page. What they are started on is a page that can be edited, whose title tells what
// was pasted into it: "changed", and for a picture its size and a sum of its pixels.
[[nodiscard]] const Program &chromium();
[[nodiscard]] const Program &firefox();

// The same browser, which copies by the menu of the picture in the middle of the page.
[[nodiscard]] const Program &copyingThePicture(const Program &browser);

// A page to edit with this HTML in it; one that shows a picture; one with a
// field of plain text.
[[nodiscard]] std::function<QString(const QString &path)> page(const QByteArray &html);
[[nodiscard]] std::function<QString(const QString &path)> picturePage(const QByteArray &png);
[[nodiscard]] std::function<QString(const QString &path)> plainField(const QByteArray &text);

// The page shows the very pixels of the picture that was copied as image/png.
[[nodiscard]] Proof showsThePicture();
