#include "Platform/linux/x11/X11KeyboardLayout.h"

#include "Platform/KeyCodes.h"
#include "tests/platform/desktop/DesktopHarness.h"

#include <gtest/gtest.h>
#include <linux/input-event-codes.h>

namespace {

bool types(const X11KeyboardLayout &layout, quint32 keyCode, const QString &wanted)
{
    return QTest::qWaitFor([&] { return layout.layoutCharacter(keyCode) == wanted; }, 3000);
}

} // namespace

TEST(KeyboardLayout, AnswersWhatAKeyTypes)
{
    const X11KeyboardLayout layout;
    EXPECT_EQ(layout.layoutCharacter(KeyCode::v), QStringLiteral("v"));
    EXPECT_EQ(layout.layoutCharacter(50), QStringLiteral("`"));
    EXPECT_EQ(layout.layoutCharacter(83), QStringLiteral("1")) << "keypad";
    EXPECT_EQ(layout.layoutCharacter(KeyCode::space), QStringLiteral(" "));
    for (const quint32 silent : {KeyCode::returnKey, KeyCode::escape, 122U, 110U, 52U, 9999U})
        EXPECT_EQ(layout.layoutCharacter(silent), std::nullopt) << silent;
    EXPECT_EQ(layout.symbolName(110), QStringLiteral("Menu"));
    EXPECT_EQ(layout.symbolName(256 + KEY_PRINT), QStringLiteral("Print"));
    EXPECT_EQ(layout.symbolName(52), std::nullopt);
    EXPECT_EQ(layout.symbolName(9999), std::nullopt);
}

TEST(KeyboardLayout, FollowsTheLayoutAndItsGroupInForce)
{
    const X11KeyboardLayout layout;
    {
        const Layout dvorak({"us", "-variant", "dvorak"});
        EXPECT_TRUE(types(layout, 47, QStringLiteral("v")));
        EXPECT_EQ(layout.layoutCharacter(KeyCode::v), QStringLiteral("k"));
    }
    {
        const Layout accents({"us", "-variant", "intl"});
        EXPECT_TRUE(types(layout, 39, QStringLiteral("´"))) << "dead keys type their accent";
        EXPECT_EQ(layout.layoutCharacter(50), QStringLiteral("`"));
    }
    const Layout both({"us,ru", "-option", "grp:shifts_toggle"});
    EXPECT_TRUE(types(layout, 39, QStringLiteral("'")));
    EXPECT_EQ(layout.layoutCharacter(KeyCode::v), QStringLiteral("v"));
    Hand hand;
    hand.chord({Hand::shift, 62});
    EXPECT_TRUE(types(layout, KeyCode::v, QStringLiteral("м")));
}
