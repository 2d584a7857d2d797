#pragma once

#include "Platform/ImageFile.h"

// HEIC and AVIF, which the toolkit has no reader for. Part of readImageFile, which everybody else calls.

[[nodiscard]] bool isHeif(const QByteArray &bytes);

// The picture in its own size, with the turns and cuts that the file asks for. Null above maxPixels.
[[nodiscard]] ImageFile readHeif(const QByteArray &bytes, qint64 maxPixels);
