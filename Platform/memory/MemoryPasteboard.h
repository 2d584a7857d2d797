#pragma once

#include "Platform/Pasteboard.h"

#include <QObject>
#include <QSet>

// A pasteboard in memory that keeps the promises of the real one: policy, order, counts, late reads, bad
// owners.
//
// The operations below `Pasteboard`'s own play the rest of the desktop. Main thread.
class MemoryPasteboard : public Pasteboard {
public:
    // `contents` is what was copied before the program started: it moves no count.
    explicit MemoryPasteboard(qint64 initialCount = 0, std::vector<PasteboardItem> contents = {});

    [[nodiscard]] qint64 changeCount() const override;
    [[nodiscard]] std::shared_ptr<const PasteboardSnapshot> snapshot() const override;
    qint64 write(std::vector<PasteboardItem> items) override;
    void setPolicy(const PasteboardPolicy &policy) override;
    void whenSettled(std::function<void()> callback) override;
    void readText(std::function<void(const QString &)> callback) override; // from the event loop

    // Another program copies. Published at once, or by `finishRead` after `beginRead`; a copy that is
    // overtaken by another change before it was read through is never published, but counts.
    void copy(std::vector<PasteboardItem> items, std::optional<FrontApplication> frontApplication = {});
    void copyText(const QString &text, std::optional<FrontApplication> frontApplication = {});

    // Another program empties the pasteboard on purpose.
    void clear(std::optional<FrontApplication> frontApplication = {});

    // From `beginRead` on foreign content is under way, until `finishRead` publishes the last of it.
    void beginRead();
    void finishRead();

    // In front while this program writes.
    void setFrontApplication(std::optional<FrontApplication> application);

    // Bad neighbours, for the copies that follow. A refused type is offered without bytes; a hung owner gives
    // none at all and no text; a refused claim lets the other program's content come back, as a change of its
    // own.
    void refuseType(const QString &type);
    void setOwnerHung(bool hung);
    void setClaimRefused(bool refused);

    [[nodiscard]] const PasteboardPolicy &policy() const;

private:
    struct Copy {
        std::vector<PasteboardItem> items;
        std::optional<FrontApplication> frontApplication;
    };

    void publish(std::vector<PasteboardItem> items, const std::optional<FrontApplication> &frontApplication);
    void publishForeign(const Copy &copy);
    [[nodiscard]] std::vector<PasteboardItem> fetched(const Copy &copy) const;

    qint64 count;
    std::shared_ptr<const PasteboardSnapshot> published;
    PasteboardPolicy policy_;
    std::optional<Copy> pending; // copied, not read through
    Copy foreign;                // what the other program holds, all of it
    bool ownerIsForeign = true;
    bool isReading = false;
    std::vector<std::function<void()>> settledCallbacks;
    std::optional<FrontApplication> frontApplication;
    QSet<QString> refusedTypes;
    bool ownerHung = false;
    bool claimRefused = false;
    QObject context; // drops what is queued when this dies
};
