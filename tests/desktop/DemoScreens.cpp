// What a day's copying leaves behind, in each language.
#include "tests/desktop/SamplePicture.h"
#include "tests/desktop/Step.h"

namespace {

struct Day {
    QString language;
    QString searchField; // what it is called
    QByteArray document; // open in the editor in front
    QByteArray note;
    QByteArray styled; // text/html
    QByteArray styledText;
    QByteArray files; // text/uri-list
    QString query;
};

const Day englishDay{"en",
                     "Search",
                     "Notes for Thursday\n\nThe panel opens above the program in front.\n",
                     "The meeting moved to Thursday, 10:30, second floor",
                     "<p>Bring the <b>signed</b> offer on Thursday</p>",
                     "Bring the signed offer on Thursday",
                     "file:///home/anna/Documents/Offer%20118.pdf\r\nfile:///home/anna/Pictures/Plan.png\r\n"
                     "file:///home/anna/Documents/Minutes.odt\r\n",
                     "thurs"};

const Day italianDay{
    "it",
    "Cerca",
    "Note per giovedì\n\nIl pannello si apre sopra il programma in primo piano.\n",
    "La riunione è spostata a giovedì, 10:30, secondo piano",
    "<p>Portare l'offerta <b>firmata</b> giovedì</p>",
    "Portare l'offerta firmata giovedì",
    "file:///home/anna/Documenti/Offerta%20118.pdf\r\nfile:///home/anna/Immagini/Pianta.png\r\n"
    "file:///home/anna/Documenti/Verbale.odt\r\n",
    "giovedi"}; // accents do not matter

void copyAll(Stage &stage, const Day &day)
{
    stage.copyAndPin(day.note);
    stage.copy("https://www.example.org/catalogue?page=12#quinces");
    stage.copyForms({{"text/uri-list", day.files}});
    stage.copy("for (const auto &clip : clips)\n    total += clip->size;\n");
    stage.copy(samplePicture(), "image/png");
    stage.copyForms({{"text/html", day.styled}, {"UTF8_STRING", day.styledText}});
}

void photograph(Stage &stage, const Day &day)
{
    const auto shoot = [&](const QString &scene) { stage.saveScreenshot(scene + "-" + day.language); };
    stage.restart(day.language, "day-" + day.language);
    const auto editor = stage.openMousepad(day.document);
    stage.openPanel();
    stage.awaitListed(0, "empty history");
    shoot("panel-empty");
    require(stage.searchName().startsWith(day.searchField),
            "the search field is called " + stage.searchName());
    stage.closePanel();

    copyAll(stage, day);
    require(stage.desktop.activate(editor.window), "mousepad did not become active");
    stage.openPanel();
    stage.awaitListed(qsizetype(stage.rows().size()), "mixed history");
    shoot("panel-mixed");
    stage.type(day.query);
    stage.awaitListed(2, "query");
    shoot("panel-query");
    stage.type("qqq");
    stage.awaitListed(0, "no match");
    shoot("panel-no-match");
    stage.closePanel();
    stage.quit();
}

STEP("the panel in English: empty, mixed, with a query, without a match")
{
    photograph(stage, englishDay);
}

STEP("the panel in Italian: empty, mixed, with a query, without a match")
{
    photograph(stage, italianDay);
}

} // namespace
