#pragma once

#include <QIcon>

// The status icon for a tray that finds icons by name and draws them in the colour of its panel; the drawn
// one goes along for those that do not know the name.
[[nodiscard]] QIcon namedStatusIcon(bool paused);

// The status icon in a grey that is seen on a light and on a dark panel alike.
[[nodiscard]] QIcon drawnStatusIcon(bool paused);
