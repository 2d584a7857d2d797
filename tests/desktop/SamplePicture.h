#pragma once

#include <QByteArray>

// A PNG of 560 x 200 pixels as no encoder of ours would write it: its bytes tell a copy from a new encoding.
[[nodiscard]] QByteArray samplePicture();
