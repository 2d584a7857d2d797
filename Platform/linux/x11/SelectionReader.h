#pragma once

#include "Platform/linux/x11/CopiedItems.h"
#include "Platform/linux/x11/IncomingTransfer.h"
#include "Platform/linux/x11/ServedContent.h"

#include <optional>

// One read of a selection's present content: the list of its targets, then one target at a time in value
// order. Never waits: events and the clock move it. What is complete when it is stopped is kept.
class SelectionReader {
public:
    enum class Scope {
        everything,
        list, // which types there are, without their bytes
        text, // the plain text, hidden or not
    };

    struct Options {
        xcb_atom_t selection = XCB_ATOM_NONE;
        xcb_timestamp_t time = XCB_CURRENT_TIME; // of the read, another one for each
        Scope scope = Scope::everything;
        qint64 byteBudget = 0;
        bool pictures = true; // off: none, where there is no text
        bool files = true;    // off: of a files copy its list of addresses only
        Clock::duration limit{};
    };

    SelectionReader(PasteboardConnection &connection, PropertyRing &propertyRing, const Options &options,
                    TimePoint now);

    // True when the event was this read's.
    bool handleAnswer(const xcb_selection_notify_event_t &event, TimePoint now);
    bool handleProperty(const xcb_property_notify_event_t &event, TimePoint now);
    void advance(TimePoint now);

    // Ends the read at once: its owner is gone.
    void stop();
    // Asks for nothing more and gives the answer that is under way until `limit`: the owner has let go.
    void finishBy(TimePoint limit);
    // Goes on as it is, until `limit` at most.
    void hurry(TimePoint limit) { end = std::min(end, limit); }
    // Asks again, once finished, for what stayed unanswered; only for these targets, unless there are none.
    void resume(xcb_timestamp_t time, std::vector<QByteArray> targets, TimePoint limit, TimePoint now);

    [[nodiscard]] bool isFinished() const { return finished; }
    [[nodiscard]] TimePoint deadline() const;

    // Whether the owner told what it has; false for one that hangs.
    [[nodiscard]] bool wasAnswered() const { return answered; }
    [[nodiscard]] std::vector<PasteboardItem> items() const { return itemsFrom(plan, outcomes); }
    // The same as the owner gave it, for those who take it over from us.
    [[nodiscard]] std::vector<ServedTarget> originals() const;

    // Whether `resume` may bring more.
    [[nodiscard]] bool isIncomplete() const;
    // Whether the content may be kept when its owner is gone: something was read, it is no secret and not
    // made to pass, and the user's rules did not keep the thing itself from being read.
    [[nodiscard]] bool mayOutliveOwner() const;
    // Whether an owner that let go at this time did so because we read its list of files to be moved. Another
    // program could then no longer move them.
    [[nodiscard]] bool wasLetGoByReading(TimePoint letGoAt) const;

private:
    void ask(const QByteArray &target, qint64 maxBytes, Clock::duration patience, TimePoint now);
    void proceed(TimePoint now);
    void takeTargets(TimePoint now);
    void takeCandidate(TimePoint now);
    void askNext(TimePoint now);
    [[nodiscard]] bool isWanted(const ReadRequest &request) const;
    [[nodiscard]] bool isPictureLess() const;
    [[nodiscard]] bool isStillWanted() const;
    [[nodiscard]] bool accept(const ReadRequest &request, ReadOutcome &outcome, TimePoint now);
    void keepOriginal(ReadOutcome &outcome, const QByteArray &bytes);

    PasteboardConnection &x;
    PropertyRing &ring;
    Options options;
    TimePoint end;
    bool letGo = false;
    bool finished = false;
    bool answered = false;

    ReadPlan plan;
    std::vector<ReadOutcome> outcomes; // one a request of the plan
    size_t request = 0;
    std::vector<QByteArray> onlyTargets; // of a resumed read
    qint64 kept = 0;
    TimePoint askedAt;

    struct CutRead {
        TimePoint asked, answered;
    };
    std::optional<CutRead> cut;

    bool filesFound = false;
    bool textFound = false;
    std::unique_ptr<IncomingTransfer>
        transfer; // of the targets' list while there is no answer, else of a candidate
};
