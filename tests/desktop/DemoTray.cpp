// The status item in a panel that takes icons, driven by the mouse and the digits as a user does.
#include "tests/desktop/Screenshot.h"
#include "tests/desktop/Step.h"

#include <QCoreApplication>
#include <algorithm>

namespace {

// Of the icon, once it stays where it is.
QRect iconPlace(const Stage &stage)
{
    const WindowMatch icon{"norvane", {}, {}, 0, 5};
    QRect place;
    const auto isSettled = [&] {
        const auto window = stage.desktop.findWindow(icon);
        const QRect before = place;
        place = window ? stage.desktop.geometry(*window) : QRect();
        return !place.isEmpty() && place == before &&
               place.top() > stage.desktop.screen().height_in_pixels / 2;
    };
    stage.await(isSettled, "no icon came into the tray");
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
    const auto menu = stage.desktop.awaitWindow({"norvane", {}, true, 60});
    require(menu.has_value(), "a right click opened no menu");
    return *menu;
}

// By the arrow keys, upwards from the last row, as far as a screen reader names it.
void chooseRow(const Stage &stage, const QRect &icon, int click, const QString &title)
{
    const SelectionEvents focus("focused");
    const auto menu = openMenu(stage, icon, click);
    QString name;
    for (int row = 0; row < 12 && name != title; ++row) {
        const auto before = focus.selected().size();
        stage.press("Up");
        const auto hasMoved = [&] {
            QCoreApplication::processEvents();
            return focus.selected().size() > before;
        };
        stage.await(hasMoved, "no row of the menu got the focus");
        name = focus.selected().back().name();
    }
    require(name == title, "the menu has no row " + title);
    stage.press("Enter");
    stage.await([&] { return !stage.desktop.isViewable(menu); }, "the menu stayed open");
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

STEP("the status menu in a tray: opened by a right click, a digit pastes, pausing dims the icon")
{
    stage.restart("en", "tray");
    const auto tray = stage.startTray();
    const auto entry = stage.openQtEntry();
    for (const char *text : {"The meeting moved to Thursday, 10:30, second floor",
                             "https://www.example.org/catalogue?page=12#quinces", "fish & chips, a_b"})
        stage.copy(text);
    require(stage.desktop.activate(entry.window), "the entry did not become active");

    const QRect icon = iconPlace(stage);
    openMenu(stage, icon, 0);
    stage.saveScreenshot("tray-menu-en");
    stage.press("2");
    stage.awaitContent(entry, "https://www.example.org/catalogue?page=12#quinces");

    const double bright = lightness(stage, icon);
    chooseRow(stage, icon, 1, "Pause Recording");
    stage.await([&] { return std::abs(lightness(stage, icon) - bright) > 1; },
                "the icon looks the same while paused");
    stage.saveScreenshot("tray-paused");
    require(stage.clipboard.set("not recorded while paused"), "xclip did not take the selection");
    stage.never([&] { return stage.isNewest("not recorded while paused"); }, "recorded while paused");
    chooseRow(stage, icon, 2, "Resume Recording");
    stage.await([&] { return std::abs(lightness(stage, icon) - bright) < 0.5; }, "the icon stayed dim");
    stage.copy("recorded again");

    stage.keyboard.click(somewhereElse(icon, 3));
    stage.awaitPanel();
    stage.closePanel();
}

STEP("the status menu in Italian")
{
    stage.restart("it", "tray");
    const auto tray = stage.startTray();
    openMenu(stage, iconPlace(stage), 0);
    stage.saveScreenshot("tray-menu-it");
    stage.press("Esc");
}

} // namespace
