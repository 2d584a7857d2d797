#pragma once

#include "Platform/linux/tesseract/Pixels.h"

// Takes the rules of tables, frames, underlines and separators out of a normalised picture: ink of at least
// 50 pixels across or 30 down that is at most 3 pixels thick. Where a letter crosses a rule it stays whole.
// Left in, rules cost most of a table's text.
void eraseLines(GreyPicture &picture);
