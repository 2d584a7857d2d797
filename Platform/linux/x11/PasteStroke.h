#pragma once

#include "Platform/WindowIdentity.h"

#include <xkbcommon/xkbcommon.h>

// A key with the modifiers that are held for it.
struct KeyStroke {
    bool control = false;
    bool shift = false;
    xkb_keysym_t symbol = XKB_KEY_NoSymbol;

    bool operator==(const KeyStroke &) const = default;
};

struct PasteStroke {
    KeyStroke stroke;
    bool pastesPrimary = false; // inserts the primary selection, not the clipboard

    bool operator==(const PasteStroke &) const = default;
};

// The stroke that pastes into a window of this kind of program, told by its class.
[[nodiscard]] PasteStroke pasteStroke(const WindowIdentity &identity);
