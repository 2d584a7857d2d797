#pragma once

#include "Platform/linux/dbus/AtSpiFocus.h"

#include <QRect>

// Where the caret of a text is on the screen. What programs say of it differs; the rules are those of the
// toolkits as measured.
namespace CaretBounds {

// In the server's pixels. `window` is the content of the X window that the text lies in; a caret outside of
// it is none: it is scrolled away, or the program counts from somewhere else. On a thread that may wait.
[[nodiscard]] std::optional<QRectF> find(const AtSpiInquiry &inquiry, const FocusedText &focused,
                                         const QRect &window);

// The rectangle says something: programs answer 0,0,0,0 or -1 for a place they do not know.
[[nodiscard]] bool isPlace(const QRectF &rect);

// How many of the server's pixels one of the program's is, from the width of one and the same window. Steps
// of a quarter, of one where a toolkit scales by whole numbers only; never below 1.
[[nodiscard]] double scale(double serverWidth, double programWidth, bool wholeNumbers);

// A caret that may be shown: inside the window, higher than nothing and narrower than any line of text.
[[nodiscard]] bool isAcceptable(const QRectF &caret, const QRect &window);

// Where a caret stands that follows a character, or begins the line below it when that is a line break.
[[nodiscard]] QRectF after(const QRectF &character, bool isLineBreak, const QRectF &field);

// Where it stands in an empty field: at its left edge, in the first line of a field of many.
[[nodiscard]] QRectF atStart(const QRectF &field);

} // namespace CaretBounds
