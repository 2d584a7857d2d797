#include "Norvane/app/GlobalHotKey.h"

#include "Platform/HotKeys.h"
#include "Platform/Log.h"

GlobalHotKey::GlobalHotKey(HotKeys &systemKeys, const KeyboardLayout &keyboardLayout)
    : hotKeys(systemKeys), layout(keyboardLayout)
{
    hotKeys.onPress = [this] {
        const auto press = [this] {
            if (onPress)
                onPress();
        };
        QMetaObject::invokeMethod(&context, press, Qt::QueuedConnection);
    };
}

// The registration ends with the desktop's service, not with this.
GlobalHotKey::~GlobalHotKey()
{
    hotKeys.onPress = nullptr;
}

bool GlobalHotKey::registerShortcut(const Shortcut &shortcut)
{
    hotKeys.unregisterHotKey();
    const int status = hotKeys.registerHotKey(shortcut.keyCode, shortcut.modifiers);
    if (status == 0)
        return true;
    logLine(QStringLiteral("Norvane: hot key %1 not available (%2)")
                .arg(displayString(shortcut, layout), QString::number(status)));
    return false;
}

void GlobalHotKey::unregister()
{
    hotKeys.unregisterHotKey();
}
