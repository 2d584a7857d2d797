#include "tests/desktop/SelectionOwner.h"
#include "tests/desktop/Step.h"

namespace {

const QByteArray htmlBytes = "<meta charset=\"utf-8\"><b>Heavy</b> and plain quince";
const QByteArray htmlText = "Heavy and plain quince";

STEP("the hot key opens the panel with the keyboard in it and Esc closes it")
{
    stage.openPanel();
    stage.closePanel();
    require(!stage.panel(), "Esc did not close the panel");
}

STEP("a word selected in xterm is pasted into a Qt line exactly as copied")
{
    const QByteArray word = "walnut_from_a_terminal";
    const QString title = "shows a word";
    const auto terminal = stage.run("xterm", {"-title", title, "-xrm", "XTerm*selectToClipboard: true", "-e",
                                              "sh", "-c", "printf '%s\\n' \"$0\"; exec cat", word});
    const auto corner = stage.desktop.geometry(stage.activate({"XTerm", title})).topLeft();
    // Again until the shell has printed the word.
    stage.repeat([&] { stage.keyboard.click(corner + QPoint(30, 8), 2); },
                 [&] { return stage.clipboard.read() == word; }, "a double click in xterm copied nothing",
                 Desktop::Milliseconds(700));
    stage.awaitNewest(word);

    const auto entry = stage.openQtEntry();
    stage.choose("walnut terminal");
    stage.awaitContent(entry, word);
}

STEP("a text copied in mousepad is pasted into xterm exactly as copied")
{
    const QByteArray text = "Pear, è matura: € 3 — 🍐 from mousepad";
    {
        const auto editor = stage.openMousepad(text);
        const auto copyAll = [&] {
            stage.press("Ctrl+A");
            stage.press("Ctrl+C");
        };
        // Again until the editor has loaded its file.
        stage.repeat(
            copyAll, [&] { return stage.isNewest(text); }, "mousepad copied nothing");
    }
    const auto terminal = stage.openTerminal();
    stage.choose("pear mousepad");
    stage.awaitContent(terminal, text);
}

STEP("several lines are pasted into xterm exactly as copied")
{
    const QByteArray text = "first medlar\n\tsecond medlar\n\nlast medlar";
    stage.copy(text);
    stage.copy("something newer than the medlars");
    const auto terminal = stage.openTerminal();
    stage.choose("second medlar");
    stage.awaitContent(terminal, text);
}

STEP("two lines with accents and an emoji are pasted into mousepad exactly as copied")
{
    const QByteArray text = "quince àéî\nfor a GTK view 😀";
    stage.copy(text);
    stage.copy("something newer than the quince");
    const auto editor = stage.openMousepad();
    stage.choose("quince gtk");
    stage.awaitSaved(editor, text);
}

// A copy of styled text, and a newer one; then chosen, it is in the line of a program.
void pasteStyled(Stage &stage, const QString &chord)
{
    SelectionOwner owner({{"text/html", htmlBytes}, {"UTF8_STRING", htmlText}});
    require(owner.claim(), "the selection was not to be had");
    const auto row = stage.awaitNewest(htmlText);
    require(row.kind == 1, QString("recorded as kind %1, not as styled text").arg(row.kind));
    stage.copy("something newer than the styled text");
    const auto entry = stage.openQtEntry();
    stage.choose("heavy quince", chord);
    stage.awaitContent(entry, htmlText);
}

STEP("Enter pastes a styled clip with its text/html untouched")
{
    pasteStyled(stage, "Enter");
    require(stage.clipboard.targets().contains("text/html"), "the clipboard offers no text/html");
    require(stage.clipboard.read("text/html") == htmlBytes, "text/html came back changed");
}

STEP("Shift+Enter pastes the same clip as plain text only")
{
    pasteStyled(stage, "Shift+Enter");
    require(stage.clipboard.read() == htmlText, "the clipboard holds another text");
    for (const auto &target : stage.clipboard.targets())
        require(!target.contains("html") && !target.contains("rtf") && !target.contains("richtext"),
                "the clipboard still offers " + QString(target));
}

STEP("Alt+Enter copies and types nothing")
{
    const QByteArray text = "only copied rowan";
    stage.copy(text);
    stage.copy("something newer than the rowan");
    const auto entry = stage.openQtEntry();
    stage.choose("rowan copied", "Alt+Enter");
    stage.awaitClipboard(text);
    stage.awaitNoPanel();
    stage.never([&] { return !entry.content().isEmpty(); }, "something was typed into the program in front");
    stage.awaitNewest(text);
}

STEP("two lines with an emoji and CR LF come back byte for byte")
{
    const QByteArray text = "ciao 😀\r\nmondo di sorbe";
    stage.copy(text);
    const auto recorded = stage.rows().size();
    stage.copy("something newer than the two lines");
    stage.choose("mondo sorbe", "Alt+Enter");
    stage.awaitClipboard(text);
    stage.awaitClipboard(text, "text/plain;charset=utf-8");
    stage.awaitNewest(text);
    require(stage.rows().size() == recorded + 1, "our own write was recorded as a copy");
}

} // namespace
