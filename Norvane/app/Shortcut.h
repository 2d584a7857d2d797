#pragma once

#include "Platform/KeyCodes.h"
#include "Platform/KeyboardLayout.h"

#include <QByteArray>
#include <QString>
#include <optional>

// A keyboard shortcut: a key's position and the modifiers held with it (bits of Platform/KeyCodes.h).
struct Shortcut {
    quint32 keyCode = KeyCode::v;
    quint64 modifiers = ModifierFlag::option | ModifierFlag::command;

    bool operator==(const Shortcut &) const = default;
};

// For the user: the modifiers in the order Control, Option, Shift, Command, then the key's name on this
// layout.
[[nodiscard]] QString displayString(const Shortcut &shortcut, const KeyboardLayout &layout);
[[nodiscard]] QString keyName(quint32 keyCode, const KeyboardLayout &layout);

// The key (0 to 127, the lowest) that types a character without modifiers on this layout.
[[nodiscard]] std::optional<quint16> keyCodeFor(const QString &character, const KeyboardLayout &layout);

// The JSON object {"keyCode": …, "modifiers": …}; decoding requires both as whole numbers in range.
[[nodiscard]] QByteArray encodeShortcut(const Shortcut &shortcut);
[[nodiscard]] std::optional<Shortcut> decodeShortcut(const QByteArray &json);
