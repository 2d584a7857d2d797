#include "Norvane/AppDelegate.h"

#include "Norvane/PopupController.h"
#include "Norvane/app/Preferences.h"
#include "Norvane/capture/ClipboardMonitor.h"
#include "Norvane/paste/PasteService.h"
#include "Norvane/store/ClipStore.h"
#include "Vesmo/Localisation.h"

#include <QMessageBox>
#include <QPointer>

namespace {

constexpr int trimDelay = 1000;  // milliseconds after the last change of a limit
constexpr int longestWait = 100; // milliseconds that opening the panel waits for copies and the caret

} // namespace

AppDelegate::AppDelegate(Platform &givenPlatform, Preferences &preferences, const QString &folder)
    : platform(givenPlatform), prefs(preferences), dataFolder(folder),
      hotKey(*givenPlatform.hotKeys, *givenPlatform.keyboardLayout)
{
    trimming.setSingleShot(true);
    trimming.setInterval(trimDelay);
    connect(&trimming, &QTimer::timeout, this,
            [this] { store->trim(prefs.maxItems(), prefs.retentionDays()); });
    showing.setSingleShot(true);
    showing.setInterval(longestWait);
    showing.setTimerType(Qt::PreciseTimer);
    connect(&showing, &QTimer::timeout, this, &AppDelegate::present);
}

AppDelegate::~AppDelegate()
{
    // The captures still in work are delivered while the store is there to take them.
    monitor.reset();
}

void AppDelegate::finishLaunching()
{
    store = std::make_unique<ClipStore>(dataFolder);
    store->trim(prefs.maxItems(), prefs.retentionDays());

    monitor = std::make_unique<ClipboardMonitor>(*platform.pasteboard, prefs);
    pasteService = std::make_unique<PasteService>(PasteService::Services{
        *store, *platform.pasteboard, *monitor, prefs, *platform.workspace, *platform.keyEvents});
    pasteService->onAskAccessibility = [this] { explainMissingKeys(); };

    popup = std::make_unique<PopupController>(
        PopupController::Services{*store, prefs, *platform.pasteboard, *platform.panelSurface,
                                  *platform.screens, *platform.workspace, *platform.desktopEntries});
    popup->onPick = [this](const ClipPointer &clip, PasteMode mode) { pasteService->paste(clip, mode); };

    monitor->onCapture = [this](const CapturedClip &capture) { handleCapture(capture); };
    monitor->start();

    hotKey.onPress = [this] { togglePopup(); };
    registerHotKey();
    watchPreferences();
    followCaret();
}

void AppDelegate::followCaret()
{
    platform.accessibility->setCaretWanted(prefs.position() == PopupPosition::caret);
}

void AppDelegate::registerHotKey()
{
    hotKey.registerShortcut(prefs.shortcut());
}

void AppDelegate::watchPreferences()
{
    connect(&prefs, &Preferences::shortcutChanged, this, &AppDelegate::registerHotKey);
    connect(&prefs, &Preferences::recordingShortcutChanged, this, [this](bool recording) {
        if (recording)
            hotKey.unregister();
        else
            registerHotKey();
    });
    connect(&prefs, &Preferences::positionChanged, this, &AppDelegate::followCaret);
    connect(&prefs, &Preferences::maxItemsChanged, &trimming, qOverload<>(&QTimer::start));
    connect(&prefs, &Preferences::retentionDaysChanged, &trimming, qOverload<>(&QTimer::start));
}

void AppDelegate::handleCapture(const CapturedClip &capture)
{
    store->add(capture);
    store->trim(prefs.maxItems(), prefs.retentionDays());
}

void AppDelegate::showPopup()
{
    if (showing.isActive())
        return;
    const int number = opening.number + 1;
    opening = Opening();
    opening.number = number;
    showing.start();
    askForCaret();
    monitor->whenCaughtUp([guard = QPointer(this), number] {
        if (!guard || guard->opening.number != number)
            return;
        guard->opening.caughtUp = true;
        guard->showWhenReady();
    });
}

// First of all that an opening does: when the panel has taken the keyboard, nothing has a caret any more.
void AppDelegate::askForCaret()
{
    if (prefs.position() != PopupPosition::caret || !platform.accessibility->caretAvailable()) {
        opening.caretKnown = true;
        return;
    }
    platform.accessibility->requestCaretRect(
        [guard = QPointer(this), number = opening.number](const std::optional<QRectF> &caret) {
            if (!guard || guard->opening.number != number)
                return;
            guard->opening.caretKnown = true;
            guard->opening.caret = caret;
            guard->showWhenReady();
        });
}

void AppDelegate::showWhenReady()
{
    // Not waiting: cancelled, or shown without waiting longer.
    if (showing.isActive() && opening.caughtUp && opening.caretKnown)
        present();
}

void AppDelegate::present()
{
    showing.stop();
    platform.accessibility->cancel();
    popup->show(opening.caret);
}

void AppDelegate::hidePopup()
{
    if (showing.isActive()) {
        showing.stop();
        platform.accessibility->cancel();
        if (!popup->isVisible())
            platform.panelSurface->dismiss(); // the keyboard, which waits for the panel, goes on
    }
    popup->hide();
}

void AppDelegate::togglePopup()
{
    if (popup->isVisible() || showing.isActive())
        hidePopup();
    else
        showPopup();
}

void AppDelegate::perform(const QString &action)
{
    if (action == QStringLiteral("toggle"))
        togglePopup();
    else if (action == QStringLiteral("hide"))
        hidePopup();
    else
        showPopup();
}

void AppDelegate::explainMissingKeys()
{
    auto *box =
        new QMessageBox(QMessageBox::Information, QStringLiteral("Norvane"),
                        L("Senza permesso, la scelta viene solo copiata negli appunti: poi premi ⌘V."));
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
}
