#include "Platform/linux/x11/X11KeyEvents.h"

#include "Platform/linux/x11/PasteStroke.h"
#include "Platform/linux/x11/X11Workspace.h"
#include "tests/platform/desktop/DesktopHarness.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

class NoEntries : public DesktopEntries {
public:
    FrontApplication application(const WindowIdentity &) const override { return {}; }
    std::optional<QString> iconName(const QString &) const override { return std::nullopt; }
};

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
    X11Workspace workspace{std::make_shared<NoEntries>()};
    int primaryClaims = 0;
    X11KeyEvents keys{workspace, [this] { ++primaryClaims; }};
};

QString readAll(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

} // namespace

TEST_F(Paste, ReachesTheProgramInFront)
{
    Neighbour neighbour;
    EXPECT_TRUE(pastes(neighbour, QStringLiteral("hello")));
    EXPECT_EQ(primaryClaims, 0);
}

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
        hand.press(Hand::shift);
        hand.tap(62);
        hand.release(Hand::shift);
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
    EXPECT_FALSE(QTest::qWaitFor([&] { return !thief.field->text().isEmpty(); }, 500));
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

TEST_F(Paste, ReachesAnXtermThroughThePrimarySelection)
{
    Neighbour owner; // of both selections, with one window, as our own pasteboard is
    QTemporaryDir scratch;
    const QString file = scratch.filePath(QStringLiteral("typed"));
    QProcess xterm;
    xterm.start(QStringLiteral("xterm"), {QStringLiteral("-geometry"), QStringLiteral("60x10+100+100"),
                                          QStringLiteral("-e"), QStringLiteral("sh"), QStringLiteral("-c"),
                                          QStringLiteral("echo ready > '%1'; cat >> '%1'").arg(file)});
    ASSERT_TRUE(QTest::qWaitFor([&] { return readAll(file) == QStringLiteral("ready\n"); }, 10000));
    QProcess find;
    find.start(QStringLiteral("xdotool"),
               {QStringLiteral("search"), QStringLiteral("--sync"), QStringLiteral("--onlyvisible"),
                QStringLiteral("--class"), QStringLiteral("XTerm")});
    ASSERT_TRUE(QTest::qWaitFor([&] { return find.state() == QProcess::NotRunning; }, 10000));
    const quint32 window = find.readAll().trimmed().toUInt();
    ASSERT_NE(window, 0U);
    ASSERT_TRUE(owner.own("from the history"));
    hand.setFocus(window);
    ASSERT_TRUE(waitForFront(window));

    keys.postPaste();
    EXPECT_TRUE(QTest::qWaitFor(
        [&] {
            hand.tap(Hand::returnKey);
            return readAll(file).contains(QStringLiteral("from the history\n"));
        },
        5000))
        << readAll(file).toStdString();
    EXPECT_EQ(primaryClaims, 1);
    xterm.terminate();
    xterm.waitForFinished(5000);
}

TEST(PasteStrokes, SuitTheKindOfProgram)
{
    const auto of = [](const char *className) {
        WindowIdentity identity;
        identity.className = QString::fromLatin1(className);
        return pasteStroke(identity);
    };
    EXPECT_EQ(of("Mousepad"), (PasteStroke{{true, false, XKB_KEY_v}, false}));
    EXPECT_EQ(of(""), (PasteStroke{{true, false, XKB_KEY_v}, false}));
    EXPECT_EQ(of("Gnome-terminal"), (PasteStroke{{true, true, XKB_KEY_v}, false}));
    EXPECT_EQ(of("kitty"), (PasteStroke{{true, true, XKB_KEY_v}, false}));
    EXPECT_EQ(of("XTerm"), (PasteStroke{{false, true, XKB_KEY_Insert}, true}));
    EXPECT_EQ(of("URxvt"), (PasteStroke{{false, true, XKB_KEY_Insert}, true}));
    EXPECT_EQ(of("Emacs"), (PasteStroke{{true, false, XKB_KEY_y}, false}));
}
