#include "tests/desktop/SelectionOwner.h"
#include "tests/desktop/Stage.h"

namespace {

const auto htmlBytes = QByteArrayLiteral("<meta charset=\"utf-8\"><b>Heavy</b> and plain quince");
const auto htmlText = QByteArrayLiteral("Heavy and plain quince");

// A copy of styled text, recorded; the owner has to live on while it is the clipboard's.
std::unique_ptr<SelectionOwner> copyStyled(Stage &stage)
{
    auto owner = std::make_unique<SelectionOwner>(
        SelectionOwner::Content{{"text/html", htmlBytes}, {"UTF8_STRING", htmlText}});
    require(owner->claim(), QStringLiteral("the selection was not to be had"));
    const auto row = stage.awaitNewest(QString::fromUtf8(htmlText));
    require(row.kind == 1, QStringLiteral("recorded as kind %1, not as styled text").arg(row.kind));
    return owner;
}

void startAndOpen(Stage &stage)
{
    stage.openPanel();
    stage.closePanel();
    require(!stage.panel(), QStringLiteral("Esc did not close the panel"));
}

void fromTerminalToQt(Stage &stage)
{
    const auto word = QByteArrayLiteral("walnut_from_a_terminal");
    const auto title = QStringLiteral("shows a word");
    const Child terminal(
        {QStringLiteral("xterm"),
         {QStringLiteral("-title"), title, QStringLiteral("-xrm"),
          QStringLiteral("XTerm*selectToClipboard: true"), QStringLiteral("-e"), QStringLiteral("sh"),
          QStringLiteral("-c"), QStringLiteral("printf '%s\\n' \"$0\"; exec cat"), QString::fromLatin1(word)},
         stage.logFile(QStringLiteral("xterm.log")),
         {}});
    const auto window = stage.desktop.awaitWindow({QStringLiteral("XTerm"), title, {}, 0});
    require(window && stage.desktop.activate(*window), QStringLiteral("no xterm"));
    const auto corner = stage.desktop.geometry(*window).topLeft();
    const auto copied = [&] {
        stage.keyboard.click(corner + QPoint(30, 8), 2); // again until the shell has printed the word
        return stage.desktop.waitFor([&] { return stage.clipboard.read() == word; },
                                     Desktop::Milliseconds(700));
    };
    require(stage.desktop.waitFor(copied), QStringLiteral("a double click in xterm copied nothing"));
    stage.awaitNewest(QString::fromLatin1(word));

    const auto entry = stage.openQtEntry();
    stage.choose(QStringLiteral("walnut terminal"));
    stage.awaitContent(entry, word);
}

void fromMousepadToTerminal(Stage &stage)
{
    const QByteArray text(
        "Pear, \xc3\xa8 matura: \xe2\x82\xac 3 \xe2\x80\x94 \xf0\x9f\x8d\x90 from mousepad");
    {
        const auto editor = stage.openMousepad(text);
        const auto copied = [&] {
            stage.keyboard.press(QStringLiteral("Ctrl+A")); // again until the editor has loaded its file
            stage.keyboard.press(QStringLiteral("Ctrl+C"));
            return stage.desktop.waitFor([&] { return stage.isNewest(QString::fromUtf8(text)); },
                                         Desktop::Milliseconds(1500));
        };
        stage.desktop.waitFor(copied);
        stage.awaitNewest(QString::fromUtf8(text));
    }
    const auto terminal = stage.openTerminal();
    stage.choose(QStringLiteral("pear mousepad"));
    stage.awaitContent(terminal, text);
}

void linesIntoTerminal(Stage &stage)
{
    const auto text = QByteArrayLiteral("first medlar\n\tsecond medlar\n\nlast medlar");
    stage.copy(text);
    stage.copy("something newer than the medlars");
    const auto terminal = stage.openTerminal();
    stage.choose(QStringLiteral("second medlar"));
    stage.awaitContent(terminal, text);
}

void intoMousepad(Stage &stage)
{
    const QByteArray text("quince \xc3\xa0\xc3\xa9\xc3\xae\nfor a GTK view \xf0\x9f\x98\x80");
    stage.copy(text);
    stage.copy("something newer than the quince");
    const auto editor = stage.openMousepad();
    stage.choose(QStringLiteral("quince gtk"));
    const auto saved = [&] {
        stage.keyboard.press(
            QStringLiteral("Ctrl+S")); // nothing says when the paste was taken: save until it was
        return stage.desktop.waitFor([&] { return !editor.content().isEmpty(); }, Desktop::Milliseconds(300));
    };
    stage.desktop.waitFor(saved);
    stage.awaitContent(editor, text);
}

void styledIntoView(Stage &stage)
{
    const auto owner = copyStyled(stage);
    stage.copy("something newer than the styled text");
    const auto entry = stage.openQtEntry();
    stage.choose(QStringLiteral("heavy quince"));
    stage.awaitContent(entry, htmlText);
    require(stage.clipboard.targets().contains("text/html"),
            QStringLiteral("the clipboard offers no text/html"));
    require(stage.clipboard.read("text/html") == htmlBytes, QStringLiteral("text/html came back changed"));
}

void shiftEnter(Stage &stage)
{
    const auto owner = copyStyled(stage);
    stage.copy("something newer than the styled text");
    const auto entry = stage.openQtEntry();
    stage.choose(QStringLiteral("heavy quince"), QStringLiteral("Shift+Enter"));
    stage.awaitContent(entry, htmlText);
    require(stage.clipboard.read() == htmlText, QStringLiteral("the clipboard holds another text"));
    for (const auto &target : stage.clipboard.targets())
        require(!target.contains("html") && !target.contains("rtf") && !target.contains("richtext"),
                QStringLiteral("the clipboard still offers ") + QString::fromLatin1(target));
}

void altEnter(Stage &stage)
{
    const auto text = QByteArrayLiteral("only copied rowan");
    stage.copy(text);
    stage.copy("something newer than the rowan");
    const auto entry = stage.openQtEntry();
    stage.choose(QStringLiteral("rowan copied"), QStringLiteral("Alt+Enter"));
    require(stage.desktop.waitFor([&] { return stage.clipboard.read() == text; }),
            QStringLiteral("the clipboard does not hold the clip"));
    stage.awaitNoPanel();
    require(stage.desktop.staysFalse([&] { return !entry.content().isEmpty(); }, Stage::quiet),
            QStringLiteral("something was typed into the program in front"));
    stage.awaitNewest(QString::fromLatin1(text));
}

void roundTrip(Stage &stage)
{
    const QByteArray text("ciao \xf0\x9f\x98\x80\r\nmondo di sorbe");
    stage.copy(text);
    const auto recorded = stage.rows().size();
    stage.copy("something newer than the two lines");
    stage.choose(QStringLiteral("mondo sorbe"), QStringLiteral("Alt+Enter"));
    require(stage.desktop.waitFor([&] { return stage.clipboard.read() == text; }),
            QStringLiteral("UTF8_STRING came back changed"));
    require(stage.clipboard.read("text/plain;charset=utf-8") == text,
            QStringLiteral("text/plain;charset=utf-8 came back changed"));
    stage.awaitNewest(QString::fromUtf8(text));
    require(stage.rows().size() == recorded + 1, QStringLiteral("our own write was recorded as a copy"));
}

} // namespace

Steps textSteps()
{
    return {
        {"the hot key opens the panel with the keyboard in it and Esc closes it", startAndOpen},
        {"a word selected in xterm is pasted into a Qt line exactly as copied", fromTerminalToQt},
        {"a text copied in mousepad is pasted into xterm exactly as copied", fromMousepadToTerminal},
        {"several lines are pasted into xterm exactly as copied", linesIntoTerminal},
        {"two lines with accents and an emoji are pasted into mousepad exactly as copied", intoMousepad},
        {"Enter pastes a styled clip with its text/html untouched", styledIntoView},
        {"Shift+Enter pastes the same clip as plain text only", shiftEnter},
        {"Alt+Enter copies and types nothing", altEnter},
        {"two lines with an emoji and CR LF come back byte for byte", roundTrip},
    };
}
