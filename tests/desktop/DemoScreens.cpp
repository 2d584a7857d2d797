#include "tests/desktop/SamplePicture.h"
#include "tests/desktop/Stage.h"

namespace {

// What a day's copying leaves behind, in one language.
struct Day {
    QString language;
    QString searchField; // what it is called
    QByteArray document; // open in the editor in front
    QByteArray note;
    QByteArray lines;
    QByteArray styled; // text/html
    QByteArray styledText;
    QByteArray files; // text/uri-list
    QString query;
    qsizetype matches = 0;
};

const Day &englishDay()
{
    static const Day day{
        QStringLiteral("en"),
        QStringLiteral("Search"),
        "Notes for Thursday\n\nThe panel opens above the program in front.\n",
        "The meeting moved to Thursday, 10:30, second floor",
        "for (const auto &clip : clips)\n    total += clip->size;\n",
        "<p>Bring the <b>signed</b> offer on Thursday</p>",
        "Bring the signed offer on Thursday",
        "file:///home/anna/Documents/Offer%20118.pdf\r\nfile:///home/anna/Pictures/Plan.png\r\n"
        "file:///home/anna/Documents/Minutes.odt\r\n",
        QStringLiteral("thurs"),
        2};
    return day;
}

const Day &italianDay()
{
    static const Day day{
        QStringLiteral("it"),
        QStringLiteral("Cerca"),
        "Note per gioved\xc3\xac\n\nIl pannello si apre sopra il programma in primo piano.\n",
        "La riunione \xc3\xa8 spostata a gioved\xc3\xac, 10:30, secondo piano",
        "for (const auto &clip : clips)\n    total += clip->size;\n",
        "<p>Portare l'offerta <b>firmata</b> gioved\xc3\xac</p>",
        "Portare l'offerta firmata gioved\xc3\xac",
        "file:///home/anna/Documenti/Offerta%20118.pdf\r\nfile:///home/anna/Immagini/Pianta.png\r\n"
        "file:///home/anna/Documenti/Verbale.odt\r\n",
        QStringLiteral("giovedi"), // accents do not matter
        2};
    return day;
}

void copyAll(Stage &stage, const Day &day)
{
    stage.copy(day.note);
    stage.openPanel();
    stage.keyboard.press(QStringLiteral("Ctrl+P"));
    require(stage.desktop.waitFor([&] { return stage.rows().front().pinned; }),
            QStringLiteral("nothing was pinned"));
    stage.closePanel();
    stage.copy("https://www.example.org/catalogue?page=12#quinces");
    stage.copyForms({{"text/uri-list", day.files}});
    stage.copy(day.lines);
    stage.copy(samplePicture(), "image/png");
    stage.copyForms({{"text/html", day.styled}, {"UTF8_STRING", day.styledText}});
}

void photograph(Stage &stage, const Day &day)
{
    const auto shoot = [&](const char *scene) {
        stage.saveScreenshot(QString::fromLatin1(scene) + QLatin1Char('-') + day.language);
    };
    stage.quit();
    stage.start(day.language, QStringLiteral("day-") + day.language);
    const auto editor = stage.openMousepad(day.document);
    stage.openPanel();
    stage.awaitListed(0, QStringLiteral("empty history"));
    shoot("panel-empty");
    const auto name = stage.searchName();
    require(name.startsWith(day.searchField), QStringLiteral("the search field is called \"%1\"").arg(name));
    stage.closePanel();

    copyAll(stage, day);
    const auto all = qsizetype(stage.rows().size());
    require(stage.desktop.activate(editor.window), QStringLiteral("mousepad did not become active"));
    stage.openPanel();
    stage.awaitListed(all, QStringLiteral("mixed history"));
    shoot("panel-mixed");
    stage.keyboard.type(day.query);
    stage.awaitListed(day.matches, QStringLiteral("query"));
    shoot("panel-query");
    stage.keyboard.type(QStringLiteral("qqq"));
    stage.awaitListed(0, QStringLiteral("no match"));
    shoot("panel-no-match");
    stage.closePanel();
    stage.quit();
}

void english(Stage &stage)
{
    photograph(stage, englishDay());
}

void italian(Stage &stage)
{
    photograph(stage, italianDay());
}

} // namespace

Steps screenSteps()
{
    return {
        {"the panel in English: empty, mixed, with a query, without a match", english},
        {"the panel in Italian: empty, mixed, with a query, without a match", italian},
    };
}
