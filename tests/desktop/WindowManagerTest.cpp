// The panel beside whatever window manager runs here, as its user sees it: the same table of cases for each
// of them (NORVANE_WM in tests/support/private-desktop names it). All is read back from outside the program.
#include "tests/desktop/Screenshot.h"
#include "tests/desktop/StageTest.h"

#include <QImage>
#include <csignal>
#include <cstdlib>

namespace {

using Milliseconds = Desktop::Milliseconds;

class BesideWindowManager : public StageTest {
protected:
    void SetUp() override
    {
        stage.start();
        target = stage.openQtEntry();
        // The pointer in a corner far from the program in front: there the panel covers least of it.
        const QPoint middle = stage.desktop.geometry(target.window).center();
        stage.keyboard.point({middle.x() < screen.width() / 2 ? screen.width() - 20 : 20,
                              middle.y() < screen.height() / 2 ? screen.height() - 20 : 20});
    }

    void TearDown() override
    {
        stage.closePanel();
        stage.quit();
    }

    // A point of the program's text view, its lower half, that the panel leaves free.
    [[nodiscard]] QPoint freePointOfTheView(xcb_window_t panel) const
    {
        const QRect window = stage.desktop.geometry(target.window);
        const QRect taken = stage.desktop.geometry(panel).adjusted(-20, -20, 20, 20);
        for (int y = window.bottom() - 40; y > window.center().y(); y -= 10)
            for (int x = window.left() + 40; x < window.right() - 40; x += 10)
                if (!taken.contains(x, y))
                    return {x, y};
        throw StepFailure("the panel covers the program in front");
    }

    void escape(xcb_window_t to) const
    {
        stage.press("Esc");
        stage.awaitNoPanel();
        stage.awaitKeyboard(to);
    }

    void expectTyped(const char *text) const
    {
        stage.type(text);
        stage.awaitContent(target, text);
    }

    [[nodiscard]] bool isFullScreen() const
    {
        return stage.desktop.geometry(target.window) == QRect(QPoint(), screen);
    }

    // The program over the whole screen, by the manager's leave where there is one.
    void fillScreen() const
    {
        const auto &desktop = stage.desktop;
        const uint32_t add = 1, askedByTheUser = 2;
        if (desktop.hasWindowManager())
            desktop.askManager(target.window, "_NET_WM_STATE",
                               {add, desktop.atom("_NET_WM_STATE_FULLSCREEN"), 0, askedByTheUser});
        else
            desktop.place(target.window, QPoint(), screen);
        stage.await([&] { return isFullScreen(); }, "no full screen for the program");
    }

    // Of a panel in the middle of the screen, over the program's white view.
    [[nodiscard]] QRect openOverTheView() const
    {
        fillScreen();
        stage.keyboard.point(QPoint(screen.width() / 2, screen.height() / 3));
        return stage.desktop.geometry(stage.openPanel());
    }

    // The child of the root that a click there would go to.
    [[nodiscard]] xcb_window_t windowAt(QPoint point) const
    {
        stage.keyboard.point(point);
        auto *xcb = stage.desktop.connection();
        auto *reply =
            xcb_query_pointer_reply(xcb, xcb_query_pointer(xcb, stage.desktop.screen().root), nullptr);
        const xcb_window_t child = reply == nullptr ? static_cast<xcb_window_t>(XCB_NONE) : reply->child;
        std::free(reply);
        return child;
    }

