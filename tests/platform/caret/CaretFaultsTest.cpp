// What programs and buses do to a question for the caret, on a bus of the test's own.

#include "Platform/linux/dbus/CaretBounds.h"
#include "tests/platform/caret/CaretAnswer.h"
#include "tests/platform/caret/ScriptedProgram.h"
#include "tests/support/Variable.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QLocalServer>
#include <QRect>
#include <QTest>
#include <gtest/gtest.h>

namespace {

using namespace Qt::StringLiterals;

constexpr QRect windowArea(100, 50, 600, 400);

std::unique_ptr<AtSpiCaret> makeService(qint64 pid = QCoreApplication::applicationPid())
{
    auto service = std::make_unique<AtSpiCaret>([pid] {
        return std::optional(CaretWindow{pid, windowArea});
    });
    service->setCaretWanted(true);
    return service;
}

bool waitForBus(const Accessibility &service, bool wanted = true)
{
    return QTest::qWaitFor([&] { return service.caretAvailable() == wanted; }, 10000);
}

// A program on the bus that is stopped: what it is asked stays without an answer.
class StoppedProgram : public QDBusVirtualObject {
public:
    explicit StoppedProgram(const QString &name)
        : connection(QDBusConnection::connectToBus(qEnvironmentVariable("AT_SPI_BUS_ADDRESS"), name))
    {
        connection.registerVirtualObject(u"/org/a11y"_s, this, QDBusConnection::SubPath);
    }
    ~StoppedProgram() override { QDBusConnection::disconnectFromBus(connection.name()); }

    [[nodiscard]] AtSpiObject root() const
    {
        return {connection.baseService(), QDBusObjectPath(AtSpi::rootPath)};
    }
    QString introspect(const QString & /*path*/) const override { return {}; }
    bool handleMessage(const QDBusMessage & /*message*/, const QDBusConnection & /*from*/) override
    {
        return true;
    }

private:
    QDBusConnection connection;
};

// A program with one window and one text that has the focus, as a toolkit with a search has it.
class ScriptedCaret : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(bus.start());
        program = std::make_unique<ScriptedProgram>();
        program->setChildren(u"program"_s, {u"window"_s});
        program->setProperty(u"program"_s, AtSpi::application, u"ToolkitName"_s, u"gtk"_s);
        program->setExtents(u"window"_s, windowArea);
        program->setExtents(u"text"_s, QRect(120, 80, 300, 200));
        program->set(u"text"_s, AtSpi::accessible, u"GetInterfaces"_s,
                     QVariantList{QStringList{AtSpi::text}});
        program->setProperty(u"text"_s, AtSpi::text, u"CaretOffset"_s, 4);
        setFocused({u"text"_s});
        setCharacters([](int, uint) { return QRectF(200, 90, 9, 18); });
        service = makeService();
        ASSERT_TRUE(waitForBus(*service));
    }

    void setFocused(const QStringList &names)
    {
        QList<AtSpiObject> found;
        for (const QString &name : names)
            found.append(program->object(name));
        program->set(u"program"_s, AtSpi::collection, u"GetMatches"_s,
                     QVariantList{QVariant::fromValue(found)});
    }

    // Where the character at an offset is in these coordinates; absent when that is refused.
    void setCharacters(const std::function<std::optional<QRectF>(int offset, uint coordinates)> &place)
    {
        program->set(
            u"text"_s, AtSpi::text, u"GetCharacterExtents"_s,
            [place](const QVariantList &arguments) -> std::optional<QVariantList> {
                const auto rect = place(arguments[0].toInt(), arguments[1].toUInt());
                if (!rect)
                    return std::nullopt;
                return QVariantList{int(rect->x()), int(rect->y()), int(rect->width()), int(rect->height())};
            });
    }

    void setText(const QString &text)
    {
        program->set(u"text"_s, AtSpi::text, u"GetText"_s, [text](const QVariantList &arguments) {
            const int start = arguments[0].toInt();
            return std::optional(QVariantList{text.mid(start, arguments[1].toInt() - start)});
        });
    }

    // What was found in the program at the start is no longer where the focus is.
    bool moveFocusToButton()
    {
        program->tellFocus(u"button"_s);
        return QTest::qWaitFor([this] { return caret() == std::nullopt; });
    }

    // An answer may come too late on a busy machine, and then is none; a wrong one stays wrong.
    ::testing::AssertionResult becomes(const QRectF &place)
    {
        std::optional<QRectF> last;
        if (QTest::qWaitFor([&] { return (last = caret()) == place; }, 3000))
            return ::testing::AssertionSuccess();
        return ::testing::AssertionFailure() << ::testing::PrintToString(last);
    }

    std::optional<QRectF> caret() { return askForCaret(*service).caret; }

    ScriptedBus bus;
    std::unique_ptr<ScriptedProgram> program;
    std::unique_ptr<AtSpiCaret> service;
};

