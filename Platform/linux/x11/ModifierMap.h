#pragma once

#include "Platform/linux/x11/XcbConnection.h"

#include <QtGlobal>
#include <optional>
#include <vector>

// Which of the eight core modifier bits the keyboard gives to which modifier. Zero: no key sets it.
struct ModifierMap {
    quint16 alt = 0;
    quint16 super = 0;
    quint16 numLock = 0;
    std::vector<std::vector<xcb_keycode_t>> keys; // by modifier index, Shift first

    // The core mask of a shortcut's modifier bits (Platform/KeyCodes.h). Absent when the keyboard has no key
    // for one of them.
    [[nodiscard]] std::optional<quint16> mask(quint64 modifiers) const;

    bool operator==(const ModifierMap &) const = default;
};

// Asks the server: two round trips.
[[nodiscard]] ModifierMap readModifierMap(xcb_connection_t *connection);
