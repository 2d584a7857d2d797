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
    const QRectF start = drawnCaret([](const QRectF &) { return true; });
    ASSERT_TRUE(keyboard.press(u"Right"_s) && keyboard.press(u"Right"_s));
    const QRectF middle = drawnCaret([&](const QRectF &caret) { return caret.x() > start.x(); });
    EXPECT_EQ(middle.y(), start.y());
    ASSERT_TRUE(keyboard.press(u"Ctrl+End"_s));
    const QRectF end = drawnCaret([&](const QRectF &caret) { return caret.y() > start.y(); });
    EXPECT_GT(end.x(), middle.x());
    ASSERT_TRUE(keyboard.press(u"Enter"_s));
    const QRectF below = drawnCaret([&](const QRectF &caret) { return caret.y() > end.y(); });
    EXPECT_EQ(below.x(), start.x());

    // And this without switching accessibility on.
    auto question = QDBusMessage::createMethodCall(u"org.a11y.Bus"_s, u"/org/a11y/bus"_s,
                                                   u"org.freedesktop.DBus.Properties"_s, u"Get"_s);
    question << u"org.a11y.Status"_s << u"IsEnabled"_s;
    const QDBusReply<QDBusVariant> enabled = QDBusConnection::sessionBus().call(question);
    ASSERT_TRUE(enabled.isValid());
    EXPECT_FALSE(enabled.value().variant().toBool());
}

TEST_F(CaretTest, OfAnEmptyDocumentAndInTheServersPixelsIsWhereItIsDrawn)
{
    ASSERT_TRUE(connect());
    const std::pair<QByteArray, QStringList> editors[] = {{"", {}}, {"testo", {u"GDK_SCALE=2"_s}}};
    for (const auto &[text, variables] : editors) {
        ASSERT_TRUE(startMousepad(text, variables));
        drawnCaret([](const QRectF &) { return true; });
        program.reset();
    }
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
    const auto before = awaitCaret();
    service = std::move(listening); // which has not asked the program for anything yet
    expectToBeKnown(before);
}

TEST_F(CaretUnderHotKey, IsKnownInAProgramThatHadTheFocusBeforeTheServiceCame)
{
    ASSERT_TRUE(connect());
    ASSERT_TRUE(startMousepad("testo"));
    const auto before = awaitCaret();
    service = makeService();
    ASSERT_TRUE(connect());
    ASSERT_TRUE(awaitCaret()); // it has looked around
    expectToBeKnown(before);
}

struct Field {
    QString kind, text;
    int position;
    int scale = 1;
};

class CaretInQt : public CaretStage, public ::testing::WithParamInterface<Field> {};

TEST_P(CaretInQt, IsWhereTheToolkitHasIt)
{
    const auto &[kind, text, position, scale] = GetParam();
    ASSERT_TRUE(connect());
    CaretEntry entry(kind, text, position, scale);
    ASSERT_TRUE(entry.hasKeyboard());
    ASSERT_TRUE(bringToFront({{}, u"Neighbour"_s, {}, 0}));
    const auto caret = awaitCaret();
    ASSERT_TRUE(caret);
    const QPointF real = entry.realCaret().center() * scale;
    // Its accessibility has the caret a few pixels above the drawn one, and of a field's height at its edges.
    EXPECT_NEAR(caret->left(), real.x(), 8 * scale) << ::testing::PrintToString(*caret);
    EXPECT_NEAR(caret->center().y(), real.y(), 12 * scale) << ::testing::PrintToString(*caret);
}

INSTANTIATE_TEST_SUITE_P(Fields, CaretInQt,
                         ::testing::Values(Field{u"line"_s, u"una riga"_s, 3},
                                           Field{u"line"_s, u"una riga"_s, 8},
                                           Field{u"line"_s, u"una riga"_s, 4, 2}, Field{u"line"_s, u""_s, 0},
                                           Field{u"view"_s, u"prima\nseconda"_s, 8},
                                           Field{u"view"_s, u"prima\nseconda"_s, 13},
                                           Field{u"view"_s, u"prima\n"_s, 6}, Field{u"view"_s, u""_s, 0}));

// A request to a program that hangs is answered all the same, and nobody waits for it meanwhile.
TEST_F(CaretTest, OfAStoppedProgramIsAbsentInTimeAndThereAgainWhenItGoesOn)
{
    ASSERT_TRUE(connect());
    ASSERT_TRUE(startMousepad("testo"));
    ASSERT_TRUE(awaitCaret());
    program->signal(SIGSTOP);
    EXPECT_GE(expectNoCaretInTime(*service).milliseconds, 50) << "it may still answer";
    program->signal(SIGCONT);
    EXPECT_TRUE(awaitCaret());
}

TEST_F(CaretTest, OfATerminalThatTellsNothingIsAbsentWhateverElseIsOpen)
{
    ASSERT_TRUE(connect());
    ASSERT_TRUE(startMousepad("dietro"));
    ASSERT_TRUE(awaitCaret());
    const Child terminal(Child::Setting{u"xterm"_s, {u"-geometry"_s, u"100x30+0+0"_s}, {}, {}});
    ASSERT_TRUE(bringToFront({u"XTerm"_s, {}, {}, 0}));
    EXPECT_LT(expectNoCaretInTime(*service).milliseconds, 90) << "it is known at once that nobody can tell";
}

} // namespace
