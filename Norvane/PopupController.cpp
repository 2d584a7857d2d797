#include "Norvane/PopupController.h"

#include "Norvane/ClipViews.h"
#include "Norvane/FilterControl.h"
#include "Norvane/Palette.h"
#include "Norvane/PanelPlacement.h"
#include "Norvane/PopupPanel.h"
#include "Norvane/PreviewPane.h"
#include "Norvane/SearchField.h"
#include "Norvane/app/Preferences.h"
#include "Norvane/store/ClipStore.h"
#include "Platform/PanelSurface.h"
#include "Platform/Screens.h"
#include "Platform/UserDefaults.h"
#include "Platform/Workspace.h"
#include "Vesmo/Localisation.h"

#include <QItemSelectionModel>
#include <QLabel>
#include <QToolButton>

namespace {

constexpr int preparationDelay = 150; // milliseconds after the last change: a paste comes first

bool needsText(PasteMode mode)
{
    return mode.kind() == PasteMode::transform || mode == PasteMode::plain || mode == PasteMode::copyText;
}

} // namespace

PopupController::PopupController(const Services &given)
    : services(given), search(given.store), icons(given.desktopEntries),
      panel(std::make_unique<PopupPanel>(given.pasteboard, given.prefs, model, icons)),
      size(given.prefs.defaults()), firstFrame(panel.get(), panel->searchField, panel->tableView)
{
    panel->resize(size.initial());
    panel->setHint(L("⏎ incolla  ·  ⇧⏎ senza formato  ·  ⌥⏎ copia  ·  ⌘E modifica  ·  ⌘P fissa  ·  "
                     "⌘⌫ elimina  ·  ⌘1–9 rapida  ·  ⇥ filtro"));
    panel->keyHandler = [this](QKeyEvent *event) { return handlePanelKey(event); };
    panel->fieldHandler = [this](QKeyEvent *event) { return handleFieldCommand(event); };
    panel->onCancel = [this] { hide(); };
    panel->tableView->onKey = [this](QKeyEvent *event) { return handleListKey(event); };
    panel->tableView->onDoubleClick = [this](int row) {
        if (const ClipPointer clip = model.clipAt(row))
            pick(clip, PasteMode::paste);
    };
    connect(panel->menuButton, &QToolButton::clicked, this, [this] {
        const QPoint corner(panel->menuButton->width(), -Metrics::scaled(4));
        if (onShowMenu)
            onShowMenu(panel->menuButton->mapToGlobal(corner));
    });
    connect(panel->searchField, &QLineEdit::textChanged, this, [this] { reload(false); });
    connect(panel->filterControl, &FilterControl::segmentChosen, this, &PopupController::setFilter);
    preparing.setSingleShot(true);
    preparing.setInterval(preparationDelay);
    connect(&preparing, &QTimer::timeout, this, &PopupController::prepareAhead);
    const auto prepareIfHidden = [this] {
        if (!isVisible())
            prepareLater();
    };
    connect(&services.store, &ClipStore::ClipStoreDidChange, this, [this] {
        if (isVisible())
            reload(true);
        else
            prepareLater();
    });
    connect(&icons, &ClipIcons::iconsChanged, this, prepareIfHidden);
    connect(panel->previewPane, &PreviewPane::pictureArrived, this, prepareIfHidden);
    connect(panel->tableView->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &PopupController::showPreview);
    connect(&services.prefs, &Preferences::showPreviewChanged, this, prepareIfHidden);
    connect(&services.prefs, &Preferences::recognizeTextChanged, this, &PopupController::renewPreview);
    services.surface.adopt(panel.get());
    services.surface.onDismissRequest = [this] { hide(); };
    prepareLater();
}

PopupController::~PopupController()
{
    services.surface.onDismissRequest = nullptr;
}

bool PopupController::isVisible() const
{
    return services.surface.isPresented();
}

void PopupController::show(const std::optional<QRectF> &caret)
{
    if (!prepared || isVisible())
        prepare();
    panel->searchField->setFocus();
    place(caret);
}

// Lists everything for the next opening, so that the opening itself has only to paint.
void PopupController::prepare()
{
    preparing.stop();
    {
        const QSignalBlocker blocker(panel->searchField);
        panel->searchField->clear();
    }
    panel->setPreviewShown(services.prefs.showPreview());
    reload(false);
    prepared = true;
}

void PopupController::prepareLater()
{
    prepared = false;
    firstFrame.discard();
    preparing.start();
}

void PopupController::prepareAhead()
{
    prepare();
    if (!isVisible())
        firstFrame.paint();
}

