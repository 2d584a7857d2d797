#pragma once

#include "Norvane/ClearDialog.h"
#include "Norvane/Theme.h"
#include "Norvane/app/GlobalHotKey.h"
#include "Platform/Platform.h"

#include <QObject>
#include <QTimer>
#include <memory>
#include <vector>

class ClipboardMonitor;
class ClipStore;
class PasteService;
class PopupController;
class Preferences;
struct CapturedClip;
struct ClosureMenuItem;

// Owns every long-lived object for the life of the process and wires them; no logic of its own. Main thread.
class AppDelegate : public QObject {
    Q_OBJECT

public:
    // `dataFolder` holds the history. The platform outlives this.
    AppDelegate(Platform &platform, Preferences &prefs, const QString &dataFolder);
    ~AppDelegate() override;

    // Builds everything in its order and starts recording.
    void finishLaunching();

    // Opens the panel with everything copied until now in it; brings it forward when it is open.
    void showPopup();
    void hidePopup();
    void togglePopup();

    void togglePause();

    // Asks, then deletes every clip that is not pinned.
    void confirmClear();
    void quit();

    // What another start or the desktop asks for: "show", "hide", "toggle", "pause", "quit".
    void perform(const QString &action);

private:
    void watchPreferences();
    void registerHotKey();
    void installStatusItem();
    void releaseStatusItem();
    [[nodiscard]] std::vector<ClosureMenuItem> statusMenu();
    void clearHistory();
    void handleCapture(const CapturedClip &capture);
    void explainMissingKeys();

    Platform &platform;
    Theme theme;
    Preferences &prefs;
    QString dataFolder;
    std::unique_ptr<ClipStore> store;
    std::unique_ptr<ClipboardMonitor> monitor;
    std::unique_ptr<PopupController> popup;
    std::unique_ptr<PasteService> pasteService;
    GlobalHotKey hotKey;
    ClearDialog clearDialog;
    QTimer trimming;
    QTimer showing; // running while the panel waits for the last copy to arrive
};
