#pragma once

#include "Platform/linux/tesseract/TextLines.h"

// Takes icons out of the lines, which the engine would read as letters: a shape in one piece, about square,
// that stands apart and is taller than the text it stands next to, or a filled square.
void removeIcons(BlobMap &map, std::vector<TextLine> &lines);

// The same for icons of several pieces, after small parts have found their lines (attachSmallParts).
void removeIconsOfPieces(BlobMap &map, std::vector<TextLine> &lines);
