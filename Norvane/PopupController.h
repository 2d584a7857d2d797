#pragma once

#include "Norvane/ClipIcons.h"
#include "Norvane/ClipListModel.h"
#include "Norvane/FirstFrame.h"
#include "Norvane/RememberedSize.h"
#include "Norvane/paste/PasteMode.h"
#include "Norvane/store/ClipSearch.h"

#include <QObject>
#include <QRectF>
#include <QTimer>
#include <functional>
#include <memory>
#include <optional>

class ClipStore;
class DesktopEntries;
class PanelSurface;
class Pasteboard;
class PopupPanel;
class Preferences;
class QKeyEvent;
class Screens;
class Workspace;

// The history panel: what it lists, what its keys do, what is chosen. Made once, shown and hidden any number
// of times; owned by AppDelegate. Main thread.
class PopupController : public QObject {
    Q_OBJECT

public:
    struct Services {
        ClipStore &store;
        Preferences &prefs;
        Pasteboard &pasteboard;
        PanelSurface &surface;
        Screens &screens;
        Workspace &workspace;
        const DesktopEntries &desktopEntries;
    };
    explicit PopupController(const Services &services);
    ~PopupController() override;

    std::function<void(const ClipPointer &, PasteMode)> onPick;
    std::function<void(const ClipPointer &)> onOpenInEditor;
    std::function<void(const ClipPointer &)> onEdit; // null: a new clip
    std::function<void()> onShowSettings;
    std::function<void(const QPoint &)> onShowMenu; // above this point of the screen, ending at its left

    [[nodiscard]] bool isVisible() const;

    // Lists everything anew and opens at the place the settings say; `caret`, in Qt's coordinates, is where
    // that is the text caret, the pointer when absent. Brought forward when open already.
    void show(const std::optional<QRectF> &caret = {});
    void hide();

    // A small button in the panel that calls onShowMenu: where no tray has the menu.
    void setMenuButtonVisible(bool visible);

    // Whether images are being read: without that their preview promises no text.
    void setReadsImages(bool reads);

    // keepSelection: the selected clip stays selected, or what took its row.
    void reload(bool keepSelection);
    void select(int row);
    [[nodiscard]] ClipPointer selectedClip() const; // null when none
    [[nodiscard]] const ClipList &results() const { return model.results(); }
    [[nodiscard]] ClipFilter filter() const { return filter_; }
    [[nodiscard]] PopupPanel &window() { return *panel; }

private:
    void place(const std::optional<QRectF> &caret);
    void prepare();
    void prepareLater();
    void prepareAhead();
    void pick(const ClipPointer &clip, PasteMode mode);
    void beep();
    void setFilter(int segment);
    void stepFilter(int step);
    void showPreview();
    void renewPreview(); // of the clip that is selected, after a setting changed
    void updateCount();
    void leaveFor(const std::function<void()> &action);

    bool handlePanelKey(QKeyEvent *event);
    bool handleCommandLetter(int key);
    bool handleSharedKey(QKeyEvent *event);
    bool handleFieldCommand(QKeyEvent *event);
    bool handleListKey(QKeyEvent *event);
    bool handleDigit(int digit, bool shift);
    void editSelected();
    void deleteSelected();
    void togglePin();
    void searchFor(const QString &characters);

    Services services;
    ClipSearch search;
    ClipListModel model;
    ClipIcons icons;
    std::unique_ptr<PopupPanel> panel;
    RememberedSize size;
    FirstFrame firstFrame;
    ClipFilter filter_ = ClipFilter::all;
    QTimer preparing;
    bool prepared = false; // the list is as the next opening wants it
};
