#pragma once

#include "Norvane/app/Shortcut.h"

#include <QObject>
#include <functional>

class HotKeys;

// The shortcut that opens the panel, registered with the desktop. Owned by AppDelegate. Main thread.
class GlobalHotKey {
public:
    GlobalHotKey(HotKeys &hotKeys, const KeyboardLayout &layout);
    ~GlobalHotKey();

    // Replaces the one registered before. False when the desktop refused it, which is logged; the one before
    // is not registered any more then.
    bool registerShortcut(const Shortcut &shortcut);
    void unregister();

    std::function<void()> onPress; // from the event loop, never inside the event's handler

private:
    HotKeys &hotKeys;
    const KeyboardLayout &layout;
    QObject context; // drops a queued press when this dies
};
