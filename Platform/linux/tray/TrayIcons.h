#pragma once

#include <QIcon>

// The status icon for a tray that draws icons by name in the colour of its panel; the drawn one goes along
// for those that do not know the name.
[[nodiscard]] QIcon namedStatusIcon(bool paused);

// The status icon in pixels, seen on a light and on a dark panel alike.
[[nodiscard]] QIcon drawnStatusIcon(bool paused);
