#include "tests/desktop/Stage.h"

#include <QFile>
#include <algorithm>

namespace {

void press(const Stage &stage, const char *chord)
{
    require(stage.keyboard.press(QString::fromLatin1(chord)), QStringLiteral("the layout lacks a key"));
}

void typeAhead(Stage &stage)
{
    const auto entry = stage.openQtEntry();
    stage.hotKey(Desktop::Milliseconds(0)); // let go at once, as a fast typist does
    stage.keyboard.type(QStringLiteral("zyx"));
    stage.awaitPanel();
    require(stage.desktop.waitFor([&] { return stage.searchText() == QLatin1String("zyx"); }),
            QStringLiteral("the search field holds \"%1\"").arg(stage.searchText()));
    require(entry.content().isEmpty(), QStringLiteral("letters went to the program in front"));
}

void hotKeyCloses(Stage &stage)
{
    const auto entry = stage.openQtEntry();
    stage.openPanel();
    stage.hotKey();
    stage.awaitNoPanel();
    require(stage.desktop.waitFor([&] { return stage.desktop.hasKeyboard(entry.window); }),
            QStringLiteral("the program in front did not get the keyboard back"));
    stage.keyboard.type(QStringLiteral("back"));
    stage.awaitContent(entry, "back");
}

void heldHotKeyOpensOnce(Stage &stage)
{
    stage.hotKey(Desktop::Milliseconds(1200)); // the server repeats the key meanwhile
    stage.awaitPanel();
    require(stage.desktop.staysFalse([&] { return !stage.panel(); }, Stage::quiet),
            QStringLiteral("the panel closed by itself"));
}

void escapeClearsThenCloses(Stage &stage)
{
    stage.openPanel();
    stage.keyboard.type(QStringLiteral("abc"));
    require(stage.desktop.waitFor([&] { return stage.searchText() == QLatin1String("abc"); }),
            QStringLiteral("the search field holds \"%1\"").arg(stage.searchText()));
    press(stage, "Esc");
    require(stage.desktop.waitFor([&] { return stage.searchText().isEmpty(); }),
            QStringLiteral("Esc did not clear the query"));
    require(stage.panel().has_value(), QStringLiteral("Esc with a query closed the panel"));
    press(stage, "Esc");
    stage.awaitNoPanel();
}

// Far from each other, so that no panel near the one covers the other.
void place(const Stage &stage, xcb_window_t window, QPoint where)
{
    const int32_t values[] = {where.x(), where.y()};
    xcb_configure_window(stage.desktop.connection(), window, XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y,
                         values);
    xcb_flush(stage.desktop.connection());
    const auto arrived = [&] {
        return (stage.desktop.geometry(window).topLeft() - where).manhattanLength() < 60; // less its frame
    };
    require(stage.desktop.waitFor(arrived), QStringLiteral("the window did not move"));
}

void clickOutside(Stage &stage)
{
    const auto other = stage.openQtEntry();
    place(stage, other.window, QPoint(1120, 700));
    const auto front = stage.openQtEntry();
    place(stage, front.window, QPoint(20, 20));
    stage.keyboard.point(QPoint(200, 100)); // wherever the panel opens, it is on this side
    const auto panel = stage.openPanel();
    const auto there = stage.desktop.geometry(other.window).center() + QPoint(0, 40); // in its text view
    require(!stage.desktop.geometry(panel).contains(there),
            QStringLiteral("the panel covers the other window"));
    stage.keyboard.click(there);
    stage.awaitNoPanel();
    require(stage.desktop.waitFor([&] { return stage.desktop.hasKeyboard(other.window); }),
            QStringLiteral("the click did not activate the other program"));
    stage.keyboard.type(QStringLiteral("clicked"));
    const Target view{nullptr, other.window, other.viewFile, {}};
    stage.awaitContent(view, "clicked");
    require(front.content().isEmpty(), QStringLiteral("letters went to the first program"));
}

qsizetype listedBy(const std::vector<HistoryFile::Row> &rows, int filter)
{
    return std::count_if(rows.begin(), rows.end(), [&](const HistoryFile::Row &row) {
        switch (filter) {
        case 1:
            return row.kind < 2;
        case 2:
            return row.kind == 2;
        case 3:
            return row.kind == 3;
        case 4:
            return row.pinned;
        default:
            return true;
        }
    });
}

void tabCyclesFilters(Stage &stage)
{
    const auto rows = stage.rows();
    require(listedBy(rows, 2) > 0 && listedBy(rows, 3) > 0,
            QStringLiteral("the history lacks a picture or files"));
    stage.openPanel();
    stage.awaitListed(listedBy(rows, 0), QStringLiteral("at first"));
    for (int filter = 1; filter <= 5; ++filter) {
        press(stage, "Tab");
        stage.awaitListed(listedBy(rows, filter % 5), QStringLiteral("after Tab %1").arg(filter));
    }
    press(stage, "Shift+Tab");
    stage.awaitListed(listedBy(rows, 4), QStringLiteral("after Shift+Tab"));
    press(stage, "Tab");
    stage.awaitListed(listedBy(rows, 0), QStringLiteral("after Tab again"));
}

void queryNarrows(Stage &stage)
{
    stage.copy("persimmon and loquat");
    stage.copy("loquat alone");
    const auto all = qsizetype(stage.rows().size());
    stage.openPanel();
    stage.keyboard.type(QStringLiteral("loquat"));
    stage.awaitListed(2, QStringLiteral("loquat"));
    require(stage.listed().first() == QLatin1String("loquat alone"), QStringLiteral("not the newest first"));
    require(stage.countText().contains(QString::number(all)),
            QStringLiteral("the count reads \"%1\"").arg(stage.countText()));
    stage.keyboard.type(QStringLiteral(" PERSI"));
    stage.awaitListed(1, QStringLiteral("two words"));
    stage.keyboard.type(QStringLiteral("qqq"));
    stage.awaitListed(0, QStringLiteral("no match"));
}

void newCopyWhileOpen(Stage &stage)
{
    stage.copy("stays selected");
    stage.openPanel();
    const auto before = stage.listed().size();
    stage.copy("copied while the panel is open");
    stage.awaitListed(before + 1, QStringLiteral("after the copy"));
    require(stage.panel().has_value(), QStringLiteral("the panel closed"));
    press(stage, "Alt+Enter");
    require(stage.desktop.waitFor([&] { return stage.clipboard.read() == QByteArray("stays selected"); }),
            QStringLiteral("another row was selected"));
}

void controlTwo(Stage &stage)
{
    stage.copy("second row of the list");
    stage.copy("first row of the list");
    const auto entry = stage.openQtEntry();
    stage.choose({}, QStringLiteral("Ctrl+2"));
    stage.awaitContent(entry, "second row of the list");
}

void controlP(Stage &stage)
{
    stage.copy("to be pinned");
    const auto isPinned = [&] {
        const auto now = stage.rows();
        return now.front().text == QLatin1String("to be pinned") && now.front().pinned;
    };
    stage.openPanel();
    press(stage, "Ctrl+P");
    require(stage.desktop.waitFor(isPinned), QStringLiteral("Ctrl+P did not pin"));
    require(stage.panel().has_value(), QStringLiteral("Ctrl+P closed the panel"));
    press(stage, "Ctrl+P");
    require(stage.desktop.waitFor([&] { return !isPinned(); }), QStringLiteral("Ctrl+P did not unpin"));
    press(stage, "Ctrl+P");
    require(stage.desktop.waitFor(isPinned), QStringLiteral("Ctrl+P did not pin again"));
}

void controlBackspace(Stage &stage)
{
    stage.copy("to be deleted");
    const auto before = stage.rows().size();
    stage.openPanel();
    press(stage, "Ctrl+Backspace");
    require(stage.desktop.waitFor([&] { return stage.rows().size() == before - 1; }),
            QStringLiteral("nothing was deleted"));
    require(!stage.history().holds("to be deleted"), QStringLiteral("the file still holds the clip"));
    require(stage.panel().has_value(), QStringLiteral("the panel closed"));
    stage.awaitListed(qsizetype(before) - 1, QStringLiteral("after the deletion"));
}

} // namespace

Steps panelSteps()
{
    return {
        {"keys typed right after the hot key land in the search field", typeAhead},
        {"the hot key closes an open panel and the keyboard goes back", hotKeyCloses},
        {"a hot key held for long opens the panel once", heldHotKeyOpensOnce},
        {"Esc clears the query, then closes", escapeClearsThenCloses},
        {"a click outside closes the panel and reaches the other program", clickOutside},
        {"Ctrl+P pins and unpins", controlP},
        {"Tab and Shift+Tab go round the filters", tabCyclesFilters},
        {"words narrow the list and the count", queryNarrows},
        {"a copy made while the panel is open appears and the selection stays", newCopyWhileOpen},
        {"Ctrl+2 pastes the second row", controlTwo},
        {"Ctrl+Backspace with an empty query deletes the clip", controlBackspace},
    };
}
