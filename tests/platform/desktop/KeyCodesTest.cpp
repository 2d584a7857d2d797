#include "Platform/KeyCodes.h"

#include <gtest/gtest.h>
#include <linux/input-event-codes.h>

TEST(KeyCodes, StandForTheirPositionBothWays)
{
    constexpr quint32 cases[][2] = {{0, KEY_A},
                                    {9, KEY_V},
                                    {11, KEY_B},
                                    {50, KEY_GRAVE},
                                    {10, KEY_102ND},
                                    {23, KEY_5},
                                    {22, KEY_6},
                                    {36, KEY_ENTER},
                                    {51, KEY_BACKSPACE},
                                    {53, KEY_ESC},
                                    {82, KEY_KP0},
                                    {122, KEY_F1},
                                    {96, KEY_F5},
                                    {111, KEY_F12},
                                    {115, KEY_HOME},
                                    {116, KEY_PAGEUP},
                                    {117, KEY_DELETE},
                                    {126, KEY_UP},
                                    {256 + KEY_PRINT, KEY_PRINT},
                                    {256 + KEY_F24, KEY_F24}};
    for (const auto &[keyCode, evdev] : cases) {
        EXPECT_EQ(evdevCode(keyCode), evdev) << keyCode;
        EXPECT_EQ(keyCodeFromEvdev(evdev), keyCode) << keyCode;
    }
    for (quint32 keyCode = 0; keyCode < 128; ++keyCode) {
        const quint32 evdev = evdevCode(keyCode);
        EXPECT_TRUE(evdev == 0 || keyCodeFromEvdev(evdev) == keyCode) << "two codes for the key " << evdev;
    }
    for (const quint32 keyCode : {52U, 128U, 255U, 256U, 256U + 0x300U, 0xffffffffU})
        EXPECT_EQ(evdevCode(keyCode), 0U) << keyCode;
}
