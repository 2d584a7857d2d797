// Pictures of windows, read in the background.
#include "tests/desktop/Screenshot.h"
#include "tests/desktop/Step.h"
#include "tests/support/Captures.h"

namespace {

// Photographs a window and copies the picture; gives what was read in it.
QString copyPicture(Stage &stage, xcb_window_t window)
{
    stage.copy(encoded(steadyScreenshot(stage.desktop, stage.desktop.geometry(window))), "image/png");
    const auto id = stage.rows().front().id;
    QString text;
    const auto isRead = [&] {
        for (const auto &row : stage.rows()) {
            if (row.id == id && row.recognized)
                text = *row.recognized;
        }
        return !text.isEmpty();
    };
    // Images are read when nothing else wants to run.
    stage.await(isRead, "the picture was not read", Desktop::Milliseconds(60000));
    return text;
}

STEP("a picture of a window is read, found by its words and pasted as text")
{
    QString text;
    {
        const auto editor = stage.openMousepad(
            "Invoice no. 118 of the carpenter\n\nThe oak staircase is due on Thursday\nAmount: 1240 euro\n");
        text = copyPicture(stage, editor.window);
    }
    require(text.contains("oak staircase"), "read: " + text);
    stage.copy("something newer than the picture");
    stage.openPanel();
    stage.type("thursday invoice");
    stage.awaitListed(1, "two words of the picture, in another order");
    stage.saveScreenshot("panel-picture");
    stage.closePanel();

    const auto editor = stage.openMousepad();
    stage.choose("staircase carpenter", "Shift+Enter");
    stage.awaitSaved(editor, text.toUtf8());
    require(stage.clipboard.targets().contains("UTF8_STRING") &&
                !stage.clipboard.targets().contains("image/png"),
            "the clipboard still offers the picture");
}

} // namespace
