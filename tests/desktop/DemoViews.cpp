// Where the panel opens, what its filters list and what its preview shows of each kind of clip.
#include "tests/desktop/SamplePicture.h"
#include "tests/desktop/Step.h"
#include "tests/support/SettingsPortal.h"

#include <algorithm>
#include <cstdlib>

namespace {

// Starts with one clip of each kind, the newest first in the list.
void startWithEachKind(Stage &stage, const QString &language)
{
    stage.restart(language, "kinds-" + language);
    if (!stage.rows().empty())
        return;
    const bool italian = language == "it";
    stage.copyAndPin("https://www.example.org/catalogue?page=12#quinces");
    stage.copyForms({{"text/uri-list", italian ? "file:///home/anna/Documenti/Offerta%20118.pdf\r\n"
                                                 "file:///home/anna/Immagini/Pianta.png\r\n"
                                                 "file:///home/anna/Documenti/Verbale%0Ariunione.odt\r\n"
                                               : "file:///home/anna/Documents/Offer%20118.pdf\r\n"
                                                 "file:///home/anna/Pictures/Plan.png\r\n"
                                                 "file:///home/anna/Documents/Minutes%0Ameeting.odt\r\n"}});
    stage.copy(samplePicture(), "image/png");
    stage.copyForms({{"text/html", italian ? "<p>Portare l'offerta <b>firmata</b> entro <i>giovedì</i></p>"
                                           : "<p>Bring the <b>signed</b> offer on <i>Thursday</i></p>"},
                     {"UTF8_STRING", italian ? "Portare l'offerta firmata entro giovedì"
                                             : "Bring the signed offer on Thursday"}});
    stage.copy(
        italian
            ? "Gentile signora Bianchi,\n\nla riunione è spostata a giovedì alle 10:30, secondo piano, "
              "nella sala grande accanto all'ascensore.\n\nCordiali saluti\n"
            : "Dear Mrs Bianchi,\n\nthe meeting has moved to Thursday at 10:30, second floor, in the large "
              "room beside the lift.\n\nKind regards\n");
}

void previewsIn(Stage &stage, const QString &language, const QString &name)
{
    startWithEachKind(stage, language);
    stage.openPanel();
    stage.awaitListed(5, "one of each kind");
    const QStringList kinds{"text", "styled", "image", "files"};
    for (const auto &kind : kinds) {
        if (kind != "text")
            stage.press("Down");
        const auto isSelected = [&] {
            const auto rows = stage.awaitPart("list").children();
            const auto row = static_cast<size_t>(kinds.indexOf(kind));
            return row < rows.size() && rows[row].is(Accessible::State::selected);
        };
        stage.await(isSelected, "the row is not selected: " + kind);
        stage.saveScreenshot("preview-" + kind + "-" + name);
    }
    stage.closePanel();
}

// The page of the editor in front, as a screen reader knows it.
Accessible editorPage(const Stage &stage, const Target &editor)
{
    std::optional<Accessible> page;
    const auto isPage = [](const Accessible &part) {
        return part.role() == "text" && part.is(Accessible::State::focused);
    };
    const auto isThere = [&] {
        const auto program = Accessible::application(editor.program->pid());
        page = program ? program->find(isPage) : std::nullopt;
        return page.has_value();
    };
    stage.await(isThere, "the editor has no page with the focus");
    return *page;
}

// After a key that moves the caret. On a busy machine the editor may not answer in the time that an opening
// waits for it, or still be scrolling: then the panel opens elsewhere, and a person does it again.
void openAtCaret(const Stage &stage, const Accessible &page, const QString &key, bool below)
{
    constexpr int gap = 6; // between the caret's line and the panel
    QPoint off;
    const auto isThere = [&] {
        stage.closePanel();
        stage.press(key);
        const QRect panel = stage.desktop.geometry(stage.openPanel());
        const QRect caret = page.caret();
        off = below ? panel.topLeft() - QPoint(caret.left(), caret.bottom() + 1 + gap)
                    : panel.bottomLeft() - QPoint(caret.left(), caret.top() - 1 - gap);
        return std::abs(off.x()) <= 1 && std::abs(off.y()) <= 1;
    };
    const bool there = stage.desktop.waitFor(isThere);
    require(there, QString("the panel's corner is off by %1, %2").arg(off.x()).arg(off.y()));
}

STEP("the panel opens at the caret of a text editor, above the line where there is no room below")
{
    QByteArray lines = "The panel opens beneath this line";
    for (int line = 2; line <= 60; ++line)
        lines += "\nline " + QByteArray::number(line);
    const auto editor = stage.openMousepad(lines);
    stage.keyboard.point(QPoint(1500, 60)); // far away: the pointer is the place where there is no caret
    stage.press("Ctrl+Home");
    const Accessible page = editorPage(stage, editor);
    openAtCaret(stage, page, "End", true);
    stage.saveScreenshot("caret-below");
    stage.closePanel();

    // Towards the foot of the screen there is no room below the line.
    const int height = stage.desktop.geometry(editor.window).height();
    const int top = stage.desktop.screen().height_in_pixels - height - 30;
    stage.desktop.place(editor.window, QPoint(200, top));
    stage.await([&] { return stage.desktop.geometry(editor.window).top() >= top; },
                "the editor did not move");
    openAtCaret(stage, page, "Ctrl+End", false);
    stage.saveScreenshot("caret-above");
}

STEP("the preview of each kind of clip: English, Italian, dark")
{
    previewsIn(stage, "en", "en");
    previewsIn(stage, "it", "it");
    const SettingsPortal dark(1);
    require(dark.isOnTheBus(), "there is a settings portal already");
    previewsIn(stage, "en", "dark");
    previewsIn(stage, "it", "dark-it");
}

// Each by the mouse, then each by the keyboard.
STEP("each filter by mouse and by Tab")
{
    startWithEachKind(stage, "en");
    stage.openPanel();
    const std::pair<QString, int> filters[] = {
        {"Text", 3}, {"Images", 1}, {"Files", 1}, {"Pinned", 1}, {"All", 5}};
    for (const auto &[filter, count] : filters) {
        const auto segment = stage.awaitPart("page tab", filter);
        stage.keyboard.click(segment.extents().center());
        stage.await([&] { return segment.is(Accessible::State::selected); },
                    "a click did not choose " + filter);
        stage.awaitListed(count, filter + " by a click");
        stage.saveScreenshot("filter-" + filter.toLower());
    }
    for (const auto &[filter, count] : filters) {
        stage.press("Tab");
        stage.awaitListed(count, filter + " by Tab");
    }
    require(stage.searchHasFocus(), "the search field lost the focus");
    stage.closePanel();
}

} // namespace
