// The caret of real programs.

#include "Platform/KeyCodes.h"
#include "Platform/linux/x11/X11HotKeys.h"
#include "tests/platform/caret/CaretStage.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusReply>
#include <QDBusVariant>
#include <csignal>
#include <thread>
#include <utility>

namespace {

using namespace Qt::StringLiterals;

using CaretTest = CaretStage;

TEST_F(CaretTest, OfATextEditorIsWhereItIsDrawn)
{
    ASSERT_TRUE(connect());
    ASSERT_TRUE(startMousepad("una riga\nun'altra"));
    const auto start = awaitCaret([](const auto &caret) { return caret.has_value(); });
    ASSERT_TRUE(start);
    EXPECT_TRUE(isDrawn(*start)) << ::testing::PrintToString(*start);

    ASSERT_TRUE(keyboard.press(u"Right"_s) && keyboard.press(u"Right"_s));
    const auto middle = awaitCaret([&](const auto &caret) { return caret && caret->x() > start->x(); });
    ASSERT_TRUE(middle);
    EXPECT_EQ(middle->y(), start->y());
    EXPECT_TRUE(isDrawn(*middle));

    ASSERT_TRUE(keyboard.press(u"Ctrl+End"_s));
    const auto end = awaitCaret([&](const auto &caret) { return caret && caret->y() > start->y(); });
    ASSERT_TRUE(end);
    EXPECT_GT(end->x(), middle->x());
    EXPECT_TRUE(isDrawn(*end));

    ASSERT_TRUE(keyboard.press(u"Enter"_s));
    const auto below = awaitCaret([&](const auto &caret) { return caret && caret->y() > end->y(); });
    ASSERT_TRUE(below);
    EXPECT_EQ(below->x(), start->x());
    EXPECT_TRUE(isDrawn(*below));
}

TEST_F(CaretTest, OfAnEmptyDocumentIsAtItsBeginning)
{
    ASSERT_TRUE(connect());
    ASSERT_TRUE(startMousepad(""));
    const auto caret = awaitCaret([](const auto &found) { return found.has_value(); });
    ASSERT_TRUE(caret);
    EXPECT_TRUE(isDrawn(*caret)) << ::testing::PrintToString(*caret);
}

// The grab of the key takes the focus from the program for as long as the key is held down.
class CaretUnderHotKey : public CaretStage {
protected:
    void expectToBeKnown(const std::optional<QRectF> &before)
    {
        const auto hotKeys = X11HotKeys::create();
        constexpr quint32 v = 9;
        ASSERT_EQ(hotKeys->registerHotKey(v, ModifierFlag::command | ModifierFlag::option), 0);
        std::vector<std::optional<QRectF>> seen;
        hotKeys->onPress = [&] {
            seen.push_back(ask().caret); // at once, and when the program has surely noticed the grab
            seen.push_back(ask().caret);
            hotKeys->releaseKeyboard();
        };
        std::thread finger([] {
            const Desktop own;
            Keyboard(own).press(u"Ctrl+Alt+V"_s, Desktop::Milliseconds(300));
        });
        const bool pressed = QTest::qWaitFor([&] { return seen.size() >= 2; });
        finger.join();
        ASSERT_TRUE(pressed);
        EXPECT_TRUE(before);
        EXPECT_EQ(seen[0], before);
        EXPECT_EQ(seen[1], before);
    }
};

TEST_F(CaretUnderHotKey, IsKnownFromWhatTheProgramToldOfItsFocus)
{
    ASSERT_TRUE(connect());
    ASSERT_TRUE(startMousepad("testo"));
    auto listening = std::exchange(service, makeService());
    ASSERT_TRUE(connect());
    const auto before = awaitCaret([](const auto &caret) { return caret.has_value(); });
    service = std::move(listening); // which has not asked the program for anything yet
    expectToBeKnown(before);
}

TEST_F(CaretUnderHotKey, IsKnownInAProgramThatHadTheFocusBeforeTheServiceCame)
{
    ASSERT_TRUE(connect());
    ASSERT_TRUE(startMousepad("testo"));
    const auto before = awaitCaret([](const auto &caret) { return caret.has_value(); });
    service = makeService();
    ASSERT_TRUE(connect());
    ASSERT_TRUE(awaitCaret([](const auto &caret) { return caret.has_value(); })); // it has looked around
    expectToBeKnown(before);
}

class CaretInQt : public CaretStage,
                  public ::testing::WithParamInterface<std::tuple<const char *, const char *, int>> {};

TEST_P(CaretInQt, IsWhereTheToolkitHasIt)
{
    const auto &[kind, text, position] = GetParam();
    ASSERT_TRUE(connect());
    CaretEntry entry(QLatin1String(kind), QString::fromUtf8(text), position);
    ASSERT_TRUE(entry.hasKeyboard());
    ASSERT_TRUE(bringToFront({{}, u"Caret entry"_s, {}, 0}));
    const auto caret = awaitCaret([](const auto &found) { return found.has_value(); });
    ASSERT_TRUE(caret);
    const QRectF real = entry.realCaret();
    // Its accessibility has the caret a few pixels above the drawn one, and of a field's height at its edges.
    EXPECT_NEAR(caret->left(), real.center().x(), 8) << ::testing::PrintToString(real);
    EXPECT_NEAR(caret->center().y(), real.center().y(), 12)
        << ::testing::PrintToString(*caret) << " for " << ::testing::PrintToString(real);
}

INSTANTIATE_TEST_SUITE_P(Fields, CaretInQt,
                         ::testing::Values(std::tuple{"line", "una riga", 3},
                                           std::tuple{"line", "una riga", 8}, std::tuple{"line", "", 0},
                                           std::tuple{"view", "prima\nseconda", 8},
                                           std::tuple{"view", "prima\nseconda", 13},
                                           std::tuple{"view", "prima\n", 6}, std::tuple{"view", "", 0}));

TEST_F(CaretTest, IsInTheServersPixelsWhateverTheProgramCountsIn)
{
    ASSERT_TRUE(connect());
    ASSERT_TRUE(startMousepad("testo", {u"GDK_SCALE=2"_s}));
    const auto start = awaitCaret([](const auto &caret) { return caret.has_value(); });
    ASSERT_TRUE(start);
    EXPECT_TRUE(isDrawn(*start)) << ::testing::PrintToString(*start);
    program.reset();

    CaretEntry entry(u"line"_s, u"una riga"_s, 4, 2);
    ASSERT_TRUE(entry.hasKeyboard());
    ASSERT_TRUE(bringToFront({{}, u"Caret entry"_s, {}, 0}));
    const auto caret = awaitCaret([](const auto &found) { return found.has_value(); });
    ASSERT_TRUE(caret);
    const QRectF real = entry.realCaret();
    EXPECT_NEAR(caret->left(), 2 * real.center().x(), 16) << ::testing::PrintToString(real);
    EXPECT_NEAR(caret->center().y(), 2 * real.center().y(), 24) << ::testing::PrintToString(*caret);
}

// A request to a program that hangs is answered all the same, and nobody waits for it meanwhile.
TEST_F(CaretTest, OfAStoppedProgramIsAbsentInTimeAndThereAgainWhenItGoesOn)
{
    ASSERT_TRUE(connect());
    ASSERT_TRUE(startMousepad("testo"));
    ASSERT_TRUE(awaitCaret([](const auto &caret) { return caret.has_value(); }));
    program->signal(SIGSTOP);
    for (int round = 0; round < 3; ++round) {
        const Answer answer = ask();
        EXPECT_TRUE(answer.came);
        EXPECT_EQ(answer.caret, std::nullopt);
        EXPECT_GE(answer.milliseconds, 50) << "it may still answer";
        EXPECT_LT(answer.milliseconds, 150);
        EXPECT_LT(answer.largestGap, 60) << "the main thread waited";
    }
    program->signal(SIGCONT);
    EXPECT_TRUE(awaitCaret([](const auto &caret) { return caret.has_value(); }));
}

TEST_F(CaretTest, IsFoundWithoutSwitchingAccessibilityOn)
{
    ASSERT_TRUE(connect());
    ASSERT_TRUE(startMousepad("testo"));
    ASSERT_TRUE(awaitCaret([](const auto &caret) { return caret.has_value(); }));
    auto question = QDBusMessage::createMethodCall(u"org.a11y.Bus"_s, u"/org/a11y/bus"_s,
                                                   u"org.freedesktop.DBus.Properties"_s, u"Get"_s);
    question << u"org.a11y.Status"_s << u"IsEnabled"_s;
    const QDBusReply<QDBusVariant> enabled = QDBusConnection::sessionBus().call(question);
    ASSERT_TRUE(enabled.isValid());
    EXPECT_FALSE(enabled.value().variant().toBool());
}

TEST_F(CaretTest, OfATerminalThatTellsNothingIsAbsentWhateverElseIsOpen)
{
    ASSERT_TRUE(connect());
    ASSERT_TRUE(startMousepad("dietro"));
    ASSERT_TRUE(awaitCaret([](const auto &caret) { return caret.has_value(); }));
    const Child terminal(Child::Setting{u"xterm"_s, {u"-geometry"_s, u"100x30+0+0"_s}, {}, {}});
    ASSERT_TRUE(bringToFront({u"XTerm"_s, {}, {}, 0}));
    const Answer answer = ask();
    EXPECT_TRUE(answer.came);
    EXPECT_EQ(answer.caret, std::nullopt);
    EXPECT_LT(answer.milliseconds, 90) << "it is known at once that nobody can tell";
}

} // namespace