    const QSize screen{stage.desktop.screen().width_in_pixels, stage.desktop.screen().height_in_pixels};
    Target target;
};

TEST_F(BesideWindowManager, OpensWithTheKeyboardAndTakesWhatIsTypedAtOnce)
{
    stage.typeAhead("xyz", target);
}

TEST_F(BesideWindowManager, PastesIntoAQtEntry)
{
    stage.copy("first choice");
    stage.copy("second one");
    stage.choose("choice");
    stage.awaitContent(target, "first choice");
    stage.awaitNoPanel();
    EXPECT_EQ(stage.clipboard.read(), QByteArray("first choice"));
}

TEST_F(BesideWindowManager, PastesIntoATerminal)
{
    stage.copy("first choice");
    stage.copy("second one");
    const Target terminal = stage.openTerminal();
    stage.choose("choice");
    stage.awaitContent(terminal, "first choice");
    EXPECT_EQ(target.content(), "") << "pasted into the wrong program too";
}

TEST_F(BesideWindowManager, EscapeGivesTheKeyboardBack)
{
    stage.openPanel();
    escape(target.window);
    expectTyped("abc");
}

TEST_F(BesideWindowManager, AClickOutsideClosesItAndReachesTheProgram)
{
    const QPoint free = freePointOfTheView(stage.openPanel());
    // A hand arrives before it presses. A compositor that manages windows too learns where the pointer is
    // once a frame, and a press that comes sooner is lost on its way.
    stage.keyboard.point(free);
    stage.desktop.staysFalse([] { return false; }, Stage::finger);
    stage.keyboard.click(free);
    stage.awaitNoPanel();
    stage.awaitKeyboard(target.window);
    stage.type("q");
    stage.awaitView(target, "q"); // the line had the focus before
    EXPECT_EQ(target.content(), "");
}

TEST_F(BesideWindowManager, ClosesWhenAnotherWindowIsActivated)
{
    const Target other = stage.openQtEntry();
    stage.openPanel();
    require(stage.desktop.activate(target.window), "the other window did not become active");
    stage.awaitNoPanel();
    stage.never([&] { return !stage.desktop.hasKeyboard(target.window); },
                "the closing panel took the keyboard from it", Milliseconds(200));
    expectTyped("k");
    EXPECT_EQ(other.content(), "");
}

TEST_F(BesideWindowManager, ClosesWhenTheUserSwitchesWindows)
{
    const QString manager = qEnvironmentVariable("NORVANE_WM", "none");
    if (manager == "none" || manager == "i3")
        GTEST_SKIP() << "it has no Alt+Tab";
    const Target other = stage.openQtEntry();
    stage.openPanel();
    stage.press("Alt+Tab", Stage::finger);
    stage.awaitNoPanel();
    const auto hasKeyboard = [&](const Target &each) { return stage.desktop.hasKeyboard(each.window); };
    stage.await([&] { return hasKeyboard(target) || hasKeyboard(other); }, "nobody has the keyboard");
}

TEST_F(BesideWindowManager, TheKeysThatCloseAWindowSpareTheProgramBehind)
{
    stage.openPanel();
    stage.press("Alt+F4", Stage::finger);
    stage.never([&] { return !target.program->isRunning(); }, "the program behind the panel was closed");
    EXPECT_TRUE(stage.isRunning());
    stage.closePanel();
    stage.openPanel();
}

TEST_F(BesideWindowManager, ClosesWhenTheProgramInFrontDiesAndOpensAgain)
{
    stage.openPanel();
    target.program->signal(SIGKILL);
    stage.awaitNoPanel();
    stage.openPanel();
    stage.type("xyz");
    stage.awaitSearch("xyz");
}

TEST_F(BesideWindowManager, ReopensAtOnce)
{
    for (int round = 0; round < 3; ++round) {
        stage.openPanel();
        stage.press("Esc");
        stage.awaitNoPanel();
        // While the toolkit still believes that the panel has the focus.
        stage.desktop.staysFalse([] { return false; }, Milliseconds(80));
    }
    stage.openPanel();
    stage.type("xyz");
    stage.awaitSearch("xyz");
    EXPECT_TRUE(stage.searchHasFocus());
    EXPECT_EQ(target.content(), "");
}

TEST_F(BesideWindowManager, StaysAboveAFullScreenWindow)
{
    fillScreen();
    const auto panel = stage.openPanel();
    EXPECT_EQ(windowAt(stage.desktop.geometry(panel).center()), panel);
    escape(target.window);
    EXPECT_TRUE(isFullScreen());
}

TEST_F(BesideWindowManager, ItsCornersShowWhatLiesBehind)
{
    const QRect frame = openOverTheView();
    const auto lightness = [&](QPoint place) { return lightnessAt(stage.desktop, place); };
    const QPoint ground(frame.center().x(), frame.bottom() - 3); // of the panel, less white than the view
    const auto isPainted = [&] {
        const int seen = lightness(ground);
        return seen > 200 && seen < 250 && lightness({frame.center().x(), frame.bottom() + 60}) == 255;
    };
    stage.await(isPainted, "the panel is not on the screen");
    for (const QPoint corner : {frame.topLeft(), frame.topRight(), frame.bottomLeft(), frame.bottomRight()})
        EXPECT_GT(lightness(corner), 200) << corner.x() << ' ' << corner.y(); // the view is white
    EXPECT_NE(windowAt(frame.topLeft()), stage.panel()) << "clicks beyond the curve are not for the panel";
}

// The compositor comes and, where the manager is none itself, goes while the panel is open.
TEST_F(BesideWindowManager, ItsShadowComesAndGoesWithTheCompositorAndTakesNoClicks)
{
    const QRect frame = openOverTheView();
    const QPoint under(frame.center().x(), frame.bottom() + 5);
    const auto isShaded = [&] {
        return lightnessAt(stage.desktop, under) < 235 &&
               lightnessAt(stage.desktop, under + QPoint(0, 59)) > 250;
    };
    const auto isClear = [&] { return !isShaded(); };
    std::unique_ptr<Child> compositor;
    if (stage.desktop.selectionOwner("_NET_WM_CM_S0") == XCB_NONE) {
        EXPECT_FALSE(isShaded());
        compositor = stage.startCompositor();
    }
    stage.await(isShaded, "no shadow under a compositor");
    if (compositor) {
        compositor.reset();
        stage.await(isClear, "a shadow without compositor");
        compositor = stage.startCompositor();
        stage.await(isShaded, "no shadow under the second compositor");
    }
    stage.keyboard.click(under);
    stage.awaitNoPanel();
    stage.await(isClear, "the shadow outlived the panel");
    stage.type("q");
    stage.awaitView(target, "q");
}

TEST_F(BesideWindowManager, IsMovedAndResizedWithTheMouseAndKeepsItsSize)
{
    stage.keyboard.point(QPoint(400, 300));
    const auto panel = stage.openPanel();
    const auto dragTo = [&](QPoint from, QPoint by, const QRect &wanted) {
        stage.await([&] { return windowAt(from) == panel; },
                    "clicks in the panel go elsewhere"); // its shape grows late
        stage.keyboard.drag(from, from + by);
        stage.await([&] { return stage.desktop.geometry(panel) == wanted; }, "not moved or resized");
    };
    const QRect first = stage.desktop.geometry(panel);
    const QRect larger = first.adjusted(0, 0, 40, 30), moved = larger.translated(120, 80);
    dragTo(first.bottomRight() - QPoint(5, 5), {40, 30}, larger);
    dragTo(larger.bottomLeft() + QPoint(60, -14), {120, 80}, moved); // by the hints
    EXPECT_TRUE(stage.desktop.hasKeyboard(panel));
    stage.press("Esc");
    stage.awaitNoPanel();
    EXPECT_EQ(stage.desktop.geometry(stage.openPanel()).size(), larger.size());
}

} // namespace
