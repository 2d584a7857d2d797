#pragma once

#include "Norvane/paste/PasteMode.h"
#include "Norvane/store/Clip.h"
#include "Platform/ClosureMenuItem.h"

#include <vector>

// What the rows of the status menu do. Held by the rows: each closure holds its controller weakly.
struct StatusMenuActions {
    std::function<void()> showPopup;
    std::function<void()> togglePause;
    std::function<void()> confirmClear;
    std::function<void()> quit;
    std::function<void(const ClipPointer &, PasteMode)> paste;
};

// The rows of the status menu: the panel, the ten newest clips, recording, the history, the program.
//
// `clips` newest first; `shortcut` is the hot key's display string. Main thread.
[[nodiscard]] std::vector<ClosureMenuItem> statusMenuItems(const ClipList &clips, bool paused,
                                                           const QString &shortcut,
                                                           const StatusMenuActions &actions);
