// Pictures of windows, read in the background.
#include "tests/desktop/Screenshot.h"
#include "tests/desktop/Stage.h"

#include <QBuffer>

namespace {

constexpr Desktop::Milliseconds patience{60000}; // images are read when nothing else wants to run

QByteArray png(const QImage &image)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes;
}

// Photographs a window and copies the picture; gives what was read in it.
QString copyPicture(Stage &stage, xcb_window_t window)
{
    const QImage picture = steadyScreenshot(stage.desktop, stage.desktop.geometry(window));
    stage.copy(png(picture), "image/png");
    const auto id = stage.rows().front().id;
    QString text;
    const auto isRead = [&] {
        for (const auto &row : stage.rows()) {
            if (row.id == id && row.recognized)
                text = *row.recognized;
        }
        return !text.isEmpty();
    };
    require(stage.desktop.waitFor(isRead, patience), QStringLiteral("the picture was not read"));
    return text;
}

void readWindow(Stage &stage)
{
    QString text;
    {
        const auto editor = stage.openMousepad(
            "Invoice no. 118 of the carpenter\n\nThe oak staircase is due on Thursday\nAmount: 1240 euro\n");
        text = copyPicture(stage, editor.window);
    }
    require(text.contains(QStringLiteral("oak staircase")), QStringLiteral("read: ") + text);
    stage.copy("something newer than the picture");
    stage.openPanel();
    stage.keyboard.type(QStringLiteral("thursday invoice"));
    stage.awaitListed(1, QStringLiteral("two words of the picture, in another order"));
    stage.saveScreenshot(QStringLiteral("panel-picture"));
    stage.closePanel();

    const auto editor = stage.openMousepad();
    stage.choose(QStringLiteral("staircase carpenter"), QStringLiteral("Shift+Enter"));
    const auto saved = [&] {
        stage.keyboard.press(QStringLiteral("Ctrl+S")); // until the editor has taken the paste
        return stage.desktop.waitFor([&] { return !editor.content().isEmpty(); }, Desktop::Milliseconds(300));
    };
    stage.desktop.waitFor(saved);
    stage.awaitContent(editor, text.toUtf8());
    require(stage.clipboard.targets().contains("UTF8_STRING") &&
                !stage.clipboard.targets().contains("image/png"),
            QStringLiteral("the clipboard still offers the picture"));
}

} // namespace

Steps readingSteps()
{
    return {
        {"a picture of a window is read, found by its words and pasted as text", readWindow},
    };
}
