#pragma once

#include "Platform/StatusItem.h"
#include "Platform/linux/tray/TrayWatch.h"

#include <QObject>
#include <QTimer>
#include <memory>

class QSystemTrayIcon;
class TrayMenu;

// The status item of a Linux desktop, as a StatusNotifierItem or as an embedded window.
//
// Qt settles which of the two it makes when the first icon is made, by the trays of that moment, and waits
// for the answer of the notifier's watcher. So the icon is made only when there is a tray that has just
// answered. Once made it stays of its kind: it leaves with a tray of that kind and comes back with the next.
class TrayStatusItem : public QObject, public StatusItem {
    Q_OBJECT

public:
    explicit TrayStatusItem(OpenTrayBus openBus);
    ~TrayStatusItem() override;

    void show() override;
    void menuChanged() override;
    void setPaused(bool paused) override;
    [[nodiscard]] bool isAvailable() const override { return available; }
    void popUpMenu(const QPoint &lowerRight) override;

    [[nodiscard]] QRect geometry() const; // on the screen; empty where the tray does not tell

private:
    enum class Kind { none, notifier, embedded };

    void followTrays();
    [[nodiscard]] Kind kindToMake() const;
    void makeIcon(Kind kindMade);
    void aboutToOpen();
    void closed();
    void refresh();
    void applyIcon();

    TrayWatch trays;
    std::unique_ptr<TrayMenu> menu; // the icon's; outlives it
    std::unique_ptr<QSystemTrayIcon> icon;
    std::unique_ptr<TrayMenu> ownMenu; // opened by popUpMenu
    Kind kind = Kind::none;
    bool available = false;
    bool paused_ = false;
    bool saysClosed = false; // the tray has said so before
    QTimer refreshing;
    QTimer openTime; // runs while the icon's menu is taken to be open
};
