#include "Norvane/AppDelegate.h"

#include "Norvane/PopupController.h"
#include "Norvane/PopupPanel.h"
#include "Norvane/StatusMenu.h"
#include "Norvane/app/Preferences.h"
#include "Norvane/app/TextRecognitionQueue.h"
#include "Norvane/capture/ClipboardMonitor.h"
#include "Norvane/paste/PasteService.h"
#include "Norvane/store/ClipStore.h"
#include "Vesmo/Localisation.h"
#include "Vesmo/TextRecognizer.h"

#include <QCoreApplication>
#include <QMessageBox>
#include <QPointer>

namespace {

constexpr int trimDelay = 1000;    // milliseconds after the last change of a limit
constexpr int longestWait = 100;   // milliseconds that opening the panel waits for copies and the caret
constexpr int menuDelay = 100;     // milliseconds from a row of the status menu to the panel
constexpr int firstReading = 3000; // milliseconds from launch to reading images that were not read before
constexpr double warmUpDelay = 5;  // seconds from launch

} // namespace

AppDelegate::AppDelegate(Platform &givenPlatform, Preferences &preferences, const QString &folder)
    : platform(givenPlatform), theme(*givenPlatform.appearance), prefs(preferences), dataFolder(folder),
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
    releaseStatusItem();
    // The captures still in work are delivered while the store is there to take them.
    monitor.reset();
}

void AppDelegate::finishLaunching()
{
    store = std::make_unique<ClipStore>(dataFolder);
    store->trim(prefs.maxItems(), prefs.retentionDays());
    recognizer = std::make_unique<TextRecognitionQueue>(
        *store, platform.recognition, [this] { return prefs.recognizeText() && prefs.saveImages(); });

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

    readImages();
    hotKey.onPress = [this] { togglePopup(); };
    registerHotKey();
    watchPreferences();
    followCaret();
    installStatusItem();
}

void AppDelegate::readImages()
{
    recognizer->onCanReadChange = [this](bool canRead) { popup->setReadsImages(canRead); };
    QTimer::singleShot(firstReading, recognizer.get(), &TextRecognitionQueue::kick);
    if (prefs.recognizeText())
        TextRecognizer::warmUp(warmUpDelay, platform.recognition);
}

void AppDelegate::followCaret()
{
    platform.accessibility->setCaretWanted(prefs.position() == PopupPosition::caret);
}

void AppDelegate::installStatusItem()
{
    StatusItem &item = *platform.statusItem;
    item.menuContents = [this] { return statusMenu(); };
    item.onActivate = [this] { showPopup(); };
    item.onAvailabilityChange = [this, &item] { popup->setMenuButtonVisible(!item.isAvailable()); };
    popup->onShowMenu = [&item](const QPoint &corner) { item.popUpMenu(corner); };
    connect(store.get(), &ClipStore::ClipStoreDidChange, this, [&item] { item.menuChanged(); });
    connect(&prefs, &Preferences::shortcutChanged, this, [&item] { item.menuChanged(); });
    clearDialog.onConfirm = [this] { clearHistory(); };
    item.show();
    item.onAvailabilityChange();
}

// The desktop's services outlive this.
void AppDelegate::releaseStatusItem()
{
    platform.statusItem->menuContents = nullptr;
    platform.statusItem->onActivate = nullptr;
    platform.statusItem->onAvailabilityChange = nullptr;
}

std::vector<ClosureMenuItem> AppDelegate::statusMenu()
{
    const auto guarded = [guard = QPointer(this)](void (AppDelegate::*command)()) {
        return [guard, command] {
            if (guard)
                (guard->*command)();
        };
    };
    StatusMenuActions actions;
    actions.showPopup = [guard = QPointer(this)] {
        if (guard)
            QTimer::singleShot(menuDelay, guard, &AppDelegate::showPopup);
    };
    actions.togglePause = guarded(&AppDelegate::togglePause);
    actions.confirmClear = guarded(&AppDelegate::confirmClear);
    actions.quit = guarded(&AppDelegate::quit);
    actions.paste = [guard = QPointer(this)](const ClipPointer &clip, PasteMode mode) {
        if (!guard)
            return;
        guard->hidePopup(); // the menu may have been the panel's
        guard->pasteService->paste(clip, mode);
    };
    return statusMenuItems(store->clips(), monitor->isPaused(),
                           displayString(prefs.shortcut(), *platform.keyboardLayout), actions);
}

void AppDelegate::togglePause()
{
    monitor->setPaused(!monitor->isPaused());
    platform.statusItem->setPaused(monitor->isPaused());
    platform.statusItem->menuChanged();
}

void AppDelegate::confirmClear()
{
    clearDialog.ask(popup->isVisible() ? &popup->window() : nullptr);
}

void AppDelegate::clearHistory()
{
    ClipList doomed;
    std::ranges::copy_if(store->clips(), std::back_inserter(doomed),
                         [](const ClipPointer &clip) { return !clip->pinned; });
    store->deleteAll(doomed);
}

void AppDelegate::quit()
{
    QCoreApplication::quit();
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
    for (const auto changed : {&Preferences::recognizeTextChanged, &Preferences::saveImagesChanged})
        connect(&prefs, changed, recognizer.get(), &TextRecognitionQueue::kick, Qt::QueuedConnection);
    connect(&prefs, &Preferences::positionChanged, this, &AppDelegate::followCaret);
    connect(&prefs, &Preferences::maxItemsChanged, &trimming, qOverload<>(&QTimer::start));
    connect(&prefs, &Preferences::retentionDaysChanged, &trimming, qOverload<>(&QTimer::start));
}

void AppDelegate::handleCapture(const CapturedClip &capture)
{
    store->addLater(capture, [this, isImage = capture.kind == ClipKind::image] {
        store->trim(prefs.maxItems(), prefs.retentionDays());
        if (isImage)
            recognizer->kick();
    });
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
        if (guard)
            guard->store->whenWritten([guard, number] {
                if (!guard || guard->opening.number != number)
                    return;
                guard->opening.caughtUp = true;
                guard->showWhenReady();
            });
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
    else if (action == QStringLiteral("pause"))
        togglePause();
    else if (action == QStringLiteral("quit"))
        quit();
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
