#include "Norvane/paste/PasteService.h"

#include "Norvane/app/Preferences.h"
#include "Norvane/capture/ClipboardMonitor.h"
#include "Norvane/store/ClipStore.h"
#include "Platform/KeyEvents.h"
#include "Platform/UserDefaults.h"
#include "Platform/Workspace.h"

#include <QTimer>
#include <chrono>
#include <map>

namespace {

// Long enough for the panel to have left the screen.
constexpr std::chrono::milliseconds pasteDelay{50};

const QString askedAccessibility = QStringLiteral("askedAccessibility");

QString plainTextOf(const Clip &clip, const ClipStore &store)
{
    if (clip.kind == ClipKind::files)
        return clip.text;
    return clip.fullText(store).value_or(QString());
}

void writeText(const QString &text, Pasteboard &pasteboard)
{
    pasteboard.write({{{{QString::fromUtf16(PasteboardType::plainText), text.toUtf8()}}}});
}

} // namespace

void writeFormats(const std::vector<ClipFormat> &formats, Pasteboard &pasteboard)
{
    std::map<qint64, PasteboardItem> itemsByNumber;
    for (const auto &format : formats)
        itemsByNumber[format.item].representations.push_back({format.type, format.data});
    std::vector<PasteboardItem> items;
    items.reserve(itemsByNumber.size());
    for (auto &[number, item] : itemsByNumber)
        items.push_back(std::move(item));
    pasteboard.write(std::move(items));
}

PasteService::PasteService(const Services &desktop) : services(desktop) {}

void PasteService::paste(const ClipPointer &chosen, PasteMode mode)
{
    // The list that `chosen` stands in changes below.
    const ClipPointer clip = chosen; // NOLINT(performance-unnecessary-copy-initialization)
    switch (mode.kind()) {
    case PasteMode::transform:
        writeText(apply(mode.textTransform(), clip->fullText(services.store).value_or(QString())),
                  services.pasteboard);
        break;
    case PasteMode::paste:
    case PasteMode::copy: {
        const auto formats = services.store.formats(*clip);
        if (formats.empty() &&
            clip->size > 0) { // unreadable: what the user has on the pasteboard stays there
            services.workspace.beep(nullptr);
            return;
        }
        writeFormats(formats, services.pasteboard);
        break;
    }
    case PasteMode::plain:
    case PasteMode::copyText:
        writeText(plainTextOf(*clip, services.store), services.pasteboard);
        break;
    }
    services.monitor.ignoreCurrentChange();
    services.store.moveToTop(clip);
    if (mode != PasteMode::copy && mode != PasteMode::copyText)
        autoPaste();
}

void PasteService::autoPaste()
{
    if (!services.prefs.autoPaste() || services.workspace.isThisApplicationActive())
        return;
    if (services.keyEvents.canSynthesise()) {
        QTimer::singleShot(pasteDelay, this, &PasteService::postCommandV);
        return;
    }
    UserDefaults &defaults = services.prefs.defaults();
    if (defaults.boolean(askedAccessibility).value_or(false))
        return;
    defaults.setBoolean(askedAccessibility, true); // first: whatever the question does, it is asked once
    if (onAskAccessibility)
        onAskAccessibility();
}

void PasteService::postCommandV()
{
    services.keyEvents.postPaste();
}
