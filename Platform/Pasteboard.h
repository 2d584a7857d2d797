#pragma once

#include "Platform/FrontApplication.h"

#include <QByteArray>
#include <QStringList>
#include <functional>
#include <memory>
#include <vector>

// Names of the pasteboard types that have a fixed meaning. Any other type keeps the name its owner gave it.
namespace PasteboardType {
inline constexpr char16_t plainText[] = u"public.utf8-plain-text";
inline constexpr char16_t rtf[] = u"public.rtf";
inline constexpr char16_t html[] = u"public.html";
inline constexpr char16_t png[] = u"public.png";
inline constexpr char16_t tiff[] = u"public.tiff";
inline constexpr char16_t jpeg[] = u"public.jpeg";
inline constexpr char16_t heic[] = u"public.heic";
inline constexpr char16_t gif[] = u"com.compuserve.gif";
inline constexpr char16_t fileURL[] = u"public.file-url";
inline constexpr char16_t concealed[] = u"org.nspasteboard.ConcealedType";
} // namespace PasteboardType

// One form of one item. `data` is absent when the form was offered but its bytes were not fetched (the policy
// forbade it, it did not fit the budget, its owner refused or died); empty bytes are a form that is empty.
struct PasteboardRepresentation {
    QString type;
    std::optional<QByteArray> data;

    bool operator==(const PasteboardRepresentation &) const = default;
};

// One copied thing with its forms in the order its owner offered them. Files are one item each, with a
// fileURL.
struct PasteboardItem {
    std::vector<PasteboardRepresentation> representations;

    // The bytes of the first representation of this type that has any.
    [[nodiscard]] std::optional<QByteArray> data(QStringView type) const;

    bool operator==(const PasteboardItem &) const = default;
};

// What the pasteboard held after one change; immutable once published.
struct PasteboardSnapshot {
    qint64 changeCount = 0;
    std::vector<PasteboardItem> items;                // none after a clear
    std::optional<FrontApplication> frontApplication; // in front when the owner changed
};

// Which bytes are fetched from other programs. It never decides which types are listed.
struct PasteboardPolicy {
    bool paused = false;                // nothing is fetched, the count moves all the same
    qint64 byteBudget = 32LL * 1048576; // of one change, all items together
    bool images = true;                 // off: no pictures, where there is no text beside them
    bool files = true;                  // off: of a files copy only the list of addresses
    QStringList ignoredApplications;    // bundle identifiers: nothing is fetched while one is in front

    bool operator==(const PasteboardPolicy &) const = default;
};

// The general pasteboard: what the user copied last, in memory, with a counter of changes. Main thread.
//
// No operation waits for another program. Foreign content is read in the background as soon as it is copied
// and published with its count when the read is complete; the count that was there at start is 0 or more and
// moves with the first change.
class Pasteboard {
public:
    virtual ~Pasteboard() = default;

    // Grows by one with every published change, our own writes included.
    [[nodiscard]] virtual qint64 changeCount() const = 0;

    // Never null.
    [[nodiscard]] virtual std::shared_ptr<const PasteboardSnapshot> snapshot() const = 0;

    // Replaces the contents (clear and write are one change) and returns the new change count. The snapshot
    // is replaced before this returns; representations without data are left out.
    virtual qint64 write(std::vector<PasteboardItem> items) = 0;

    virtual void setPolicy(const PasteboardPolicy &policy) = 0;

    // Calls back on the main thread when no foreign content is being read: before this returns if none is.
    // Bounded by the read's own time limits (5 s).
    virtual void whenSettled(std::function<void()> callback) = 0;

    // The plain text that is on the pasteboard now, for a paste into our own fields: fetched from its owner
    // even where the policy kept it out of the snapshot. Calls back once within 1 s, with an empty text if
    // there is none.
    virtual void readText(std::function<void(const QString &)> callback) = 0;
};
