#include "Platform/KeyCodes.h"

#include <gtest/gtest.h>
#include <linux/input-event-codes.h>

struct KeyCodeCase {
    quint32 keyCode;
    quint32 evdev;
};

class KnownKeyCodes : public ::testing::TestWithParam<KeyCodeCase> {};

TEST_P(KnownKeyCodes, StandForTheirPositionBothWays)
{
    EXPECT_EQ(evdevCode(GetParam().keyCode), GetParam().evdev);
    EXPECT_EQ(keyCodeFromEvdev(GetParam().evdev), GetParam().keyCode);
}

INSTANTIATE_TEST_SUITE_P(
    Ansi, KnownKeyCodes,
    ::testing::Values(KeyCodeCase{0, KEY_A}, KeyCodeCase{9, KEY_V}, KeyCodeCase{11, KEY_B},
                      KeyCodeCase{50, KEY_GRAVE}, KeyCodeCase{10, KEY_102ND}, KeyCodeCase{18, KEY_1},
                      KeyCodeCase{19, KEY_2}, KeyCodeCase{20, KEY_3}, KeyCodeCase{21, KEY_4},
                      KeyCodeCase{23, KEY_5}, KeyCodeCase{22, KEY_6}, KeyCodeCase{26, KEY_7},
                      KeyCodeCase{28, KEY_8}, KeyCodeCase{25, KEY_9}, KeyCodeCase{29, KEY_0},
                      KeyCodeCase{36, KEY_ENTER}, KeyCodeCase{51, KEY_BACKSPACE}, KeyCodeCase{53, KEY_ESC},
                      KeyCodeCase{76, KEY_KPENTER}, KeyCodeCase{82, KEY_KP0}, KeyCodeCase{92, KEY_KP9},
                      KeyCodeCase{122, KEY_F1}, KeyCodeCase{96, KEY_F5}, KeyCodeCase{109, KEY_F10},
                      KeyCodeCase{111, KEY_F12}, KeyCodeCase{79, KEY_F18}, KeyCodeCase{115, KEY_HOME},
                      KeyCodeCase{119, KEY_END}, KeyCodeCase{116, KEY_PAGEUP}, KeyCodeCase{121, KEY_PAGEDOWN},
                      KeyCodeCase{117, KEY_DELETE}, KeyCodeCase{123, KEY_LEFT}, KeyCodeCase{124, KEY_RIGHT},
                      KeyCodeCase{125, KEY_DOWN}, KeyCodeCase{126, KEY_UP}));

INSTANTIATE_TEST_SUITE_P(OutsideTheNumbering, KnownKeyCodes,
                         ::testing::Values(KeyCodeCase{256 + KEY_PRINT, KEY_PRINT},
                                           KeyCodeCase{256 + KEY_CALC, KEY_CALC},
                                           KeyCodeCase{256 + KEY_F24, KEY_F24}));

TEST(KeyCodes, NoTwoVirtualCodesShareAKey)
{
    for (quint32 keyCode = 0; keyCode < 128; ++keyCode) {
        const quint32 evdev = evdevCode(keyCode);
        EXPECT_TRUE(evdev == 0 || keyCodeFromEvdev(evdev) == keyCode) << "evdev " << evdev;
    }
}

TEST(KeyCodes, NumbersWithoutAKeyHaveNoEvdevCode)
{
    for (const quint32 keyCode : {52U, 128U, 255U, 256U, 256U + 0x300U, 0xffffffffU})
        EXPECT_EQ(evdevCode(keyCode), 0U) << keyCode;
}
