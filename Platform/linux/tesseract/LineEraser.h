#pragma once

#include "Platform/linux/tesseract/Blobs.h"

// Takes the rules of tables, frames, underlines and separators out of a normalised picture: ink of at least
// 50 pixels across or 30 down that is at most 3 pixels thick. Where a letter crosses a rule it stays whole.
// Left in, rules cost most of a table's text. Returns the marks (1) of what was erased.
GreyPicture eraseLines(GreyPicture &picture);

// Marks as no text what is left of them: crossings, round corners and short sides, which end where rules were
// erased.
void findFrameParts(GreyPicture erased, BlobMap &map);
