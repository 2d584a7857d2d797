#pragma once

#include "tests/programs/Trip.h"

// Programs that show a folder: what they open is one.
[[nodiscard]] const Program &pcmanfm();
[[nodiscard]] const Program &thunar();

// The same program, which cuts where it would copy.
[[nodiscard]] const Program &cutting(const Program &program);

// A folder of three files with names that need quoting.
[[nodiscard]] QString makeFiles(const QString &path);

// The folder gets the files of the other one, which keeps them.
[[nodiscard]] Proof holdsTheFiles();

// The folder gets them and the other one has none left: what a cut does.
[[nodiscard]] Proof getsTheFiles();
