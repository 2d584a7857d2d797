// The panel beside whatever window manager runs here, as its user sees it: the same table of cases for each
// of them (NORVANE_WM in tests/support/private-desktop names it). All is read back from outside the program.
#include "tests/desktop/Screenshot.h"
#include "tests/desktop/Stage.h"

#include <QImage>
#include <csignal>
#include <cstdlib>
#include <gtest/gtest.h>

namespace {

using Milliseconds = Desktop::Milliseconds;

QString manager()
{
    return qEnvironmentVariable("NORVANE_WM", QStringLiteral("none"));
}

class BesideWindowManager : public testing::Test {
protected:
    void SetUp() override
    {
        show([this] {
            stage.start();
            target = stage.openQtEntry();
            stage.keyboard.point(away());
        });
    }

    void TearDown() override
    {
        show([this] {
            stage.closePanel();
            stage.quit();
        });
    }

    // A step that fails throws; here it becomes a failure of the test.
    template <typename Steps>
    void show(const Steps &steps)
    {
        try {
            steps();
        } catch (const StepFailure &failure) {
            FAIL() << manager().toStdString() << ": " << failure.why.toStdString();
        }
    }

    // A corner of the screen far from the program in front: there the panel covers least of it.
    [[nodiscard]] QPoint away() const
    {
        const QPoint middle = stage.desktop.geometry(target.window).center();
        const QSize screen = screenSize();
        return {middle.x() < screen.width() / 2 ? screen.width() - 20 : 20,
                middle.y() < screen.height() / 2 ? screen.height() - 20 : 20};
    }

    [[nodiscard]] QSize screenSize() const
    {
        const auto &screen = stage.desktop.screen();
        return {screen.width_in_pixels, screen.height_in_pixels};
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
        throw StepFailure{QStringLiteral("the panel covers the program in front")};
    }

    void awaitSearch(const QString &text) const
    {
        const bool there = stage.desktop.waitFor([&] { return stage.searchText() == text; });
        require(there,
                QStringLiteral("the search field holds \"%1\", not \"%2\"").arg(stage.searchText(), text));
    }

    void awaitKeyboard(xcb_window_t window, const QString &when) const
    {
        require(stage.desktop.waitFor([&] { return stage.desktop.hasKeyboard(window); }),
                QStringLiteral("no keyboard for the program in front ") + when);
    }

    // Over the whole screen, by the manager's leave where there is one.
    void fillScreen() const
    {
        const auto &desktop = stage.desktop;
        if (desktop.hasWindowManager()) {
            xcb_client_message_event_t message{};
            message.response_type = XCB_CLIENT_MESSAGE;
            message.format = 32;
            message.window = target.window;
            message.type = desktop.atom("_NET_WM_STATE");
            message.data.data32[0] = 1; // add
            message.data.data32[1] = desktop.atom("_NET_WM_STATE_FULLSCREEN");
            message.data.data32[3] = 2; // asked by the user
            xcb_send_event(desktop.connection(), 0, desktop.screen().root,
                           XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                           reinterpret_cast<const char *>(&message));
        } else {
            const uint32_t values[] = {0, 0, desktop.screen().width_in_pixels,
                                       desktop.screen().height_in_pixels};
            xcb_configure_window(desktop.connection(), target.window,
                                 XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH |
                                     XCB_CONFIG_WINDOW_HEIGHT,
                                 values);
        }
        xcb_flush(desktop.connection());
        require(desktop.waitFor([&] { return isFullScreen(); }),
                QStringLiteral("no full screen for the program"));
    }