void PopupController::place(const std::optional<QRectF> &caret)
{
    const auto areas = services.screens.screens();
    const double primaryHeight = areas.empty() ? 0 : areas.front().frame.height();
    std::vector<PanelPlacement::Screen> screens;
    screens.reserve(areas.size());
    for (const auto &area : areas)
        screens.push_back({PanelPlacement::flipped(area.frame, primaryHeight),
                           PanelPlacement::flipped(area.visibleFrame, primaryHeight)});
    if (screens.empty())
        return;
    const auto anchor = caret ? std::optional(PanelPlacement::flipped(*caret, primaryHeight)) : std::nullopt;
    const QSize wanted = size.wanted(panel->size());
    const QRect frame = PanelPlacement::flipped(
                            PanelPlacement::place(
                                QSizeF(wanted), services.prefs.position(), anchor,
                                PanelPlacement::flipped(services.screens.pointer(), primaryHeight), screens),
                            primaryHeight)
                            .toRect();
    size.setPlaced(wanted, frame.size());
    // On a screen too small for the smallest panel, it is smaller still.
    panel->setMinimumSize(frame.size().boundedTo(PanelPlacement::minimumSize.toSize()));
    services.surface.present(frame);
}

void PopupController::hide()
{
    if (!isVisible())
        return;
    size.store(panel->size());
    services.surface.dismiss();
    prepareLater();
}

void PopupController::setMenuButtonVisible(bool visible)
{
    panel->menuButton->setVisible(visible);
    if (!isVisible())
        prepareLater();
}

void PopupController::setReadsImages(bool reads)
{
    panel->previewPane->setReadsImages(reads);
    renewPreview();
}

void PopupController::renewPreview()
{
    if (isVisible())
        showPreview();
    else
        prepareLater();
}

void PopupController::reload(bool keepSelection)
{
    prepared = false;
    firstFrame.discard();
    const ClipPointer rememberedClip = keepSelection ? selectedClip() : nullptr;
    const int rememberedRow = panel->tableView->selectedRow();

    model.setResults(search.results(filter_, panel->searchField->text()));
    const ClipList &listed = model.results();
    if (!listed.empty()) {
        int row = 0;
        const auto found =
            rememberedClip ? std::find(listed.begin(), listed.end(), rememberedClip) : listed.end();
        if (found != listed.end())
            row = static_cast<int>(found - listed.begin());
        else if (keepSelection && rememberedRow >= 0)
            row = std::min(rememberedRow, static_cast<int>(listed.size()) - 1);
        select(row);
    }
    showPreview();
    updateCount();
}

void PopupController::showPreview()
{
    if (services.prefs.showPreview())
        panel->previewPane->show(selectedClip(), services.store);
}

void PopupController::updateCount()
{
    const auto listed = model.results().size();
    const auto stored = services.store.clips().size();
    panel->countLabel->setText(listed == stored ? L("%@ elementi", stored) : L("%@ di %@", listed, stored));
}

void PopupController::select(int row)
{
    panel->tableView->selectRow(row);
}

ClipPointer PopupController::selectedClip() const
{
    return model.clipAt(panel->tableView->selectedRow());
}

void PopupController::setFilter(int segment)
{
    filter_ = segment >= 0 && segment < clipFilterCount ? static_cast<ClipFilter>(segment) : ClipFilter::all;
    reload(false);
}

void PopupController::stepFilter(int step)
{
    const int segment = (panel->filterControl->selectedSegment() + step + clipFilterCount) % clipFilterCount;
    panel->filterControl->setSelectedSegment(segment);
    setFilter(segment);
}

void PopupController::pick(const ClipPointer &clip, PasteMode mode)
{
    if (!clip)
        return;
    const bool hasText = clip->recognizedText && !clip->recognizedText->isEmpty();
    if (clip->kind == ClipKind::image && needsText(mode) && !hasText) {
        if (mode != PasteMode::plain) {
            beep();
            return;
        }
        mode = PasteMode::paste;
    }
    hide();
    if (onPick)
        onPick(clip, mode);
}

void PopupController::beep()
{
    services.workspace.beep(panel.get());
}

// Closes the panel and goes on elsewhere; a beep when there is nowhere to go.
void PopupController::leaveFor(const std::function<void()> &action)
{
    if (!action) {
        beep();
        return;
    }
    hide();
    action();
}

void PopupController::deleteSelected()
{
    if (const ClipPointer clip = selectedClip())
        services.store.remove(clip);
}

void PopupController::togglePin()
{
    if (const ClipPointer clip = selectedClip())
        services.store.setPinned(clip, !clip->pinned);
}

void PopupController::editSelected()
{
    const ClipPointer clip = selectedClip();
    const bool editable = !clip || clip->kind == ClipKind::text || clip->kind == ClipKind::richText ||
                          (clip->kind == ClipKind::image && clip->recognizedText);
    if (!editable || !onEdit)
        beep();
    else
        leaveFor([this, clip] { onEdit(clip); });
}
