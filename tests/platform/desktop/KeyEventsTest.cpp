#include "Platform/linux/x11/X11KeyEvents.h"

#include "Platform/linux/x11/PasteStroke.h"
#include "Platform/linux/x11/X11Workspace.h"
#include "Platform/memory/MemoryPlatform.h"
#include "tests/platform/desktop/DesktopHarness.h"

#include <gtest/gtest.h>

namespace {

class Paste : public ::testing::Test {
protected:
    bool waitForFront(quint32 window)
    {
        return QTest::qWaitFor([&] { return workspace.rememberedWindow() == window; }, 5000);
    }
    bool pastes(Neighbour &neighbour, const QString &text)
    {
        return neighbour.own(text.toUtf8()) && waitForFront(neighbour.window) && (keys.postPaste(), true) &&
               neighbour.waitForText(text);
    }

    Hand hand;
    X11Workspace workspace{std::make_shared<MemoryDesktopEntries>()};
    X11KeyEvents keys{workspace, {}};
};

} // namespace

struct LayoutCase {
    const char *name;
    QStringList arguments;
    bool secondGroup;
};

void PrintTo(const LayoutCase &layout, std::ostream *out)
{
    *out << layout.name;
}

class PasteOnLayout : public Paste, public ::testing::WithParamInterface<LayoutCase> {};

TEST_P(PasteOnLayout, UsesTheKeyThatTypesV)
{
    Neighbour neighbour;
    const Layout layout(GetParam().arguments);
    if (GetParam().secondGroup) {
        hand.chord({Hand::shift, 62});
        hand.settle();
    }
    EXPECT_TRUE(pastes(neighbour, QStringLiteral("layout")));
    // A key lent for the stroke goes back, and the keyboard stays usable in the layout that was in force.
    ASSERT_TRUE(neighbour.own("again"));
    keys.postPaste();
    EXPECT_TRUE(neighbour.waitForText(QStringLiteral("layoutagain")));
}

INSTANTIATE_TEST_SUITE_P(
    All, PasteOnLayout,
    ::testing::Values(LayoutCase{"us", {"us"}, false},
                      LayoutCase{"dvorak", {"us", "-variant", "dvorak"}, false},
                      LayoutCase{"us,ru first", {"us,ru", "-option", "grp:shifts_toggle"}, false},
                      LayoutCase{"us,ru second", {"us,ru", "-option", "grp:shifts_toggle"}, true},
                      LayoutCase{"ru", {"ru"}, false}, LayoutCase{"gr", {"gr"}, false}));

class PasteWithHeldKey : public Paste, public ::testing::WithParamInterface<std::tuple<int, bool>> {};

TEST_P(PasteWithHeldKey, ArrivesAllTheSame)
{
    const auto [key, onAnotherKeyboard] = GetParam();
    if (onAnotherKeyboard)
        hand.useAnotherKeyboard();
    Neighbour neighbour;
    hand.press(key);
    ASSERT_TRUE(hand.isDown(key));
    EXPECT_TRUE(pastes(neighbour, QStringLiteral("held")));
    EXPECT_FALSE(hand.isDown(Hand::control));
    hand.release(key);
    hand.tap(Hand::x);
    EXPECT_TRUE(neighbour.waitForText(QStringLiteral("heldx"))) << "no modifier is stuck";
}

INSTANTIATE_TEST_SUITE_P(Modifiers, PasteWithHeldKey,
                         ::testing::Combine(::testing::Values(Hand::shift, Hand::alt, Hand::super,
                                                              Hand::control),
                                            ::testing::Bool()));

TEST_F(Paste, ArrivesWithCapsLockAndNumLockOn)
{
    Neighbour neighbour;
    const Lock caps(hand, Hand::capsLock);
    const Lock num(hand, Hand::numLock);
    EXPECT_TRUE(pastes(neighbour, QStringLiteral("locks")));
}

TEST_F(Paste, WaitsForTheFocusToComeBack)
{
    Neighbour neighbour;
    ASSERT_TRUE(neighbour.own("late"));
    ASSERT_TRUE(waitForFront(neighbour.window));
    QWidget thief(nullptr, Qt::Tool | Qt::BypassWindowManagerHint);
    thief.show();
    thief.activateWindow();
    ASSERT_TRUE(QTest::qWaitFor([&] { return hand.focus() == thief.winId(); }, 3000));
    keys.postPaste();
    QTimer::singleShot(60, &thief, [&] { hand.setFocus(neighbour.window); });
    EXPECT_TRUE(neighbour.waitForText(QStringLiteral("late")));
}

TEST_F(Paste, TypesNothingWhenTheFocusDoesNotComeBack)
{
    Neighbour neighbour;
    ASSERT_TRUE(neighbour.own("lost"));
    ASSERT_TRUE(waitForFront(neighbour.window));
    Panel thief;
    thief.setWindowFlags(Qt::Tool | Qt::BypassWindowManagerHint);
    thief.show();
    thief.activateWindow();
    ASSERT_TRUE(QTest::qWaitFor([&] { return hand.focus() == thief.winId(); }, 3000));
    keys.postPaste();
    EXPECT_FALSE(QTest::qWaitFor([&] { return !thief.field->text().isEmpty(); }, 1500));
    hand.setFocus(neighbour.window);
    EXPECT_FALSE(QTest::qWaitFor([&] { return !neighbour.text.isEmpty(); }, 200));
}

TEST_F(Paste, CannotBeTypedOnAnEmptyDesktop)
{
    {
        Neighbour neighbour;
        ASSERT_TRUE(waitForFront(neighbour.window));
        EXPECT_TRUE(keys.canSynthesise());
    }
    EXPECT_TRUE(QTest::qWaitFor([&] { return !keys.canSynthesise(); }, 3000));
    keys.postPaste();
}

TEST(PasteStrokes, SuitTheKindOfProgram)
{
    constexpr KeyStroke plain{true, false, XKB_KEY_v}, terminal{true, true, XKB_KEY_v},
        insert{false, true, XKB_KEY_Insert}, yank{true, false, XKB_KEY_y};
    const std::pair<const char *, PasteStroke> cases[] = {
        {"Mousepad", {plain, false}}, {"", {plain, false}},      {"Gnome-terminal", {terminal, false}},
        {"kitty", {terminal, false}}, {"XTerm", {insert, true}}, {"URxvt", {insert, true}},
        {"Emacs", {yank, false}}};
    for (const auto &[className, stroke] : cases) {
        WindowIdentity identity;
        identity.className = QString::fromLatin1(className);
        EXPECT_EQ(pasteStroke(identity), stroke) << className;
    }
}
