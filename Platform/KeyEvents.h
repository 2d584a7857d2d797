#pragma once

#include <QtGlobal>

// Keys typed for the user. Main thread.
class KeyEvents {
public:
    virtual ~KeyEvents() = default;

    // Keys can be synthesised here and what is in front would receive them.
    [[nodiscard]] virtual bool canSynthesise() const = 0;

    // Types the paste stroke of the program that was in front, into that program: Ctrl+V on the key that
    // types v, or the stroke its kind of program has instead. Waits up to 250 ms, without blocking, for that
    // program to have the focus again, then gives up.
    virtual void postPaste() = 0;
};
