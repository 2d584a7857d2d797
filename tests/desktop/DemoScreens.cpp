#include "tests/desktop/Stage.h"

namespace {

struct Tongue {
    QString code;
    QString empty; // a data folder without history
    QString word;  // in several clips of the demonstration
};

void photograph(Stage &stage, const Tongue &tongue)
{
    const auto name = [&](const char *scene) -> QString {
        return QString::fromLatin1(scene) + QLatin1Char('-') + tongue.code;
    };
    const auto all = qsizetype(stage.rows().size());
    const auto editor = stage.openMousepad("The panel opens above the program in front.\n");
    stage.openPanel();
    stage.awaitListed(all, QStringLiteral("mixed history"));
    stage.saveScreenshot(name("panel-mixed"));
    stage.keyboard.type(tongue.word);
    require(stage.desktop.waitFor([&] { return !stage.listed().isEmpty() && stage.listed().size() < all; }),
            QStringLiteral("the query narrowed nothing"));
    stage.saveScreenshot(name("panel-query"));
    stage.keyboard.type(QStringLiteral("qqq"));
    stage.awaitListed(0, QStringLiteral("no match"));
    stage.saveScreenshot(name("panel-no-match"));
    stage.closePanel();

    stage.quit();
    stage.start(tongue.code, tongue.empty);
    require(stage.desktop.activate(editor.window), QStringLiteral("mousepad did not become active"));
    stage.openPanel();
    stage.awaitListed(0, QStringLiteral("empty history"));
    stage.saveScreenshot(name("panel-empty"));
    stage.closePanel();
    stage.quit();
}

void english(Stage &stage)
{
    stage.quit();
    stage.start(QStringLiteral("en"));
    require(!stage.searchName().isEmpty() && !stage.searchName().startsWith(QLatin1String("Cerca")),
            QStringLiteral("the search field is called \"%1\"").arg(stage.searchName()));
    photograph(stage, {QStringLiteral("en"), QStringLiteral("empty-en"), QStringLiteral("newer")});
}

void italian(Stage &stage)
{
    stage.quit();
    stage.start(QStringLiteral("it"));
    require(stage.searchName().startsWith(QLatin1String("Cerca")),
            QStringLiteral("the search field is called \"%1\"").arg(stage.searchName()));
    photograph(stage, {QStringLiteral("it"), QStringLiteral("empty-it"), QStringLiteral("newer")});
}

} // namespace

Steps screenSteps()
{
    return {
        {"the panel in English: mixed, with a query, without a match, empty", english},
        {"the panel in Italian: mixed, with a query, without a match, empty", italian},
    };
}
