#pragma once

#include "tests/programs/Trip.h"

// A program that edits pictures; a paste lands on the picture that it was started on.
[[nodiscard]] const Program &gimp();

// A PNG of 90 x 60 pixels with colours that tell one from the other; another `variant`, other colours.
[[nodiscard]] QByteArray pictureBytes(int variant);
[[nodiscard]] std::function<QString(const QString &path)> picture(int variant);

// Size and pixels of an encoded picture; empty when it is none.
[[nodiscard]] QByteArray pixels(const QByteArray &encoded);