TEST_F(ScriptedCaret, IsThatOfTheInnermostFocusedObjectWithAText)
{
    setFocused({u"window"_s, u"text"_s, u"filler"_s});
    EXPECT_TRUE(becomes(QRectF(200, 90, 9, 18)));
}

TEST_F(ScriptedCaret, AtAnEndWithoutAPlaceFollowsTheLastCharacter)
{
    setText(u"abcd"_s);
    setCharacters([](int offset, uint) { return offset == 3 ? QRectF(200, 90, 9, 18) : QRectF(); });
    EXPECT_TRUE(becomes(QRectF(209, 90, 0, 18)));
    setText(u"abc\n"_s);
    EXPECT_TRUE(becomes(QRectF(120, 108, 0, 18))) << "the line below";
    setCharacters([](int, uint) { return QRectF(-1, -1, 0, 0); });
    EXPECT_EQ(caret(), std::nullopt) << "somewhere in a field of many lines";
    program->setExtents(u"text"_s, QRect(120, 80, 300, 30));
    EXPECT_TRUE(becomes(QRectF(120, 80, 0, 30)));
}

TEST_F(ScriptedCaret, OfAToolkitThatCountsFromItsWindowIsOnTheScreen)
{
    program->set(u"program"_s, AtSpi::collection, u"GetMatches"_s,
                 [](const QVariantList &) { return std::optional<QVariantList>(); });
    AtSpiCacheItem window;
    window.object = program->object(u"window"_s);
    window.application = window.parent = program->object(u"program"_s);
    window.states = {1U << AtSpi::stateFocused, 0};
    AtSpiCacheItem text = window;
    text.object = program->object(u"text"_s);
    text.parent = window.object;
    program->set(u"/org/a11y/atspi/cache"_s, AtSpi::cache, u"GetItems"_s,
                 QVariantList{QVariant::fromValue(QList{text, window})});
    program->setProperty(u"program"_s, AtSpi::application, u"ToolkitName"_s, u"GTK"_s);
    program->setExtents(u"window"_s, QRect(0, 0, 300, 200)); // half of what the server has
    setCharacters([](int, uint coordinates) {
        return coordinates == AtSpi::window ? std::optional(QRectF(20, 30, 9, 18)) : std::nullopt;
    });
    EXPECT_TRUE(becomes(QRectF(140, 110, 18, 36)));

    setCharacters([](int, uint) { return std::optional<QRectF>(); });
    program->setExtents(u"text"_s, QRect(10, 20, 200, 30));
    EXPECT_TRUE(becomes(QRectF(120, 90, 0, 60))) << "a line of text tells its own place only";
}

TEST(CaretBounds, ScalesByTheStepsOfTheToolkit)
{
    struct Case {
        double server, program;
        bool whole;
        double scale;
    };
    for (const auto &c : std::vector<Case>{{400, 400, false, 1},
                                           {400, 402, true, 1}, // with the frame of the window manager
                                           {800, 402, true, 2},
                                           {600, 400, false, 1.5},
                                           {500, 400, false, 1.25},
                                           {252, 200, true, 1}, // with a shadow of its own
                                           {800, 0, false, 1},
                                           {0, 800, false, 1},
                                           {100, 400, false, 1},
                                           {9000, 10, false, 4}})
        EXPECT_EQ(CaretBounds::scale(c.server, c.program, c.whole), c.scale)
            << c.server << " for " << c.program;
}

TEST_F(ScriptedCaret, OfAProgramThatFillsItInLaterIsAskedForAgain)
{
    program->setProperty(u"program"_s, AtSpi::application, u"ToolkitName"_s, u"Gecko"_s);
    setText(u"abcd"_s);
    setCharacters([asked = std::make_shared<int>(0)](int, uint) {
        return ++*asked % 2 == 1 ? QRectF(-1, -1, 0, 0) : QRectF(300, 90, 9, 18);
    });
    EXPECT_TRUE(becomes(QRectF(300, 90, 9, 18)));
}

