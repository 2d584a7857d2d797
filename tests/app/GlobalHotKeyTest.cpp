#include "Norvane/app/GlobalHotKey.h"

#include "Platform/memory/MemoryPlatform.h"
#include "Vesmo/Localisation.h"
#include "tests/support/LogLines.h"

#include <QCoreApplication>
#include <gtest/gtest.h>

namespace {

TEST(GlobalHotKeyTest, ARefusedShortcutIsLoggedAndLeavesNothingRegistered)
{
    loadTranslations("none");
    const LogLines log;
    MemoryHotKeys system;
    MemoryKeyboardLayout layout;
    GlobalHotKey hotKey(system, layout);
    const Shortcut taken{0, ModifierFlag::command | ModifierFlag::control};
    system.refuse({taken.keyCode, taken.modifiers}, 10);
    ASSERT_TRUE(hotKey.registerShortcut({}));
    EXPECT_FALSE(hotKey.registerShortcut(taken));
    EXPECT_EQ(log.lines, QStringList("Norvane: hot key ⌃⌘A not available (10)"));
    EXPECT_EQ(system.registered, std::nullopt);
    EXPECT_TRUE(hotKey.registerShortcut({}));
    EXPECT_TRUE(hotKey.registerShortcut({}));
    EXPECT_EQ(system.registered, (MemoryHotKeys::Key{9, 1572864}));
    hotKey.unregister();
    EXPECT_EQ(system.registered, std::nullopt);
}

TEST(GlobalHotKeyTest, APressIsDeliveredFromTheEventLoopAndDiesWithItsHotKey)
{
    MemoryHotKeys system;
    MemoryKeyboardLayout layout;
    auto hotKey = std::make_unique<GlobalHotKey>(system, layout);
    ASSERT_TRUE(hotKey->registerShortcut({}));
    system.press();
    QCoreApplication::processEvents(); // nobody listens yet
    int presses = 0;
    hotKey->onPress = [&presses] { ++presses; };
    system.press();
    EXPECT_EQ(presses, 0);
    QCoreApplication::processEvents();
    EXPECT_EQ(presses, 1);
    system.press();
    hotKey.reset();
    system.press();
    QCoreApplication::processEvents();
    EXPECT_EQ(presses, 1);
}

} // namespace
