// Where the panel opens, what its filters list and what its preview shows of each kind of clip.
#include "tests/desktop/SamplePicture.h"
#include "tests/desktop/Stage.h"
#include "tests/support/SettingsPortal.h"

#include <algorithm>
#include <cstdlib>

namespace {

constexpr int caretGap = 6; // between the caret's line and the panel

// One of each kind, the newest first in the list.
void copyEachKind(Stage &stage, const QString &language)
{
    const bool italian = language == QLatin1String("it");
    stage.copy("https://www.example.org/catalogue?page=12#quinces");
    stage.openPanel();
    stage.keyboard.press(QStringLiteral("Ctrl+P"));
    require(stage.desktop.waitFor([&] { return stage.rows().front().pinned; }),
            QStringLiteral("nothing was pinned"));
    stage.closePanel();
    stage.copyForms({{"text/uri-list", italian ? "file:///home/anna/Documenti/Offerta%20118.pdf\r\n"
                                                 "file:///home/anna/Immagini/Pianta.png\r\n"
                                                 "file:///home/anna/Documenti/Verbale%0Ariunione.odt\r\n"
                                               : "file:///home/anna/Documents/Offer%20118.pdf\r\n"
                                                 "file:///home/anna/Pictures/Plan.png\r\n"
                                                 "file:///home/anna/Documents/Minutes%0Ameeting.odt\r\n"}});
    stage.copy(samplePicture(), "image/png");
    stage.copyForms(
        {{"text/html", italian ? "<p>Portare l'offerta <b>firmata</b> entro <i>gioved\xc3\xac</i></p>"
                               : "<p>Bring the <b>signed</b> offer on <i>Thursday</i></p>"},
         {"UTF8_STRING", italian ? "Portare l'offerta firmata entro gioved\xc3\xac"
                                 : "Bring the signed offer on Thursday"}});
    stage.copy(italian
                   ? "Gentile signora Bianchi,\n\nla riunione \xc3\xa8 spostata a gioved\xc3\xac alle 10:30, "
                     "secondo piano, nella sala grande accanto all'ascensore.\n\nCordiali saluti\n"
                   : "Dear Mrs Bianchi,\n\nthe meeting has moved to Thursday at 10:30, second floor, in the "
                     "large room beside the lift.\n\nKind regards\n");
}

void previewsIn(Stage &stage, const QString &language, const QString &name)
{
    stage.quit();
    stage.start(language, QStringLiteral("kinds-") + language);
    if (stage.rows().empty())
        copyEachKind(stage, language);
    stage.openPanel();
    stage.awaitListed(5, QStringLiteral("one of each kind"));
    for (const char *kind : {"text", "styled", "image", "files"}) {
        if (QLatin1String(kind) != QLatin1String("text"))
            stage.keyboard.press(QStringLiteral("Down"));
        const auto isSelected = [&] {
            const auto list = stage.awaitPart(QStringLiteral("list")).children();
            const auto at = std::find_if(list.begin(), list.end(), [](const Accessible &row) {
                return row.is(Accessible::State::selected);
            });
            return at != list.end();
        };
        require(stage.desktop.waitFor(isSelected), QStringLiteral("no row is selected"));
        stage.saveScreenshot(QStringLiteral("preview-%1-%2").arg(QLatin1String(kind), name));
    }
    stage.closePanel();
}

void previewsOfEachKind(Stage &stage)
{
    for (const auto &language : {QStringLiteral("en"), QStringLiteral("it")})
        previewsIn(stage, language, language);
    const SettingsPortal dark(1);
    require(dark.isOnTheBus(), QStringLiteral("there is a settings portal already"));
    previewsIn(stage, QStringLiteral("en"), QStringLiteral("dark"));
    previewsIn(stage, QStringLiteral("it"), QStringLiteral("dark-it"));
}

qsizetype listedBy(const std::vector<HistoryFile::Row> &rows, const QString &filter)
{
    return std::count_if(rows.begin(), rows.end(), [&](const HistoryFile::Row &row) {
        return filter == QLatin1String("All") || (filter == QLatin1String("Text") && row.kind < 2) ||
               (filter == QLatin1String("Images") && row.kind == 2) ||
               (filter == QLatin1String("Files") && row.kind == 3) ||
               (filter == QLatin1String("Pinned") && row.pinned);
    });
}

// Each by the mouse, then each by the keyboard.
void everyFilter(Stage &stage)
{
    stage.quit();
    stage.start(QStringLiteral("en"), QStringLiteral("kinds-en"));
    if (stage.rows().empty())
        copyEachKind(stage, QStringLiteral("en"));
    const auto rows = stage.rows();
    stage.openPanel();
    const QStringList filters{QStringLiteral("Text"), QStringLiteral("Images"), QStringLiteral("Files"),
                              QStringLiteral("Pinned"), QStringLiteral("All")};
    for (const auto &filter : filters) {
        const auto segment = stage.awaitPart(QStringLiteral("page tab"), filter);
        stage.keyboard.click(segment.extents().center());
        require(stage.desktop.waitFor([&] { return segment.is(Accessible::State::selected); }),
                QStringLiteral("a click did not choose ") + filter);
        stage.awaitListed(listedBy(rows, filter), filter + QStringLiteral(" by a click"));
        stage.saveScreenshot(QStringLiteral("filter-") + filter.toLower());
    }
    for (const auto &filter : filters) {
        stage.keyboard.press(QStringLiteral("Tab"));
        stage.awaitListed(listedBy(rows, filter), filter + QStringLiteral(" by Tab"));
    }
    require(stage.searchHasFocus(), QStringLiteral("the search field lost the focus"));
    stage.closePanel();
}

// The page of the editor in front, as a screen reader knows it.
Accessible editorPage(const Stage &stage, const Target &editor)
{
    std::optional<Accessible> page;
    const auto isPage = [](const Accessible &part) {
        return part.role() == QLatin1String("text") && part.is(Accessible::State::focused);
    };
    require(stage.desktop.waitFor([&] {
        const auto program = Accessible::application(editor.program->pid());
        page = program ? program->find(isPage) : std::nullopt;
        return page.has_value();
    }),
            QStringLiteral("the editor has no page with the focus"));
    return *page;
}

// After a key that moves the caret. On a busy machine the editor may not answer in the time that an opening
// waits for it, or still be scrolling: then the panel opens elsewhere, and a person does it again.
void openAtCaret(const Stage &stage, const Accessible &page, const char *key, bool below)
{
    QPoint seen, wanted;
    const bool there = stage.desktop.waitFor([&] {
        stage.closePanel();
        stage.keyboard.press(QString::fromLatin1(key));
        const QRect panel = stage.desktop.geometry(stage.openPanel());
        const QRect caret = page.caret();
        seen = below ? panel.topLeft() : panel.bottomLeft();
        wanted = below ? QPoint(caret.left(), caret.bottom() + 1 + caretGap)
                       : QPoint(caret.left(), caret.top() - 1 - caretGap);
        return std::abs(seen.x() - wanted.x()) <= 1 && std::abs(seen.y() - wanted.y()) <= 1;
    });
    require(there, QStringLiteral("the panel's corner is at %1, %2, not at %3, %4")
                       .arg(seen.x())
                       .arg(seen.y())
                       .arg(wanted.x())
                       .arg(wanted.y()));
}

void opensAtTheCaret(Stage &stage)
{
    QByteArray lines = "The panel opens beneath this line";
    for (int line = 2; line <= 60; ++line)
        lines += "\nline " + QByteArray::number(line);
    const auto editor = stage.openMousepad(lines);
    stage.keyboard.point(QPoint(1500, 60)); // far away: the pointer is the place where there is no caret
    stage.keyboard.press(QStringLiteral("Ctrl+Home"));
    const Accessible page = editorPage(stage, editor);
    openAtCaret(stage, page, "End", true);
    stage.saveScreenshot(QStringLiteral("caret-below"));
    stage.closePanel();

    // Towards the foot of the screen there is no room below the line.
    const int height = stage.desktop.geometry(editor.window).height();
    const int top = stage.desktop.screen().height_in_pixels - height - 30;
    const uint32_t low[] = {200, static_cast<uint32_t>(top)};
    xcb_configure_window(stage.desktop.connection(), editor.window, XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y,
                         low);
    xcb_flush(stage.desktop.connection());
    require(stage.desktop.waitFor([&] { return stage.desktop.geometry(editor.window).top() >= top; }),
            QStringLiteral("the editor did not move"));
    openAtCaret(stage, page, "Ctrl+End", false);
    stage.saveScreenshot(QStringLiteral("caret-above"));
}

} // namespace

Steps viewSteps()
{
    return {
        {"the panel opens at the caret of a text editor, above the line where there is no room below",
         opensAtTheCaret},
        {"the preview of each kind of clip: English, Italian, dark", previewsOfEachKind},
        {"each filter by mouse and by Tab", everyFilter},
    };
}
