#pragma once

#include "Platform/linux/dbus/AtSpiCaret.h"

#include <gtest/gtest.h>
#include <iosfwd>

void PrintTo(const QRectF &rect, std::ostream *stream);

struct CaretAnswer {
    bool came = false;
    std::optional<QRectF> caret;
    qint64 milliseconds = 0; // from the request
    qint64 largestGap = 0;   // milliseconds that the main thread's event loop stood still
};

// Runs the event loop until the answer comes, at most five seconds.
[[nodiscard]] CaretAnswer askForCaret(Accessibility &service);

// Asks several times: never a caret, and within the limit of 100 ms where nothing else keeps the machine
// busy. The quickest answer.
CaretAnswer expectNoCaretInTime(Accessibility &service);
