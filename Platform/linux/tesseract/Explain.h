#pragma once

#include "Platform/linux/tesseract/PageReader.h"

// For developers: reads a picture and writes into a folder, which is created, one PNG for each stage, with
// the fragments as "fragments.txt" (confidence, box, text). False when the folder cannot be written.
[[nodiscard]] bool explain(PageReader &reader, const QImage &upright, const QString &folder);
