#pragma once

#include "Norvane/ClearDialog.h"
#include "Norvane/Theme.h"
#include "Norvane/app/GlobalHotKey.h"
#include "Platform/Platform.h"

#include <QObject>
#include <QRectF>
#include <QTimer>
#include <memory>
#include <optional>
#include <vector>

class ClipboardMonitor;
class ClipStore;
class PasteService;
class PopupController;
class Preferences;
class TextRecognitionQueue;
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

    // Opens the panel with everything copied until now in it, at the text caret when the settings say so;
    // brings it forward when it is open. Waits for both at most 100 milliseconds, without blocking.
    void showPopup();

    // Closes the panel, or keeps it from opening.
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
    void followCaret();
    void readImages();
    void askForCaret();
    void showWhenReady();
    void present();
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
    std::unique_ptr<TextRecognitionQueue> recognizer;
    std::unique_ptr<ClipboardMonitor> monitor;
    std::unique_ptr<PopupController> popup;
    std::unique_ptr<PasteService> pasteService;
    GlobalHotKey hotKey;
    ClearDialog clearDialog;
    QTimer trimming;

    // Between the press and the panel: what it still waits for.
    struct Opening {
        int number = 0; // tells the answers to this opening from late ones to another
        bool caughtUp = false;
        bool caretKnown = false;
        std::optional<QRectF> caret;
    };
    Opening opening;
    QTimer showing; // running while the panel waits
};
