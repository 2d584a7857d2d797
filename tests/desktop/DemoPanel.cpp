#include "tests/desktop/Step.h"

#include <algorithm>

namespace {

STEP("keys typed right after the hot key land in the search field")
{
    const auto entry = stage.openQtEntry();
    stage.typeAhead("zyx", entry);
}

STEP("the hot key closes an open panel and the keyboard goes back")
{
    const auto entry = stage.openQtEntry();
    stage.openPanel();
    stage.hotKey();
    stage.awaitNoPanel();
    stage.awaitKeyboard(entry.window);
    stage.type("back");
    stage.awaitContent(entry, "back");
}

STEP("a hot key held for long opens the panel once")
{
    stage.hotKey(Desktop::Milliseconds(1200)); // the server repeats the key meanwhile
    stage.awaitPanel();
    stage.never([&] { return !stage.panel(); }, "the panel closed by itself");
}

STEP("Esc clears the query, then closes")
{
    stage.openPanel();
    stage.type("abc");
    stage.awaitSearch("abc");
    stage.press("Esc");
    stage.awaitSearch("");
    require(stage.panel().has_value(), "Esc with a query closed the panel");
    stage.press("Esc");
    stage.awaitNoPanel();
}

// Far from each other, so that no panel near the one covers the other.
void place(const Stage &stage, xcb_window_t window, QPoint where)
{
    stage.desktop.place(window, where);
    const auto arrived = [&] {
        return (stage.desktop.geometry(window).topLeft() - where).manhattanLength() < 60; // less its frame
    };
    stage.await(arrived, "the window did not move");
}

STEP("a click outside closes the panel and reaches the other program")
{
    const auto other = stage.openQtEntry();
    place(stage, other.window, QPoint(1120, 700));
    const auto front = stage.openQtEntry();
    place(stage, front.window, QPoint(20, 20));
    stage.keyboard.point(QPoint(200, 100)); // wherever the panel opens, it is on this side
    const auto panel = stage.openPanel();
    const auto there = stage.desktop.geometry(other.window).center() + QPoint(0, 40); // in its text view
    require(!stage.desktop.geometry(panel).contains(there), "the panel covers the other window");
    stage.keyboard.click(there);
    stage.awaitNoPanel();
    stage.awaitKeyboard(other.window);
    stage.type("clicked");
    stage.awaitView(other, "clicked");
    require(front.content().isEmpty(), "letters went to the first program");
}

STEP("Ctrl+P pins and unpins")
{
    stage.copy("to be pinned");
    stage.openPanel();
    for (const bool pinned : {true, false, true}) {
        stage.press("Ctrl+P");
        const auto isRight = [&] {
            const auto newest = stage.rows().front();
            return newest.text == "to be pinned" && newest.pinned == pinned;
        };
        stage.await(isRight, pinned ? "Ctrl+P did not pin" : "Ctrl+P did not unpin");
        require(stage.panel().has_value(), "Ctrl+P closed the panel");
    }
}

STEP("Tab and Shift+Tab go round the filters")
{
    const auto rows = stage.rows();
    const auto count = [&](const auto &test) {
        return qsizetype(std::count_if(rows.begin(), rows.end(), test));
    };
    using Row = const HistoryFile::Row &;
    const auto all = qsizetype(rows.size()), texts = count([](Row row) { return row.kind < 2; }),
               images = count([](Row row) { return row.kind == 2; }),
               files = count([](Row row) { return row.kind == 3; }),
               pinned = count([](Row row) { return row.pinned; });
    require(images > 0 && files > 0, "the history lacks a picture or files");
    stage.openPanel();
    stage.awaitListed(all, "at first");
    for (const auto &[key, listed] : {std::pair{"Tab", texts},
                                      {"Tab", images},
                                      {"Tab", files},
                                      {"Tab", pinned},
                                      {"Tab", all},
                                      {"Shift+Tab", pinned},
                                      {"Tab", all}}) {
        stage.press(key);
        stage.awaitListed(listed, QString("after ") + key);
    }
}

STEP("words narrow the list and the count")
{
    stage.copy("persimmon and loquat");
    stage.copy("loquat alone");
    const auto all = stage.rows().size();
    stage.openPanel();
    stage.type("loquat");
    stage.awaitListed(2, "loquat");
    require(stage.listed().first() == "loquat alone", "not the newest first");
    require(stage.countText().contains(QString::number(all)),
            "the count reads \"" + stage.countText() + "\"");
    stage.type(" PERSI");
    stage.awaitListed(1, "two words");
    stage.type("qqq");
    stage.awaitListed(0, "no match");
}

STEP("a copy made while the panel is open appears and the selection stays")
{
    stage.copy("stays selected");
    stage.openPanel();
    const auto before = stage.listed().size();
    stage.copy("copied while the panel is open");
    stage.awaitListed(before + 1, "after the copy");
    require(stage.panel().has_value(), "the panel closed");
    stage.press("Alt+Enter");
    stage.awaitClipboard("stays selected");
}

STEP("Ctrl+2 pastes the second row")
{
    stage.copy("second row of the list");
    stage.copy("first row of the list");
    const auto entry = stage.openQtEntry();
    stage.choose({}, "Ctrl+2");
    stage.awaitContent(entry, "second row of the list");
}

STEP("Ctrl+Backspace with an empty query deletes the clip")
{
    stage.copy("to be deleted");
    const auto before = stage.rows().size();
    stage.openPanel();
    stage.press("Ctrl+Backspace");
    stage.await([&] { return stage.rows().size() == before - 1; }, "nothing was deleted");
    require(!stage.history().holds("to be deleted"), "the file still holds the clip");
    require(stage.panel().has_value(), "the panel closed");
    stage.awaitListed(qsizetype(before) - 1, "after the deletion");
}

} // namespace
