// A picture outlives the program that it was copied in: small programs here, and Chromium and GIMP where both
// are installed, as ./norvane test programs does.
#include "tests/desktop/Step.h"
#include "tests/programs/Browsers.h"
#include "tests/programs/Pictures.h"

#include <QStandardPaths>

namespace {

bool isInstalled(const Program &program)
{
    return !QStandardPaths::findExecutable(program.package).isEmpty();
}

bool isPicture(const HistoryFile::Row &row)
{
    return row.kind == 2;
}

STEP("a picture is there after the program that it was copied in has closed")
{
    const auto bytes = pictureBytes(9);
    stage.copyForms({{"image/png", bytes}}); // by a program that ends with it
    const auto copied = stage.rows().front();
    require(isPicture(copied), QString("recorded as kind %1, not as an image").arg(copied.kind));
    stage.copy("something newer than the picture");
    const auto inFront = stage.openTerminal();
    pasteFromPanel(stage, copied, {});
    require(stage.clipboard.read("image/png") == bytes, "the picture came back changed");
}

STEP("a picture copied in Chromium, then closed, is pasted in GIMP")
{
    leaveOutUnless(isInstalled(chromium()) && isInstalled(gimp()));
    HistoryFile::Row copied;
    QByteArray bytes;
    {
        const OpenProgram browser(stage, copyingThePicture(chromium()),
                                  picturePage(pictureBytes(8))(freshPath(stage)));
        copied = browser.copyAll(isPicture);
        bytes = stage.clipboard.read("image/png").value_or(QByteArray());
    }
    OpenProgram editor(stage, gimp(), gimp().makeBlank(freshPath(stage)));
    editor.becomeReady();
    pasteFromPanel(stage, copied, {});
    editor.awaitPaste();
    const auto same = [&](const QByteArray &again) { return pixels(again) == pixels(bytes); };
    require(!bytes.isEmpty() && same(editor.copiedAgain("image/png", same)), "GIMP shows another picture");
    stage.saveScreenshot("picture-in-gimp");
}

} // namespace
