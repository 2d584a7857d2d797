// The whole program beside a text editor.

#include "tests/platform/caret/CaretStage.h"

#include <csignal>

namespace {

using namespace Qt::StringLiterals;

class PanelAtCaret : public CaretStage {
protected:
    std::optional<xcb_window_t> panel(Desktop::Milliseconds bound)
    {
        return desktop.awaitWindow({u"Norvane"_s, {}, true, 400}, bound);
    }

    // The panel that was open is closed, and the editor has the keyboard back.
    bool backInEditor()
    {
        return desktop.waitFor([this] {
            return !desktop.findWindow({u"Norvane"_s, {}, true, 400}) && desktop.hasKeyboard(window);
        });
    }

    // The hot key is not taken until the program has started.
    bool awaitHotKey()
    {
        return desktop.waitFor([this] {
            return keyboard.press(u"Ctrl+Alt+V"_s) && panel(Desktop::Milliseconds(500)).has_value();
        }) && keyboard.press(u"Esc"_s) &&
               backInEditor();
    }
};

TEST_F(PanelAtCaret, OpensBelowTheCaretAndGetsWhatIsTypedAtOnce)
{
    ASSERT_TRUE(connect());
    Child norvane(Child::Setting{QStringLiteral(NORVANE_PROGRAM), {}, scratch.filePath(u"log"_s), {}});
    ASSERT_TRUE(startMousepad("una riga"));
    keyboard.point({1500, 900});
    ASSERT_TRUE(awaitHotKey());
    const auto start = awaitCaret([](const auto &caret) { return caret.has_value(); });
    ASSERT_TRUE(start && keyboard.press(u"End"_s));
    const auto caret = awaitCaret([&](const auto &found) { return found && found->x() > start->x(); });
    ASSERT_TRUE(caret);

    ASSERT_TRUE(keyboard.press(u"Ctrl+Alt+V"_s) && keyboard.type(u"xyz"_s));
    const auto opened = panel(Desktop::patience);
    ASSERT_TRUE(opened);
    const QRect place = desktop.geometry(*opened);
    EXPECT_EQ(place.left(), qRound(caret->left()));
    EXPECT_EQ(place.top(), qRound(caret->bottom()) + 6);
    ASSERT_TRUE(keyboard.press(u"Esc"_s) && keyboard.press(u"Esc"_s)); // the first one clears the field
    ASSERT_TRUE(backInEditor());
    EXPECT_FALSE(desktop.title(window).startsWith(u'*')) << "the editor got the letters";

    norvane.signal(SIGTERM);
    EXPECT_EQ(norvane.awaitExit(), std::optional(0));
}

} // namespace