    [[nodiscard]] bool isFullScreen() const
    {
        return stage.desktop.geometry(target.window) == QRect(QPoint(), screenSize());
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

    Stage stage{QStringLiteral(NORVANE_PROGRAM), QDir(qEnvironmentVariable("HOME"))};
    Target target;
};

TEST_F(BesideWindowManager, OpensWithTheKeyboardAndTakesWhatIsTypedAtOnce)
{
    show([this] {
        stage.hotKey();
        stage.keyboard.type(QStringLiteral("xyz"));
        stage.awaitPanel();
        awaitSearch(QStringLiteral("xyz"));
        EXPECT_EQ(target.content(), "") << "keys went to the program in front";
    });
}

TEST_F(BesideWindowManager, PastesIntoAQtEntry)
{
    show([this] {
        stage.copy("first choice");
        stage.copy("second one");
        stage.choose(QStringLiteral("choice"));
        stage.awaitContent(target, "first choice");
        stage.awaitNoPanel();
        EXPECT_EQ(stage.clipboard.read(), std::optional(QByteArray("first choice")));
    });
}

TEST_F(BesideWindowManager, PastesIntoATerminal)
{
    show([this] {
        stage.copy("first choice");
        stage.copy("second one");
        const Target terminal = stage.openTerminal();
        stage.choose(QStringLiteral("choice"));
        stage.awaitContent(terminal, "first choice");
        EXPECT_EQ(target.content(), "") << "pasted into the wrong program too";
    });
}

TEST_F(BesideWindowManager, EscapeGivesTheKeyboardBack)
{
    show([this] {
        stage.openPanel();
        stage.keyboard.press(QStringLiteral("Esc"));
        stage.awaitNoPanel();
        awaitKeyboard(target.window, QStringLiteral("after Esc"));
        stage.keyboard.type(QStringLiteral("abc"));
        stage.awaitContent(target, "abc");
    });
}

TEST_F(BesideWindowManager, AClickOutsideClosesItAndReachesTheProgram)
{
    show([this] {
        const auto panel = stage.openPanel();
        const QPoint free = freePointOfTheView(panel);
        // A hand arrives before it presses. A compositor that manages windows too learns where the pointer is
        // once a frame, and a press that comes sooner is lost on its way.
        stage.keyboard.point(free);
        stage.desktop.staysFalse([] { return false; }, Stage::finger);
        stage.keyboard.click(free);
        stage.awaitNoPanel();
        awaitKeyboard(target.window, QStringLiteral("after the click"));
        stage.keyboard.type(QStringLiteral("q"));
        const Target view{nullptr, target.window, target.viewFile, {}}; // the line had the focus before
        stage.awaitContent(view, "q");
        EXPECT_EQ(target.content(), "");
    });
}

TEST_F(BesideWindowManager, ClosesWhenAnotherWindowIsActivated)
{
    show([this] {
        const Target other = stage.openQtEntry();
        stage.openPanel();
        require(stage.desktop.activate(target.window),
                QStringLiteral("the other window did not become active"));
        stage.awaitNoPanel();
        EXPECT_TRUE(stage.desktop.staysFalse([&] { return !stage.desktop.hasKeyboard(target.window); },
                                             Milliseconds(200)))
            << "the closing panel took the keyboard from it";
        stage.keyboard.type(QStringLiteral("k"));
        stage.awaitContent(target, "k");
        EXPECT_EQ(other.content(), "");
    });
}

TEST_F(BesideWindowManager, ClosesWhenTheUserSwitchesWindows)
{
    if (manager() == QLatin1String("none") || manager() == QLatin1String("i3"))
        GTEST_SKIP() << "it has no Alt+Tab";
    show([this] {
        const Target other = stage.openQtEntry();
        stage.openPanel();
        stage.keyboard.press(QStringLiteral("Alt+Tab"), Stage::finger);
        stage.awaitNoPanel();
        require(stage.desktop.waitFor([&] {
            return stage.desktop.hasKeyboard(target.window) || stage.desktop.hasKeyboard(other.window);
        }),
                QStringLiteral("nobody has the keyboard"));
    });
}

TEST_F(BesideWindowManager, TheKeysThatCloseAWindowSpareTheProgramBehind)
{
    show([this] {
        stage.openPanel();
        stage.keyboard.press(QStringLiteral("Alt+F4"), Stage::finger);
        EXPECT_TRUE(stage.desktop.staysFalse([&] { return !target.program->isRunning(); }, Stage::quiet))
            << "the program behind the panel was closed";
        EXPECT_TRUE(stage.isRunning());
        stage.closePanel();
        stage.openPanel();
    });
}

TEST_F(BesideWindowManager, ClosesWhenTheProgramInFrontDiesAndOpensAgain)
{
    show([this] {
        stage.openPanel();
        target.program->signal(SIGKILL);
        stage.awaitNoPanel();
        stage.openPanel();
        stage.keyboard.type(QStringLiteral("xyz"));
        awaitSearch(QStringLiteral("xyz"));
    });
}

TEST_F(BesideWindowManager, ReopensAtOnce)
{
    show([this] {
        for (int round = 0; round < 3; ++round) {
            stage.openPanel();
            stage.keyboard.press(QStringLiteral("Esc"));
            stage.awaitNoPanel();
            // While the toolkit still believes that the panel has the focus.
            stage.desktop.staysFalse([] { return false; }, Milliseconds(80));
        }
        stage.openPanel();
        stage.keyboard.type(QStringLiteral("xyz"));
        awaitSearch(QStringLiteral("xyz"));
        EXPECT_TRUE(stage.searchHasFocus());
        EXPECT_EQ(target.content(), "");
    });
}

TEST_F(BesideWindowManager, StaysAboveAFullScreenWindow)
{
    show([this] {
        fillScreen();
        const auto panel = stage.openPanel();
        EXPECT_EQ(windowAt(stage.desktop.geometry(panel).center()), panel);
        stage.keyboard.press(QStringLiteral("Esc"));
        stage.awaitNoPanel();
        awaitKeyboard(target.window, QStringLiteral("after Esc"));
        EXPECT_TRUE(isFullScreen());
    });
}

TEST_F(BesideWindowManager, ItsCornersShowWhatLiesBehind)
{
    show([this] {
        fillScreen();
        stage.keyboard.point(QPoint(screenSize().width() / 2, screenSize().height() / 3));
        const auto panel = stage.openPanel();
        const QRect frame = stage.desktop.geometry(panel);
        QImage picture;
        const QPoint ground(frame.center().x(), frame.bottom() - 3); // of the panel, less white than the view
        const QPoint view(frame.center().x(), frame.bottom() + 60);
        require(stage.desktop.waitFor([&] {
            picture = screenshot(stage.desktop);
            const int seen = qGray(picture.pixel(ground));
            return seen > 200 && seen < 250 && qGray(picture.pixel(view)) == 255;
        }),
                QStringLiteral("the panel is not on the screen"));
        for (const QPoint corner :
             {frame.topLeft(), frame.topRight(), frame.bottomLeft(), frame.bottomRight()})
            EXPECT_GT(qGray(picture.pixel(corner)), 200)
                << corner.x() << ' ' << corner.y(); // the view is white
        EXPECT_NE(windowAt(frame.topLeft()), panel) << "clicks beyond the curve are not for the panel";
    });
}

// The compositor comes and, where the manager is none itself, goes while the panel is open.
TEST_F(BesideWindowManager, ItsShadowComesAndGoesWithTheCompositorAndTakesNoClicks)
{
    show([this] {
        fillScreen();
        stage.keyboard.point(QPoint(screenSize().width() / 2, screenSize().height() / 3));
        const QRect frame = stage.desktop.geometry(stage.openPanel());
        const QPoint under(frame.center().x(), frame.bottom() + 5);
        const auto isShaded = [&] {
            const QImage seen = screenshot(stage.desktop, QRect(under, QSize(1, 60)));
            return !seen.isNull() && qGray(seen.pixel(0, 0)) < 235 && qGray(seen.pixel(0, 59)) > 250;
        };
        std::unique_ptr<Child> compositor;
        const auto isComposited = [&] { return stage.desktop.selectionOwner("_NET_WM_CM_S0") != XCB_NONE; };
        if (!isComposited()) {
            EXPECT_FALSE(isShaded());
            compositor = stage.startCompositor();
        }
        EXPECT_TRUE(stage.desktop.waitFor(isShaded)) << "no shadow under a compositor";
        if (compositor) {
            compositor.reset();
            EXPECT_TRUE(stage.desktop.waitFor([&] { return !isShaded(); })) << "a shadow without compositor";
            compositor = stage.startCompositor();
            EXPECT_TRUE(stage.desktop.waitFor(isShaded)) << "no shadow under the second compositor";
        }
        stage.keyboard.click(under);
        stage.awaitNoPanel();
        EXPECT_TRUE(stage.desktop.waitFor([&] { return !isShaded(); })) << "the shadow outlived the panel";
        stage.keyboard.type(QStringLiteral("q"));
        stage.awaitContent({nullptr, target.window, target.viewFile, {}}, "q");
    });
}

TEST_F(BesideWindowManager, IsMovedAndResizedWithTheMouseAndKeepsItsSize)
{
    show([this] {
        stage.keyboard.point(QPoint(400, 300));
        const auto panel = stage.openPanel();
        const QRect first = stage.desktop.geometry(panel);
        const QPoint corner = first.bottomRight() - QPoint(5, 5);
        require(stage.desktop.waitFor([&] { return windowAt(corner) == panel; }),
                QStringLiteral("clicks in the panel's corner go elsewhere"));
        stage.keyboard.drag(corner, first.bottomRight() + QPoint(35, 25));
        const QRect larger = first.adjusted(0, 0, 40, 30);
        EXPECT_TRUE(stage.desktop.waitFor([&] { return stage.desktop.geometry(panel) == larger; }))
            << "not resized";
        const QPoint hint = larger.bottomLeft() + QPoint(60, -14);
        require(
            stage.desktop.waitFor([&] { return windowAt(hint) == panel; }), // its shape grows a moment later
            QStringLiteral("clicks in the larger panel go elsewhere"));
        stage.keyboard.drag(hint, hint + QPoint(120, 80));
        const QRect moved = larger.translated(120, 80);
        EXPECT_TRUE(stage.desktop.waitFor([&] { return stage.desktop.geometry(panel) == moved; }))
            << "not moved";
        EXPECT_TRUE(stage.desktop.hasKeyboard(panel));
        stage.keyboard.press(QStringLiteral("Esc"));
        stage.awaitNoPanel();
        EXPECT_EQ(stage.desktop.geometry(stage.openPanel()).size(), larger.size());
    });
}

} // namespace
