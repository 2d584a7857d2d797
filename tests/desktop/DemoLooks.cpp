// How the panel looks where the desktop is dark, the screen finer and the copies are not plain English.
#include "tests/desktop/SamplePicture.h"
#include "tests/desktop/Screenshot.h"
#include "tests/desktop/SelectionOwner.h"
#include "tests/desktop/Stage.h"
#include "tests/support/SettingsPortal.h"

#include <QColor>
#include <QFile>
#include <QStandardPaths>
#include <array>
#include <cmath>

namespace {

struct Copy {
    const char *text;
    const char *what;
};

constexpr std::array<Copy, 8> copies{{
    {"The offer of the carpenter in Via Garibaldi, with the measures of the door, of the two windows and of "
     "the "
     "stairs, wants an answer until Thursday",
     "a long text"},
    {"Happy birthday \xf0\x9f\x8e\x82\xf0\x9f\x8e\x89 from "
     "\xf0\x9f\x91\xa9\xe2\x80\x8d\xf0\x9f\x91\xa9\xe2\x80\x8d\xf0\x9f\x91\xa7 "
     "and \xf0\x9f\x91\x8b\xf0\x9f\x8f\xbd",
     "emoji"},
    {"\xd8\xa7\xd9\x84\xd8\xa7\xd8\xac\xd8\xaa\xd9\x85\xd8\xa7\xd8\xb9 \xd9\x8a\xd9\x88\xd9\x85 "
     "\xd8\xa7\xd9\x84\xd8\xae\xd9\x85\xd9\x8a\xd8\xb3 \xd9\x81\xd9\x8a "
     "\xd8\xa7\xd9\x84\xd8\xb7\xd8\xa7\xd8\xa8\xd9\x82 \xd8\xa7\xd9\x84\xd8\xab\xd8\xa7\xd9\x86\xd9\x8a",
     "Arabic"},
    {"\xd7\x94\xd7\xa4\xd7\x92\xd7\x99\xd7\xa9\xd7\x94 \xd7\x94\xd7\x95\xd7\xa2\xd7\x91\xd7\xa8\xd7\x94 "
     "\xd7\x9c\xd7\x99\xd7\x95\xd7\x9d \xd7\x97\xd7\x9e\xd7\x99\xd7\xa9\xd7\x99 "
     "\xd7\x91\xd7\xa9\xd7\xa2\xd7\x94 \xd7\xa2\xd7\xa9\xd7\xa8 \xd7\x95\xd7\x97\xd7\xa6\xd7\x99, "
     "\xd7\xa7\xd7\x95\xd7\x9e\xd7\x94 \xd7\xa9\xd7\xa0\xd7\x99\xd7\x99\xd7\x94, "
     "\xd7\x91\xd7\x97\xd7\x93\xd7\xa8 \xd7\x94\xd7\x92\xd7\x93\xd7\x95\xd7\x9c \xd7\x9c\xd7\x99\xd7\x93 "
     "\xd7\x94\xd7\x97\xd7\x9c\xd7\x95\xd7\x9f",
     "Hebrew, longer than the row"},
    {"\xe0\xa4\xac\xe0\xa5\x88\xe0\xa4\xa0\xe0\xa4\x95\x20\xe0\xa4\x97\xe0\xa5\x81\xe0\xa4\xb0\xe0\xa5\x81"
     "\xe0\xa4\xb5\xe0\xa4\xbe\xe0\xa4\xb0\x20\xe0\xa4\x95\xe0\xa5\x8b\x20\xe0\xa4\xb9\xe0\xa5\x88",
     "Hindi"},
    {"first line\nsecond line\n\tthird line, behind a tab", "lines"},
    {"one more, so that the list must scroll", "a text"},
    {"and another, longer than the preview is "
     "high\n1\n2\n3\n4\n5\n6\n7\n8\n9\n10\n11\n12\n13\n14\n15\n16\n17\n18\n19\n20\n21\n22\n"
     "23\n24\n25\n26\n27\n28\n29\n30\n31\n32\n33\n34\n35\n36",
     "lines"},
}};

constexpr char longName[] = "The Very Long Name of a Program for Designing Doors and Windows and Stairs";

// A history of its own, made once: other steps look at it on other screens.
void fill(Stage &stage)
{
    if (!stage.rows().empty())
        return;
    // A copy of the terminal, which no desktop entry names: its window class is then its name.
    const QString terminal = stage.scratchFile(QStringLiteral("terminal"));
    require(QFile::copy(QStandardPaths::findExecutable(QStringLiteral("xterm")), terminal),
            QStringLiteral("no copy of xterm"));
    const Child program({terminal,
                         {QStringLiteral("-class"), QString::fromLatin1(longName), QStringLiteral("-name"),
                          QString::fromLatin1(longName), QStringLiteral("-e"), QStringLiteral("cat")},
                         {},
                         {}});
    const auto window = stage.desktop.awaitWindow({QString::fromLatin1(longName), {}, {}, 0});
    require(window && stage.desktop.activate(*window), QStringLiteral("no program with a long name"));
    for (const auto &copy : copies)
        stage.copy(copy.text);
    stage.openPanel();
    stage.keyboard.press(QStringLiteral("Ctrl+P"));
    require(stage.desktop.waitFor([&] { return stage.rows().front().pinned; }),
            QStringLiteral("nothing was pinned"));
    stage.closePanel();
    stage.copy(samplePicture(), "image/png");
}

void restart(Stage &stage, const QString &language, const QStringList &variables = {})
{
    stage.quit();
    stage.start(language, QStringLiteral("looks"), variables);
    fill(stage);
}

// Of the middle of the panel's lower edge, where nothing is drawn.
int ground(const Stage &stage)
{
    const auto panel = stage.panel();
    if (!panel)
        return -1;
    const QRect place = stage.desktop.geometry(*panel);
    const QImage seen = screenshot(stage.desktop, {place.center().x(), place.bottom() - 3, 1, 1});
    return seen.isNull() ? -1 : QColor(seen.pixel(0, 0)).lightness();
}

void awaitGround(const Stage &stage, bool dark, const char *when)
{
    const auto isRight = [&] {
        const int lightness = ground(stage);
        return lightness >= 0 && (lightness < 100) == dark;
    };
    require(
        stage.desktop.waitFor(isRight),
        QStringLiteral("%1: the panel's lightness is %2").arg(QString::fromLatin1(when)).arg(ground(stage)));
}

void awaitMenu(const Stage &stage)
{
    require(stage.desktop.awaitWindow({QStringLiteral("norvane"), {}, true, 40}).has_value(),
            QStringLiteral("no menu opened"));
}

void openFieldMenu(const Stage &stage)
{
    const auto panel = stage.panel();
    require(panel.has_value(), QStringLiteral("no panel is open"));
    stage.keyboard.click(stage.desktop.geometry(*panel).topLeft() + QPoint(120, 25), 1, 3);
    awaitMenu(stage);
}

void openStatusMenu(const Stage &stage)
{
    std::optional<Accessible> program; // the accessibility bus may be starting
    require(stage.desktop.waitFor(
                [&] { return (program = Accessible::application(stage.norvane().pid())).has_value(); }),
            QStringLiteral("Norvane is not on the accessibility bus"));
    const auto button = program->find([](const Accessible &part) {
        return part.role() == QLatin1String("push button") && part.is(Accessible::State::showing);
    });
    require(button && button->press(), QStringLiteral("the menu button cannot be pressed"));
    awaitMenu(stage);
}

void followsTheDesktop(Stage &stage)
{
    SettingsPortal portal(1);
    require(portal.isOnTheBus(), QStringLiteral("there is a settings portal already"));
    restart(stage, QStringLiteral("en"));
    stage.openPanel();
    awaitGround(stage, true, "at start");
    stage.keyboard.press(QStringLiteral("Down"));
    stage.saveScreenshot(QStringLiteral("panel-dark"));
    openStatusMenu(stage);
    stage.saveScreenshot(QStringLiteral("panel-dark-status-menu"));
    stage.keyboard.press(QStringLiteral("Esc"));
    portal.change(2);
    awaitGround(stage, false, "light while it is open");
    stage.saveScreenshot(QStringLiteral("panel-dark-to-light"));
    portal.change(1);
    awaitGround(stage, true, "dark again");
    stage.saveScreenshot(QStringLiteral("panel-light-to-dark"));
    stage.keyboard.type(QStringLiteral("the"));
    stage.saveScreenshot(QStringLiteral("panel-dark-query"));
    openFieldMenu(stage);
    stage.saveScreenshot(QStringLiteral("panel-dark-menu"));
    stage.keyboard.press(QStringLiteral("Esc"));
    stage.closePanel();
    portal.change(0);
    stage.openPanel();
    awaitGround(stage, false, "no preference");
}

// The corner is cut along a circle of 12 points in the pixels of the screen, line by line.
void requireRoundCorner(const Stage &stage, const QRect &panel, double scale)
{
    const int radius = qRound(12 * scale);
    const QImage corner = steadyScreenshot(stage.desktop, {panel.topLeft(), QSize(radius, radius)});
    const QRgb outside = corner.pixel(0, 0);
    for (int line = 0; line < radius; ++line) {
        int inset = 0;
        while (inset < radius && corner.pixel(inset, line) == outside)
            ++inset;
        const double height = radius - line - 0.5;
        const double circle = radius - std::sqrt(radius * radius - height * height);
        require(std::abs(inset - circle) <= 0.5,
                QStringLiteral("scale %1: line %2 of the corner begins at %3, not %4")
                    .arg(scale)
                    .arg(line)
                    .arg(inset)
                    .arg(circle));
    }
}

void photographScaled(Stage &stage, const QString &language, const QStringList &variables, double scale,
                      const QString &name)
{
    restart(stage, language, variables);
    const QRect panel = stage.desktop.geometry(stage.openPanel());
    require(panel.width() >= 460 * scale, QStringLiteral("the panel is %1 pixels wide").arg(panel.width()));
    requireRoundCorner(stage, panel, scale);
    stage.saveScreenshot(name);
    stage.closePanel();
    stage.quit();
}

void finerScreens(Stage &stage)
{
    for (const char *language : {"en", "it"}) {
        for (const char *factor : {"1", "1.5", "2"}) {
            const auto name =
                QStringLiteral("panel-scale-%1-%2").arg(QLatin1String(factor), QLatin1String(language));
            photographScaled(stage, QString::fromLatin1(language),
                             {QStringLiteral("QT_SCALE_FACTOR=") + QLatin1String(factor)},
                             QByteArray(factor).toDouble(), name);
        }
    }
}

} // namespace

Steps looksSteps()
{
    return {
        {"the panel is dark where the desktop is, and follows it while it is open", followsTheDesktop},
        {"the panel on finer screens: 1, 1.5 and 2", finerScreens},
    };
}
