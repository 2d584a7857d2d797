#pragma once

#include "tests/programs/Trip.h"

// Programs that edit plain text.
[[nodiscard]] const Program &mousepad();
[[nodiscard]] const Program &featherpad();
[[nodiscard]] const Program &emacs();

// A terminal, whose shell shows the file and then keeps what comes in `file` + ".typed".
[[nodiscard]] const Program &xterm();

// A text file with these bytes.
[[nodiscard]] std::function<QString(const QString &path)> textOf(const QByteArray &bytes);

// Lines with letters beyond Latin-1, one beyond the basic plane, a tab and an empty line: what a detour by an
// older target would lose.
[[nodiscard]] QByteArray fruitLines(const QByteArray &name);
