#include "Norvane/paste/PasteService.h"

#include "Norvane/app/Preferences.h"
#include "Norvane/capture/ClipboardMonitor.h"
#include "Norvane/store/ClipStore.h"
#include "Platform/KeyEvents.h"
#include "Platform/UserDefaults.h"
#include "Platform/Workspace.h"

#include <QPointer>
#include <QTimer>
#include <chrono>
#include <map>

namespace {

// Long enough for the panel to have left the screen.
constexpr std::chrono::milliseconds pasteDelay{50};

// What the event loop may be away for: about 2 ms, with the dearest conversion.
constexpr qint64 readAtOnce = 1 << 20;         // bytes
constexpr qsizetype convertedAtOnce = 1 << 14; // UTF-16 units

const QString askedAccessibility = QStringLiteral("askedAccessibility");

// A clip and what to make of it, in values: a worker may.
struct Order {
    PasteMode mode;
    QString text; // as the clip has it in memory
    bool isShortened = false;
    bool hasBytes = false;
    bool isLong = false; // for the event loop

    Order(const Clip &clip, PasteMode wanted);
    [[nodiscard]] bool wantsText() const { return mode != PasteMode::paste && mode != PasteMode::copy; }
    [[nodiscard]] std::optional<std::vector<ClipFormat>> content(const StoredFormats &formats) const;
};

Order::Order(const Clip &clip, PasteMode wanted)
    : mode(wanted), text(clip.kind == ClipKind::image ? clip.recognizedText.value_or(QString()) : clip.text),
      hasBytes(clip.size > 0)
{
    // The text of files is the list of their paths; a conversion takes the form that they have as text.
    isShortened =
        clip.mayBeShortened() && (clip.kind != ClipKind::files || mode.kind() == PasteMode::transform);
    const bool readsMuch = clip.size > readAtOnce && (isShortened || !wantsText());
    isLong = readsMuch || (mode.kind() == PasteMode::transform && text.size() > convertedAtOnce);
}

std::optional<std::vector<ClipFormat>> Order::content(const StoredFormats &formats) const
{
    if (!wantsText()) {
        auto all = formats.all();
        return all.empty() && hasBytes ? std::nullopt : std::optional(std::move(all));
    }
    QString whole = isShortened ? wholeText(formats, text) : text;
    if (mode.kind() == PasteMode::transform)
        whole = apply(mode.textTransform(), whole);
    return std::vector{ClipFormat{0, QString::fromUtf16(PasteboardType::plainText), whole.toUtf8()}};
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
    const auto isNewest = choices.next();
    const Order order(*clip, mode);
    if (!order.isLong) {
        deliver(clip, mode, order.content(services.store.stored(*clip)));
        return;
    }
    const auto finish = [this, isNewest, clip, mode,
                         change = services.pasteboard.changeCount()](const Content &content) {
        if (isNewest() && change == services.pasteboard.changeCount())
            deliver(clip, mode, services.store.contains(clip) ? content : std::nullopt);
    };
    services.store.read(*clip, [order, isNewest, finish](const StoredFormats &formats) {
        const Content content = isNewest() ? order.content(formats) : std::nullopt;
        return [finish, content] { finish(content); };
    });
}

// What the user has on the pasteboard stays there when the clip is unreadable.
void PasteService::deliver(const ClipPointer &clip, PasteMode mode, const Content &content)
{
    if (!content) {
        services.workspace.beep(nullptr);
        return;
    }
    writeFormats(*content, services.pasteboard);
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
