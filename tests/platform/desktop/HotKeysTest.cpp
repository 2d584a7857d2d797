#include "Platform/linux/x11/X11HotKeys.h"

#include "Platform/KeyCodes.h"
#include "tests/platform/desktop/DesktopHarness.h"

#include <gtest/gtest.h>
#include <poll.h>

namespace {

constexpr quint64 commandOption = ModifierFlag::command | ModifierFlag::option;
constexpr int badAccess = 10;

class HotKey : public ::testing::Test {
protected:
    HotKey()
    {
        keys->onPress = [this] { ++presses; };
    }
    bool waitForPresses(int wanted)
    {
        return QTest::qWaitFor([&] { return presses >= wanted; }, 3000);
    }
    void pressHotKey() { hand.chord({Hand::control, Hand::alt, Hand::v}); }
    void registerHotKey() { ASSERT_EQ(keys->registerHotKey(KeyCode::v, commandOption), 0); }

    // Another program takes the hot key, with these locks on; false where somebody holds it.
    static bool take(Hand &other, int locks)
    {
        xcb_connection_t *raw = other.server().raw();
        const auto mask = static_cast<uint16_t>(XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1 | locks);
        const XcbReply<xcb_generic_error_t> refused(
            xcb_request_check(raw, xcb_grab_key_checked(raw, 0, other.server().root(), mask, Hand::v,
                                                        XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC)));
        return !refused;
    }
    static bool isTaken(int locks)
    {
        Hand other;
        return !take(other, locks);
    }

    Hand hand;
    std::unique_ptr<X11HotKeys> keys = X11HotKeys::create();
    int presses = 0;
};

} // namespace

TEST_F(HotKey, HeldDownIsOnePress)
{
    registerHotKey();
    hand.press(Hand::control);
    hand.press(Hand::alt);
    hand.press(Hand::v);
    ASSERT_TRUE(waitForPresses(1));
    keys->releaseKeyboard();
    hand.release(Hand::v, 1200);
    hand.release(Hand::alt);
    hand.release(Hand::control);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !hand.isDown(Hand::v); }, 5000));
    EXPECT_FALSE(QTest::qWaitFor([&] { return presses > 1; }, 200));
    pressHotKey();
    EXPECT_TRUE(waitForPresses(2));
}

TEST_F(HotKey, FiresOnceAPressWhateverCapsLockAndNumLockSay)
{
    EXPECT_EQ(keys->registerHotKey(KeyCode::v, commandOption), 0);
    EXPECT_EQ(keys->registerHotKey(KeyCode::v, commandOption), 0) << "twice in a row";
    const auto firesOnce = [this] {
        const int before = presses;
        pressHotKey();
        EXPECT_TRUE(waitForPresses(before + 1));
        keys->releaseKeyboard();
        hand.settle();
        QCoreApplication::processEvents();
        return presses == before + 1;
    };
    EXPECT_TRUE(firesOnce());
    EXPECT_TRUE(firesOnce());
    {
        const Lock caps(hand, Hand::capsLock);
        EXPECT_TRUE(firesOnce());
        const Lock num(hand, Hand::numLock);
        EXPECT_TRUE(firesOnce());
    }
    const Lock num(hand, Hand::numLock);
    EXPECT_TRUE(firesOnce());
}

TEST_F(HotKey, ThatAnotherClientHoldsIsRefusedUntilItLetsGoAndLeavesNoVariantBehind)
{
    for (const int locks : {0, int(XCB_MOD_MASK_LOCK)}) {
        auto other = std::make_unique<Hand>();
        ASSERT_TRUE(take(*other, locks));
        EXPECT_EQ(keys->registerHotKey(KeyCode::v, commandOption), badAccess);
        EXPECT_EQ(isTaken(0), locks == 0);
        EXPECT_FALSE(isTaken(XCB_MOD_MASK_2));
    }
    ASSERT_TRUE(QTest::qWaitFor([&] { return keys->registerHotKey(KeyCode::v, commandOption) == 0; }, 2000));
    pressHotKey();
    EXPECT_TRUE(waitForPresses(1));
}

TEST_F(HotKey, ThatNoKeyboardHasIsRefusedAsSuch)
{
    for (const quint32 keyCode : {52U, 200U, 256U + 0x200U})
        EXPECT_EQ(keys->registerHotKey(keyCode, commandOption), -1) << keyCode;
}

TEST_F(HotKey, UnregisteredGoesToTheProgramInFront)
{
    Neighbour neighbour;
    ASSERT_EQ(keys->registerHotKey(256 + 16, ModifierFlag::command), 0); // outside the numbering is a key too
    ASSERT_EQ(keys->registerHotKey(7, 0), 0);
    hand.tap(Hand::x);
    ASSERT_TRUE(waitForPresses(1));
    keys->releaseKeyboard();
    keys->unregisterHotKey();
    hand.tap(Hand::x);
    EXPECT_TRUE(neighbour.waitForText(QStringLiteral("x")));
    EXPECT_EQ(presses, 1);
}

TEST_F(HotKey, LetsTheKeyboardGoWhileTheMainThreadIsBusy)
{
    Neighbour neighbour;
    registerHotKey();
    pressHotKey();
    hand.tap(Hand::x);
    // The main thread does nothing but wait here, as one does in a long computation.
    pollfd never{-1, 0, 0};
    poll(&never, 1, 600);
    EXPECT_FALSE(hand.isDown(Hand::v)); // the release was processed: the keyboard was not held back any more
    EXPECT_TRUE(neighbour.waitForText(QStringLiteral("x")));
    EXPECT_EQ(presses, 1);
}

TEST_F(HotKey, HeldDownLeavesOtherKeysToTheProgramInFront)
{
    Neighbour neighbour;
    registerHotKey();
    hand.press(Hand::control);
    hand.press(Hand::alt);
    hand.press(Hand::v);
    ASSERT_TRUE(waitForPresses(1));
    keys->releaseKeyboard();
    hand.release(Hand::alt);
    hand.release(Hand::control);
    hand.tap(Hand::x);
    hand.tap(Hand::y);
    hand.release(Hand::v);
    EXPECT_TRUE(neighbour.waitForText(QStringLiteral("xy")));
    pressHotKey();
    EXPECT_TRUE(waitForPresses(2));
}

TEST_F(HotKey, FollowsNumLockToAnotherModifier)
{
    registerHotKey();
    EXPECT_FALSE(isTaken(XCB_MOD_MASK_3));
    const Layout restored({QStringLiteral("us")});
    ASSERT_EQ(QProcess::execute(QStringLiteral("xmodmap"),
                                {QStringLiteral("-e"), QStringLiteral("remove mod2 = Num_Lock"),
                                 QStringLiteral("-e"), QStringLiteral("add mod3 = Num_Lock")}),
              0);
    EXPECT_TRUE(QTest::qWaitFor([&] { return isTaken(XCB_MOD_MASK_3); }, 10000));
    EXPECT_FALSE(isTaken(XCB_MOD_MASK_2));
    pressHotKey();
    EXPECT_TRUE(waitForPresses(1));
}
