#include "Platform/linux/tray/TrayStatusItem.h"

#include "Platform/linux/tray/TrayIcons.h"
#include "Platform/linux/tray/TrayMenu.h"

#include <QSystemTrayIcon>

namespace {

constexpr int refreshDelay = 200;  // milliseconds
constexpr int longestOpen = 30000; // milliseconds that a menu is taken to be open
constexpr int longestGuess = 3000; // the same, in trays that do not say when it closes

} // namespace

TrayStatusItem::TrayStatusItem(OpenTrayBus openBus) : trays(std::move(openBus))
{
    refreshing.setSingleShot(true);
    refreshing.setInterval(refreshDelay);
    connect(&refreshing, &QTimer::timeout, this, &TrayStatusItem::refresh);
    openTime.setSingleShot(true);
    connect(&openTime, &QTimer::timeout, this, &TrayStatusItem::refresh);
    trays.onChange = [this] { followTrays(); };
}

TrayStatusItem::~TrayStatusItem() = default;

void TrayStatusItem::show()
{
    trays.start();
}

TrayStatusItem::Kind TrayStatusItem::kindToMake() const
{
    switch (trays.notifier()) {
    case TrayWatch::Notifier::present:
        return Kind::notifier;
    case TrayWatch::Notifier::absent:
        return trays.hasEmbeddingTray() ? Kind::embedded : Kind::none;
    case TrayWatch::Notifier::unknown:
        break; // Qt would wait for the answer that we wait for
    }
    return Kind::none;
}

void TrayStatusItem::followTrays()
{
    if (kind == Kind::none) {
        kind = kindToMake();
        if (kind != Kind::none)
            makeIcon(kind);
    }
    const bool now = (kind == Kind::notifier && trays.notifier() == TrayWatch::Notifier::present) ||
                     (kind == Kind::embedded && trays.hasEmbeddingTray());
    if (now == available)
        return;
    available = now;
    if (onAvailabilityChange)
        onAvailabilityChange();
}

void TrayStatusItem::makeIcon(Kind kindMade)
{
    menu = std::make_unique<TrayMenu>(kindMade == Kind::notifier ? MenuHost::exported : MenuHost::widget);
    connect(menu.get(), &QMenu::aboutToShow, this, &TrayStatusItem::aboutToOpen);
    connect(menu.get(), &QMenu::aboutToHide, this, &TrayStatusItem::closed);
    refresh();
    icon = std::make_unique<QSystemTrayIcon>();
    applyIcon();
    icon->setToolTip(QStringLiteral("Norvane"));
    icon->setContextMenu(menu.get());
    connect(icon.get(), &QSystemTrayIcon::activated, this, [this](QSystemTrayIcon::ActivationReason reason) {
        if (reason == QSystemTrayIcon::Trigger && onActivate)
            onActivate();
    });
    icon->show();
}

void TrayStatusItem::menuChanged()
{
    if (menu && !refreshing.isActive())
        refreshing.start();
}

void TrayStatusItem::refresh()
{
    if (menuContents && !openTime.isActive())
        menu->setItems(menuContents());
}

// Rows that appear or go now would close an exported menu, or leave it with a wrong height. Our own may
// change: it takes its size after this.
void TrayStatusItem::aboutToOpen()
{
    if (menuContents && kind == Kind::embedded)
        menu->setItems(menuContents());
    else if (menuContents)
        menu->setTexts(menuContents());
    openTime.start(saysClosed ? longestOpen : longestGuess);
}

void TrayStatusItem::closed()
{
    saysClosed = saysClosed || openTime.isActive();
    openTime.stop();
    // The row that was chosen is still to run.
    refreshing.start();
}

void TrayStatusItem::setPaused(bool paused)
{
    paused_ = paused;
    if (icon)
        applyIcon();
}

void TrayStatusItem::applyIcon()
{
    icon->setIcon(kind == Kind::notifier ? namedStatusIcon(paused_) : drawnStatusIcon(paused_));
}

QRect TrayStatusItem::geometry() const
{
    return icon ? icon->geometry() : QRect();
}

void TrayStatusItem::popUpMenu(const QPoint &lowerRight)
{
    if (!menuContents)
        return;
    if (!ownMenu)
        ownMenu = std::make_unique<TrayMenu>(MenuHost::widget);
    ownMenu->setItems(menuContents());
    const QSize size = ownMenu->sizeHint();
    ownMenu->popup(lowerRight - QPoint(size.width(), size.height()));
}
