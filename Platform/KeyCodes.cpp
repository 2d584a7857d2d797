#include "Platform/KeyCodes.h"

#include <array>

namespace {

// evdev codes by virtual key code, the order of the ANSI keyboard's numbering. Zero where a PC keyboard has
// no such key. Position 10 is the extra key of ISO keyboards, 71 the keypad's Clear where PC keyboards have
// Num Lock, 114 the Help key where they have Insert.
constexpr std::array<quint8, 128> evdevByKeyCode = {
    30,  31,  32,  33,  35,  34,  44,  45,
    46,  47, // A S D F H G Z X C V
    86,  48,  16,  17,  18,  19,  21,  20,
    2,   3, // ISO B Q W E R Y T 1 2
    4,   5,   7,   6,   13,  10,  8,   12,
    9,   11, // 3 4 6 5 = 9 7 - 8 0
    27,  24,  22,  26,  23,  25,  28,  38,
    36,  40, // ] O U [ I P Return L J '
    37,  39,  43,  51,  53,  49,  50,  52,
    15,  57, // K ; \ , / N M . Tab Space
    41,  14,  0,   1,   126, 125, 42,  58,
    56,  29, // ` Delete - Escape Command(r,l) Shift Caps Option Control
    54,  100, 97,  0,   187, 83,  0,   55,
    0,   78, // Shift Option Control(r) Fn F17 kp. - kp* - kp+
    0,   69,  115, 114, 113, 98,  96,  0,
    74,  188, // - Clear VolumeUp VolumeDown Mute kp/ kpEnter - kp- F18
    189, 117, 82,  79,  80,  81,  75,  76,
    77,  71, // F19 kp= kp0 … kp7
    190, 72,  73,  124, 89,  121, 63,  64,
    65,  61, // F20 kp8 kp9 Yen Underscore kp, F5 F6 F7 F3
    66,  67,  123, 87,  122, 183, 186, 184,
    0,   68, // F8 F9 Eisu F11 Kana F13 F16 F14 - F10
    127, 88,  0,   185, 110, 102, 104, 111,
    62,  107,                               // Menu F12 - F15 Help Home PageUp ForwardDelete F4 End
    60,  109, 59,  105, 106, 108, 103, 116, // F2 PageDown F1 Left Right Down Up Power
};

constexpr std::array<quint8, 256> invert()
{
    std::array<quint8, 256> keyCodes{};
    keyCodes.fill(0xff);
    for (size_t keyCode = 0; keyCode < evdevByKeyCode.size(); ++keyCode) {
        if (evdevByKeyCode[keyCode] != 0)
            keyCodes[evdevByKeyCode[keyCode]] = static_cast<quint8>(keyCode);
    }
    return keyCodes;
}

constexpr auto keyCodeByEvdev = invert();
constexpr quint32 highestEvdev = 0x2ff; // KEY_MAX

} // namespace

quint32 evdevCode(quint32 keyCode)
{
    if (keyCode < evdevByKeyCode.size())
        return evdevByKeyCode[keyCode];
    if (keyCode < KeyCode::firstUnnumbered || keyCode - KeyCode::firstUnnumbered > highestEvdev)
        return 0;
    return keyCode - KeyCode::firstUnnumbered;
}

quint32 keyCodeFromEvdev(quint32 evdev)
{
    if (evdev < keyCodeByEvdev.size() && keyCodeByEvdev[evdev] != 0xff)
        return keyCodeByEvdev[evdev];
    return KeyCode::firstUnnumbered + evdev;
}
