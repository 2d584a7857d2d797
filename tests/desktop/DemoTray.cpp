// The status item in a panel that takes icons, driven by the mouse and the digits as a user does.
#include "tests/desktop/Screenshot.h"
#include "tests/desktop/Stage.h"

#include <QCoreApplication>
#include <algorithm>

namespace {

std::unique_ptr<Child> startTray(Stage &stage)
{
    auto tray = std::make_unique<Child>(
        Child::Setting{QStringLiteral("trayer"),
                       {QStringLiteral("--edge"), QStringLiteral("bottom"), QStringLiteral("--align"),
                        QStringLiteral("right"), QStringLiteral("--widthtype"), QStringLiteral("request"),
                        QStringLiteral("--height"), QStringLiteral("28")},
                       stage.logFile(QStringLiteral("trayer.log")),
                       {}});
    require(stage.desktop.waitFor(
                [&] { return stage.desktop.selectionOwner("_NET_SYSTEM_TRAY_S0") != XCB_NONE; }),
            QStringLiteral("trayer is no tray"));
    return tray;
}

// Of the icon, once it stays where it is.
QRect iconPlace(const Stage &stage)
{
    const WindowMatch icon{QStringLiteral("norvane"), {}, {}, 0, 5};
    QRect place;
    const bool settled = stage.desktop.waitFor([&] {
        const auto window = stage.desktop.findWindow(icon);
        const QRect before = place;
        place = window ? stage.desktop.geometry(*window) : QRect();
        return !place.isEmpty() && place == before &&
               place.top() > stage.desktop.screen().height_in_pixels / 2;
    });
    require(settled, QStringLiteral("no icon came into the tray"));
    return place;
}

// Some way from the last click there, or the next would be its double click.
QPoint somewhereElse(const QRect &icon, int click)
{
    return icon.center() + QPoint(click % 2 == 0 ? -8 : 8, 0);
}

xcb_window_t openMenu(const Stage &stage, const QRect &icon, int click)
{
    stage.keyboard.click(somewhereElse(icon, click), 1, 3);
    const auto menu = stage.desktop.awaitWindow({QStringLiteral("norvane"), {}, true, 60});
    require(menu.has_value(), QStringLiteral("a right click opened no menu"));
    return *menu;
}

void awaitNoMenu(const Stage &stage, xcb_window_t menu)
{
    require(stage.desktop.waitFor([&] { return !stage.desktop.isViewable(menu); }),
            QStringLiteral("the menu stayed open"));
}

// By the arrow keys, upwards from the last row, as far as a screen reader names it.
void chooseRow(const Stage &stage, const QRect &icon, int click, const QString &title)
{
    const SelectionEvents focus(QStringLiteral("focused"));
    const auto menu = openMenu(stage, icon, click);
    QString name;
    for (int row = 0; row < 12 && name != title; ++row) {
        const auto before = focus.selected().size();
        stage.keyboard.press(QStringLiteral("Up"));
        require(stage.desktop.waitFor([&] {
            QCoreApplication::processEvents();
            return focus.selected().size() > before;
        }),
                QStringLiteral("no row of the menu got the focus"));
        name = focus.selected().back().name();
    }
    require(name == title, QStringLiteral("the menu has no row ") + title);
    stage.keyboard.press(QStringLiteral("Enter"));
    awaitNoMenu(stage, menu);
    stage.keyboard.point(QPoint(20, 20));
}

double lightness(const Stage &stage, const QRect &place)
{
    const QImage seen = steadyScreenshot(stage.desktop, place);
    double sum = 0;
    for (int y = 0; y < seen.height(); ++y)
        for (int x = 0; x < seen.width(); ++x)
            sum += qGray(seen.pixel(x, y));
    return sum / std::max(1, seen.width() * seen.height());
}

void menuInTheTray(Stage &stage)
{
    stage.quit();
    stage.start(QStringLiteral("en"), QStringLiteral("tray"));
    const auto tray = startTray(stage);
    const auto entry = stage.openQtEntry();
    for (const char *text : {"The meeting moved to Thursday, 10:30, second floor",
                             "https://www.example.org/catalogue?page=12#quinces", "fish & chips, a_b"})
        stage.copy(text);
    require(stage.desktop.activate(entry.window), QStringLiteral("the entry did not become active"));

    const QRect icon = iconPlace(stage);
    openMenu(stage, icon, 0);
    stage.saveScreenshot(QStringLiteral("tray-menu-en"));
    stage.keyboard.press(QStringLiteral("2"));
    stage.awaitContent(entry, "https://www.example.org/catalogue?page=12#quinces");

    const double bright = lightness(stage, icon);
    chooseRow(stage, icon, 1, QStringLiteral("Pause Recording"));
    require(stage.desktop.waitFor([&] { return std::abs(lightness(stage, icon) - bright) > 1; }),
            QStringLiteral("the icon looks the same while paused"));
    stage.saveScreenshot(QStringLiteral("tray-paused"));
    require(stage.clipboard.set("not recorded while paused"),
            QStringLiteral("xclip did not take the selection"));
    require(stage.desktop.staysFalse(
                [&] { return stage.isNewest(QStringLiteral("not recorded while paused")); }, Stage::quiet),
            QStringLiteral("recorded while paused"));
    chooseRow(stage, icon, 2, QStringLiteral("Resume Recording"));
    require(stage.desktop.waitFor([&] { return std::abs(lightness(stage, icon) - bright) < 0.5; }),
            QStringLiteral("the icon stayed dim"));
    stage.copy("recorded again");

    stage.keyboard.click(somewhereElse(icon, 3));
    stage.awaitPanel();
    stage.closePanel();
}

void menuInItalian(Stage &stage)
{
    stage.quit();
    stage.start(QStringLiteral("it"), QStringLiteral("tray"));
    const auto tray = startTray(stage);
    openMenu(stage, iconPlace(stage), 0);
    stage.saveScreenshot(QStringLiteral("tray-menu-it"));
    stage.keyboard.press(QStringLiteral("Esc"));
}

} // namespace

Steps traySteps()
{
    return {
        {"the status menu in a tray: opened by a right click, a digit pastes, pausing dims the icon",
         menuInTheTray},
        {"the status menu in Italian", menuInItalian},
    };
}
