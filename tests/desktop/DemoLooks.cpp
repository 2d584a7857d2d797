// How the panel looks where the desktop is dark, the screen finer and the copies are not plain English.
#include "tests/desktop/SamplePicture.h"
#include "tests/desktop/Screenshot.h"
#include "tests/desktop/Step.h"
#include "tests/support/SettingsPortal.h"

#include <QFile>
#include <QStandardPaths>
#include <cmath>

namespace {

// A long text, emoji, Arabic, Hebrew that is longer than its row, Hindi, lines, enough that the list must
// scroll, and more lines than the preview is high.
constexpr const char *copies[] = {
    "The offer of the carpenter in Via Garibaldi, with the measures of the door, of the two windows and of "
    "the stairs, "
    "wants an answer until Thursday",
    "Happy birthday 🎂🎉 from 👩‍👩‍👧 and 👋🏽",
    "الاجتماع يوم الخميس في الطابق الثاني",
    "הפגישה הועברה ליום חמישי בשעה עשר וחצי, קומה שנייה, בחדר הגדול ליד החלון",
    "बैठक गुरुवार को है",
    "first line\nsecond line\n\tthird line, behind a tab",
    "one more, so that the list must scroll",
    "and another, longer than the preview is "
    "high\n1\n2\n3\n4\n5\n6\n7\n8\n9\n10\n11\n12\n13\n14\n15\n16\n17\n18\n19\n20\n"
    "21\n22\n23\n24\n25\n26\n27\n28\n29\n30\n31\n32\n33\n34\n35\n36",
};

// A history of its own, made once: other steps look at it on other screens.
void restart(Stage &stage, const QString &language, const QStringList &variables = {})
{
    stage.restart(language, "looks", variables);
    if (!stage.rows().empty())
        return;
    // A copy of the terminal, which no desktop entry names: its window class is then its name.
    const QString longName = "The Very Long Name of a Program for Designing Doors and Windows and Stairs";
    const QString terminal = stage.scratchFile("terminal");
    require(QFile::copy(QStandardPaths::findExecutable("xterm"), terminal), "no copy of xterm");
    const Child program({terminal, {"-class", longName, "-name", longName, "-e", "cat"}});
    stage.activate({longName});
    for (const char *text : copies)
        stage.copy(text);
    stage.openPanel();
    stage.press("Ctrl+P");
    stage.await([&] { return stage.rows().front().pinned; }, "nothing was pinned");
    stage.closePanel();
    stage.copy(samplePicture(), "image/png");
}

QRect placeOf(const Stage &stage)
{
    const auto panel = stage.panel();
    return panel ? stage.desktop.geometry(*panel) : QRect();
}

// By the middle of the panel's lower edge, where nothing is drawn.
void awaitGround(const Stage &stage, bool dark, const QString &when)
{
    int lightness = -1;
    const auto isRight = [&] {
        const QRect place = placeOf(stage);
        lightness = lightnessAt(stage.desktop, QPoint(place.center().x(), place.bottom() - 3));
        return !place.isEmpty() && lightness >= 0 && (lightness < 100) == dark;
    };
    require(stage.desktop.waitFor(isRight), when + QString(": the panel's lightness is %1").arg(lightness));
}

void shootMenu(const Stage &stage, const QString &name)
{
    require(stage.desktop.awaitWindow({"norvane", {}, true, 40}).has_value(), "no menu opened");
    stage.saveScreenshot(name);
    stage.press("Esc");
}

STEP("the panel is dark where the desktop is, and follows it while it is open")
{
    SettingsPortal portal(1);
    require(portal.isOnTheBus(), "there is a settings portal already");
    restart(stage, "en");
    stage.openPanel();
    awaitGround(stage, true, "at start");
    stage.press("Down");
    stage.saveScreenshot("panel-dark");
    require(stage.awaitPart("push button").press(), "the menu button cannot be pressed");
    shootMenu(stage, "panel-dark-status-menu");
    portal.change(2);
    awaitGround(stage, false, "light while it is open");
    stage.saveScreenshot("panel-dark-to-light");
    portal.change(1);
    awaitGround(stage, true, "dark again");
    stage.saveScreenshot("panel-light-to-dark");
    stage.type("the");
    stage.saveScreenshot("panel-dark-query");
    stage.keyboard.click(placeOf(stage).topLeft() + QPoint(120, 25), 1, 3); // in the search field
    shootMenu(stage, "panel-dark-menu");
    stage.closePanel();
    portal.change(0);
    stage.openPanel();
    awaitGround(stage, false, "no preference");
}

// Light and dark, under a compositor that comes while the panel is open.
STEP("the panel casts a shadow where there is a compositor")
{
    SettingsPortal portal(2);
    require(portal.isOnTheBus(), "there is a settings portal already");
    restart(stage, "en");
    stage.keyboard.point(
        QPoint(300, 150)); // with no program in front it opens there, with free ground beside it
    const QRect panel = stage.desktop.geometry(stage.openPanel());
    const auto shade = [&](int beside) {
        return lightnessAt(stage.desktop, QPoint(panel.right() + beside, panel.center().y()));
    };
    stage.await([&] { return shade(4) == shade(60); }, "a shadow without a compositor");
    const auto compositor = stage.startCompositor();
    stage.await([&] { return shade(4) < shade(60) - 8; }, "no shadow under a compositor");
    stage.saveScreenshot("panel-shadow");
    portal.change(1);
    awaitGround(stage, true, "dark under a compositor");
    stage.saveScreenshot("panel-shadow-dark");
}

// What is wrong with a corner, which is cut along a circle of 12 points in the pixels of the screen, line by
// line.
QString cornerFault(const Stage &stage, const QRect &panel, double scale)
{
    const int radius = qRound(12 * scale);
    const QImage corner = screenshot(stage.desktop, {panel.topLeft(), QSize(radius, radius)});
    const QRgb outside = corner.pixel(0, 0);
    if (outside == corner.pixel(radius - 1, radius - 1))
        return "the panel's corner is not to be seen"; // painted after the keyboard has come
    for (int line = 0; line < radius; ++line) {
        int inset = 0;
        while (inset < radius && corner.pixel(inset, line) == outside)
            ++inset;
        const double height = radius - line - 0.5;
        const double circle = radius - std::sqrt(radius * radius - height * height);
        if (std::abs(inset - circle) > 0.5)
            return QString("line %1 of the corner begins at %2, not %3").arg(line).arg(inset).arg(circle);
    }
    return {};
}

STEP("the panel on finer screens: 1, 1.5 and 2")
{
    for (const QString language : {"en", "it"}) {
        for (const QString factor : {"1", "1.5", "2"}) {
            const double scale = factor.toDouble();
            restart(stage, language, {"QT_SCALE_FACTOR=" + factor});
            const QRect panel = stage.desktop.geometry(stage.openPanel());
            require(panel.width() >= 460 * scale, QString("the panel is %1 pixels wide").arg(panel.width()));
            QString fault;
            const bool isRound =
                stage.desktop.waitFor([&] { return (fault = cornerFault(stage, panel, scale)).isEmpty(); });
            require(isRound, "scale " + factor + ": " + fault);
            stage.saveScreenshot("panel-scale-" + factor + "-" + language);
            stage.closePanel();
        }
    }
    stage.quit(); // the next step starts it at a scale of 1
}

} // namespace