TEST_F(ScriptedCaret, IsRememberedWhileTheProgramNamesNoFocus)
{
    setFocused({});
    ASSERT_TRUE(moveFocusToButton());
    program->tellFocus(u"text"_s);
    EXPECT_TRUE(becomes(QRectF(200, 90, 9, 18)));
    EXPECT_TRUE(moveFocusToButton());
}

TEST_F(ScriptedCaret, OutsideItsWindowIsNone)
{
    setCharacters([](int, uint) { return QRectF(99, 433, 0, 18); });
    EXPECT_TRUE(becomes(QRectF(99, 433, 0, 18))) << "what is rounded is still inside";
    for (const QRectF &place :
         {QRectF(200, 460, 9, 18), QRectF(90, 90, 9, 18), QRectF(200, 90, 2000, 18), QRectF(200, 90, 9, -18),
          QRectF(200, 90, 9, 0), QRectF(0, 0, 0, 0), QRectF(INT_MAX, INT_MIN, INT_MAX, INT_MAX)}) {
        setCharacters([place](int, uint) { return place; });
        setText(u"abcd"_s);
        EXPECT_EQ(caret(), std::nullopt) << ::testing::PrintToString(place);
    }
}

TEST_F(ScriptedCaret, OfAProgramThatAnswersNonsenseIsNone)
{
    const std::vector<std::function<void()>> nonsense{
        [this] { program->set(u"text"_s, AtSpi::text, u"GetCharacterExtents"_s, QVariantList{u"left"_s}); },
        [this] { program->setProperty(u"text"_s, AtSpi::text, u"CaretOffset"_s, u"four"_s); },
        [this] { program->setProperty(u"text"_s, AtSpi::text, u"CaretOffset"_s, -1); },
        [this] { program->set(u"text"_s, AtSpi::accessible, u"GetInterfaces"_s, QVariantList{7}); },
        [this] { program->set(u"program"_s, AtSpi::collection, u"GetMatches"_s, QVariantList{u"all"_s}); },
        [this] { program->set(u"/org/a11y/atspi/cache"_s, AtSpi::cache, u"GetItems"_s, QVariantList()); },
        [this] { program->set(u"program"_s, AtSpi::accessible, u"GetChildren"_s, QVariantList{}); },
        [this] { program->set(u"root"_s, AtSpi::accessible, u"GetChildren"_s, QVariantList{3.5}); },
    };
    for (const auto &make : nonsense) {
        make();
        expectNoCaretInTime(*service);
    }
}

TEST_F(ScriptedCaret, IsNotLookedForInATreeWithoutEnd)
{
    program->set(u"program"_s, AtSpi::collection, u"GetMatches"_s,
                 [](const QVariantList &) { return std::optional<QVariantList>(); });
    for (const auto &name : {u"window"_s, u"filler"_s}) {
        program->setChildren(name, {u"filler"_s, u"filler"_s, u"filler"_s});
        program->setStates(name, {AtSpi::stateShowing});
    }
    ASSERT_TRUE(moveFocusToButton());
    int fewest = INT_MAX; // a question that was given up may go on for a while
    for (int round = 0; round < 5; ++round) {
        program->calls = 0;
        EXPECT_EQ(caret(), std::nullopt);
        fewest = std::min(fewest, program->calls.load());
    }
    EXPECT_LT(fewest, 400) << "two questions an object, and 150 of these";
    expectNoCaretInTime(*service);
}

// As LibreOffice is: a search there, or a look at the children of a sheet, keeps it busy for ever.
TEST_F(ScriptedCaret, OfAnOfficeProgramIsFoundWithoutASearchOfItsCells)
{
    program->setProperty(u"program"_s, AtSpi::accessible, u"Name"_s, u"soffice"_s);
    program->setChildren(u"window"_s, {u"sheet"_s, u"text"_s});
    program->setStates(u"window"_s, {AtSpi::stateShowing, AtSpi::stateActive});
    program->setStates(u"sheet"_s, {AtSpi::stateShowing, AtSpi::stateManagesDescendants});
    program->setStates(u"text"_s, {AtSpi::stateShowing, AtSpi::stateFocused});
    std::atomic<int> hangs = 0;
    const auto hang = [&](const QVariantList &) {
        ++hangs;
        return std::optional<QVariantList>();
    };
    program->set(u"program"_s, AtSpi::collection, u"GetMatches"_s, hang);
    program->set(u"sheet"_s, AtSpi::accessible, u"GetChildren"_s, hang);
    EXPECT_TRUE(becomes(QRectF(200, 90, 9, 18)));
    EXPECT_TRUE(moveFocusToButton());
    // It may be busy when it is asked who it is.
    program->set(u"program"_s, AtSpi::accessible, u"Name"_s,
                 [](const QVariantList &) { return std::optional<QVariantList>(); });
    EXPECT_TRUE(askForCaret(*service).came);
    EXPECT_EQ(hangs, 0);
}

