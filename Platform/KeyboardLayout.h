#pragma once

#include <QString>
#include <functional>
#include <optional>

// What the keys type on the layout in force. Main thread.
class KeyboardLayout {
public:
    virtual ~KeyboardLayout() = default;

    // The text a key types without modifiers; absent when it types nothing (a dead key types its accent).
    [[nodiscard]] virtual std::optional<QString> layoutCharacter(quint32 keyCode) const = 0;

    // A name for a key that types nothing, such as "Menu"; absent when the layout has none.
    [[nodiscard]] virtual std::optional<QString> symbolName(quint32 keyCode) const = 0;
};
