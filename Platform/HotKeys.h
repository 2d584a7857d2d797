#pragma once

#include <QtGlobal>
#include <functional>

// The system-wide hot key; one at a time. Main thread.
class HotKeys {
public:
    virtual ~HotKeys() = default;

    // Takes the key system-wide, whatever Caps Lock and Num Lock say, replacing the one taken before.
    //
    // keyCode and modifiers are those of Platform/KeyCodes.h. Returns 0 when it was accepted, else the
    // reason: the X error code (10, BadAccess: another program holds it), or -1 when there is no such key
    // here.
    [[nodiscard]] virtual int registerHotKey(quint32 keyCode, quint64 modifiers) = 0;
    virtual void unregisterHotKey() = 0;

    // Runs on the main thread, from the event loop, once a press; auto-repeat of a held key is not a press.
    std::function<void()> onPress;
};