TEST_F(ScriptedCaret, NoAnswerComesToARequestThatWasDropped)
{
    int dropped = 0;
    bool answered = true, kept = false;
    ASSERT_TRUE(QTest::qWaitFor([&] {
        if (std::exchange(answered, false)) { // too late for a caret, or not asked yet
            service->requestCaretRect([&](const auto &) { ++dropped; });
            service->requestCaretRect([&](const auto &caret) { answered = !(kept = caret.has_value()); });
        }
        return kept;
    }));
    service->requestCaretRect([&](const auto &) { ++dropped; });
    service->cancel();
    EXPECT_TRUE(becomes(QRectF(200, 90, 9, 18))) << "a later request goes on";
    EXPECT_EQ(dropped, 0);
}

// Whose window is in front cannot be told by the process id of a program in a sandbox: all are asked.
TEST_F(ScriptedCaret, OfTheActiveProgramIsFoundBesideStoppedOnes)
{
    const StoppedProgram one(u"one"_s), other(u"other"_s);
    program->set(
        u"root"_s, AtSpi::accessible, u"GetChildren"_s,
        QVariantList{QVariant::fromValue(QList{one.root(), program->object(u"program"_s), other.root()})});
    program->setStates(u"window"_s, {AtSpi::stateActive});
    service = makeService(0);
    ASSERT_TRUE(waitForBus(*service));
    EXPECT_TRUE(becomes(QRectF(200, 90, 9, 18)));
    program->setStates(u"window"_s, {});
    EXPECT_EQ(caret(), std::nullopt);
}

TEST_F(ScriptedCaret, IsThereWhileItIsWanted)
{
    service->setCaretWanted(false);
    ASSERT_TRUE(waitForBus(*service, false));
    EXPECT_EQ(caret(), std::nullopt);
    service->setCaretWanted(true);
    ASSERT_TRUE(waitForBus(*service));
    EXPECT_TRUE(becomes(QRectF(200, 90, 9, 18)));
}

TEST_F(ScriptedCaret, IsAbsentInTimeWhileTheBusHangsAndTheMainThreadGoesOn)
{
    bus.stop();
    expectNoCaretInTime(*service);
    bus.goOn();
    EXPECT_TRUE(QTest::qWaitFor([this] { return caret().has_value(); }));
}

TEST_F(ScriptedCaret, DoesNotKeepTheProgramFromEndingWhileTheBusHangs)
{
    bus.stop();
    service->requestCaretRect([](const auto &) {});
    QElapsedTimer ending;
    ending.start();
    service.reset();
    EXPECT_LT(ending.elapsed(), 2000);
    bus.goOn();
}

TEST_F(ScriptedCaret, IsThereAgainAfterTheBusWasStartedAnew)
{
    bus.kill();
    ASSERT_TRUE(waitForBus(*service, false));
    expectNoCaretInTime(*service);
    ASSERT_TRUE(bus.start());
    EXPECT_TRUE(waitForBus(*service));
}

TEST(AccessibilityBus, ThatHangsFromTheStartIsNeverWaitedFor)
{
    const QTemporaryDir folder;
    QLocalServer hungBus; // takes every caller, answers none
    ASSERT_TRUE(hungBus.listen(folder.filePath(u"bus"_s)));
    const Variable address("AT_SPI_BUS_ADDRESS", "unix:path=" + hungBus.fullServerName().toUtf8());
    QElapsedTimer life;
    life.start();
    {
        const auto service = makeService();
        expectNoCaretInTime(*service);
        EXPECT_FALSE(service->caretAvailable());
    }
    EXPECT_LT(life.elapsed(), 5000) << "nor at the end";
}

TEST(AccessibilityBus, ThatIsNotThereLeavesNoCaretToAskFor)
{
    const Variable session("DBUS_SESSION_BUS_ADDRESS");
    for (const char *address : {"disabled:", "autolaunch:", "unix:path=/nonexistent/bus"}) {
        SCOPED_TRACE(address);
        session.set(address);
        const auto service = makeService();
        expectNoCaretInTime(*service);
        EXPECT_FALSE(service->caretAvailable());
    }
}

} // namespace
