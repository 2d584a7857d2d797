#include "Norvane/app/GlobalHotKey.h"

#include "Platform/Log.h"
#include "Platform/memory/MemoryPlatform.h"
#include "Vesmo/Localisation.h"

#include <QCoreApplication>
#include <gtest/gtest.h>

namespace {

class GlobalHotKeyTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        loadTranslations(QStringLiteral("none"));
        setLogSink([this](const QString &line) { log.append(line); });
    }
    void TearDown() override { setLogSink({}); }

    MemoryHotKeys system;
    MemoryKeyboardLayout layout;
    QStringList log;
};

TEST_F(GlobalHotKeyTest, ARefusedShortcutIsLoggedAndLeavesNothingRegistered)
{
    GlobalHotKey hotKey(system, layout);
    const Shortcut taken{0, ModifierFlag::command | ModifierFlag::control};
    system.refuse({taken.keyCode, taken.modifiers}, 10);
    ASSERT_TRUE(hotKey.registerShortcut({}));
    EXPECT_FALSE(hotKey.registerShortcut(taken));
    EXPECT_EQ(log, QStringList{"Norvane: hot key ⌃⌘A not available (10)"});
    EXPECT_EQ(system.registered, std::nullopt);
    EXPECT_TRUE(hotKey.registerShortcut({}));
    EXPECT_TRUE(hotKey.registerShortcut({}));
    EXPECT_EQ(system.registered, (MemoryHotKeys::Key{9, 1572864}));
    hotKey.unregister();
    EXPECT_EQ(system.registered, std::nullopt);
    EXPECT_EQ(log.size(), 1);
}

TEST_F(GlobalHotKeyTest, APressIsDeliveredFromTheEventLoopNotInsideItsHandler)
{
    GlobalHotKey hotKey(system, layout);
    ASSERT_TRUE(hotKey.registerShortcut({}));
    system.press();
    QCoreApplication::processEvents(); // nobody listens yet
    int presses = 0;
    hotKey.onPress = [&presses] { ++presses; };
    system.press();
    EXPECT_EQ(presses, 0);
    QCoreApplication::processEvents();
    EXPECT_EQ(presses, 1);
}

TEST_F(GlobalHotKeyTest, AQueuedPressDiesWithItsHotKey)
{
    int presses = 0;
    {
        GlobalHotKey hotKey(system, layout);
        hotKey.onPress = [&presses] { ++presses; };
        ASSERT_TRUE(hotKey.registerShortcut({}));
        system.press();
    }
    system.press();
    QCoreApplication::processEvents();
    EXPECT_EQ(presses, 0);
}

} // namespace
