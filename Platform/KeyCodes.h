#pragma once

#include <QtGlobal>

// Virtual key codes: hardware positions named by an ANSI keyboard's numbering, in which the V key is 9. They
// are what shortcuts store. Keys outside that numbering are 256 + their evdev code.
//
// evdev codes are those of <linux/input-event-codes.h>; an X server's key code is the evdev code + 8.
namespace KeyCode {
inline constexpr quint32 returnKey = 36, tab = 48, space = 49, deleteKey = 51, escape = 53, keypadEnter = 76,
                         forwardDelete = 117, v = 9, p = 35, e = 14, n = 45;
inline constexpr quint32 firstUnnumbered = 256;
} // namespace KeyCode

// Modifier bits of a shortcut. Command is this desktop's Ctrl, Option its Alt, Control its Super.
namespace ModifierFlag {
inline constexpr quint64 shift = 0x20000, control = 0x40000, option = 0x80000, command = 0x100000;
inline constexpr quint64 all = shift | control | option | command;
} // namespace ModifierFlag

// 0 when the position has no evdev code. Every virtual key code of the ANSI numbering from 0 to 127 is known
// that a PC keyboard has.
[[nodiscard]] quint32 evdevCode(quint32 keyCode);

// The virtual key code at an evdev code; 256 + evdev code for keys outside the numbering.
[[nodiscard]] quint32 keyCodeFromEvdev(quint32 evdev);
