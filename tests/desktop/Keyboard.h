#pragma once

#include "tests/desktop/Desktop.h"

#include <QString>

// The user's keyboard and mouse, played through XTEST: what is sent goes wherever the server sends real
// input.
//
// Keys follow the server's layout at the moment of the call. Nothing waits between keys: a program that loses
// keys when they come fast has a fault.
class Keyboard {
public:
    explicit Keyboard(const Desktop &used) : desktop(used) {}

    // Presses and releases a chord written as "Ctrl+Alt+V", "Shift+Enter", "Esc". The keys stay down for
    // `held`: a finger keeps them down for about 100 ms. False when the layout lacks a key.
    bool press(const QString &chord, Desktop::Milliseconds held = Desktop::Milliseconds(0)) const;

    // Types a text, one key after the other. False, with nothing typed, when the layout lacks a character.
    bool type(const QString &text) const;

    // Clicks a button (1: the left, 3: the right one) at a point of the root window, `times` in a row.
    void click(QPoint where, int times = 1, uint8_t button = 1) const;

    // Presses the left button at one point of the root window and releases it at another, in a few steps.
    void drag(QPoint from, QPoint to) const;

    // Moves the pointer there.
    void point(QPoint where) const;

private:
    void fake(uint8_t event, uint8_t detail) const;
    void finish() const;

    const Desktop &desktop;
};
