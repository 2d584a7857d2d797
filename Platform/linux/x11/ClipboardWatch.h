#pragma once

#include "Platform/Pasteboard.h"
#include "Platform/linux/x11/FrontWindow.h"
#include "Platform/linux/x11/ManagerRole.h"
#include "Platform/linux/x11/PictureConversion.h"
#include "Platform/linux/x11/PropertyRing.h"
#include "Platform/linux/x11/SaveRequests.h"
#include "Platform/linux/x11/SelectionReader.h"
#include "Platform/linux/x11/TargetTypes.h"
#include "Platform/linux/x11/TextFetch.h"

#include <functional>
#include <xcb/xfixes.h>

// Content of another program, ready to be published.
struct ForeignCopy {
    qint64 changes =
        0; // how many since the last one: 0 for what was there at start, and for more of the same
    qint64 writesSeen = 0; // our own writes that came before it
    std::vector<PasteboardItem> items;
    std::optional<FrontApplication> frontApplication;
};

// Follows what other programs do with the clipboard: counts, reads what they copy, says when it is read, and
// takes it over when they go. Lives on the clipboard's thread, and never waits for another program.
class ClipboardWatch {
public:
    struct Callbacks {
        std::function<void(ForeignCopy)> publish; // on the clipboard's thread
        ManagerRole::Serve serve;                 // the same
        std::function<void()> wake;               // on any, when there is something to advance
    };
    ClipboardWatch(PasteboardConnection &connection, std::shared_ptr<const DesktopEntries> entries,
                   Callbacks callbacks);

    void setPolicy(const PasteboardPolicy &wanted) { policy = wanted; }

    // Reads what is there already, which counts as no change, and offers to keep what others leave behind.
    void begin();

    void handleOwnerChange(const xcb_xfixes_selection_notify_event_t &event, uint32_t sequence,
                           TimePoint now);
    void handleAnswer(const xcb_selection_notify_event_t &event, TimePoint now);
    void handleProperty(const xcb_property_notify_event_t &event, TimePoint now);
    void handleActiveWindow() { front.noticeChange(); }

    // What was claimed for our own write number `write`. What others did before is forgotten; where another
    // was faster, its content follows as a new change.
    void noticeClaim(const PasteboardConnection::Claim &claim, qint64 write);

    // A program wants its content to outlive it, or only these targets of it. Answered within 2 s: at once
    // when all was read, else when what is missing is.
    void save(xcb_window_t requestor, const std::vector<QByteArray> &targets, SaveRequests::Answer answer,
              TimePoint now);

    // Another program was given this target of the clipboard, which is ours.
    void noticeServed(xcb_atom_t target, TimePoint now);

    // Of the targets that were read since the start.
    [[nodiscard]] const TargetTypes &knownTypes() const { return types; }

    // The plain text of the owner of now, hidden or not; nullopt when the last published content answers it.
    // `limit` is when the answer must be there.
    void readText(TextFetch::Callback callback, TimePoint limit);

    // Calls back when nothing is being read: at once when nothing is.
    void whenIdle(std::function<void()> callback);

    // Starts, moves and ends what is due.
    void advance(TimePoint now);
    [[nodiscard]] TimePoint deadline() const;

private:
    void noticeDeath(TimePoint now);
    void noticeLetGo(TimePoint now);
    void takeOver();
    void serveKept();

    void startRead(TimePoint now);
    void finishRead(TimePoint now);
    void finishReencoding(TimePoint now);
    void noticeHungOwner(TimePoint now);
    void publishItems(std::vector<PasteboardItem> items);
    void forgetForeign();
    void advanceTexts(TimePoint now);
    [[nodiscard]] bool isReading() const { return wantsRead || reader || reencoding; }
    [[nodiscard]] bool isIdle() const { return !isReading() && !clearDue && !keepDue; }
    xcb_timestamp_t nextReadTime();
    [[nodiscard]] SelectionReader::Options optionsFor(SelectionReader::Scope scope, Clock::duration limit);

    PasteboardConnection &x;
    PropertyRing ring;
    FrontWindow front;
    Callbacks call;
    ManagerRole role;
    SaveRequests saves;
    TargetTypes types;
    PasteboardPolicy policy;

    xcb_window_t owner = XCB_WINDOW_NONE;  // of the clipboard, as far as the events tell
    std::optional<uint32_t> claimSequence; // what was sent before our last claim no longer counts
    qint64 writesSeen = 0;
    qint64 changes = 0; // not yet published
    bool wantsRead = false;
    std::unique_ptr<SelectionReader> reader;
    std::optional<FrontApplication> frontApplication; // of the change that is being read
    std::optional<TimePoint> clearDue;
    std::optional<TimePoint> letGoAt;  // by another program, on purpose
    std::optional<TimePoint> retryDue; // the owner hangs
    bool retrying = false;
    qint64 retryChanges = 0;
    xcb_timestamp_t lastReadTime = 0;

    // What the owner gave, for when it goes; of ours too, once taken over.
    std::unique_ptr<SelectionReader> lastRead;
    std::vector<PasteboardItem> lastItems; // the same as published
    std::optional<TimePoint> keepDue;
    std::optional<PasteboardConnection::Claim> keptClaim;
    std::optional<TimePoint> cutKeptAt; // what it has was cut, and is to be moved once

    // A copy whose picture is on its way to PNG.
    struct Reencoding {
        quint64 number = 0;
        std::vector<PasteboardItem> items;
        TimePoint due;
    };
    std::optional<Reencoding> reencoding;
    PictureWorker pictures;

    bool textWithheld = false; // the owner may have text that was not published
    TextFetch texts;
    std::vector<std::function<void()>> idleCallbacks;
};
