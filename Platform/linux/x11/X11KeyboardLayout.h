#pragma once

#include "Platform/KeyboardLayout.h"
#include "Platform/linux/x11/XkbKeymap.h"

// The layout in force on the X server's core keyboard, followed through its notifications. Without an X
// server or its XKB extension no key types anything.
class X11KeyboardLayout : public KeyboardLayout {
public:
    X11KeyboardLayout();
    ~X11KeyboardLayout() override;

    std::optional<QString> layoutCharacter(quint32 keyCode) const override;
    std::optional<QString> symbolName(quint32 keyCode) const override;

private:
    void handle(const xcb_generic_event_t &event);
    void followChanges();
    [[nodiscard]] xkb_keysym_t typedSymbol(quint32 keyCode) const;

    std::unique_ptr<XcbConnection> connection;
    mutable std::unique_ptr<XkbKeymap> keymap; // loaded at the first question after a change
    quint32 group = 0;
};
