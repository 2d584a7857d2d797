#pragma once

#include "Platform/linux/x11/GatheredBytes.h"
#include "Platform/linux/x11/PasteboardConnection.h"
#include "Platform/linux/x11/PropertyRing.h"

// One conversion asked of a selection's owner: the request, the answer, the chunks of a long one. Never
// waits: events and the clock move it. Given up when destroyed unfinished.
class IncomingTransfer {
public:
    struct Question {
        xcb_atom_t selection = XCB_ATOM_NONE;
        xcb_atom_t target = XCB_ATOM_NONE;
        xcb_timestamp_t time = XCB_CURRENT_TIME; // tells the answers of one read from those of another
        qint64 maxBytes = 0;                     // more is not kept
        Clock::duration patience{};              // until the first answer
    };

    enum class State {
        pending,
        complete, // `bytes` holds the whole content
        refused,
        tooLarge,   // was taken to its end without being kept
        unanswered, // the owner hangs, or stopped in the middle
        endless,    // went on far beyond what is worth draining
    };

    IncomingTransfer(PasteboardConnection &connection, PropertyRing &propertyRing, const Question &asked,
                     TimePoint now);
    ~IncomingTransfer();
    IncomingTransfer(const IncomingTransfer &) = delete;
    IncomingTransfer &operator=(const IncomingTransfer &) = delete;

    // True when the event was this conversion's.
    bool handleAnswer(const xcb_selection_notify_event_t &event, TimePoint now);
    bool handleProperty(const xcb_property_notify_event_t &event, TimePoint now);
    void advance(TimePoint now);

    [[nodiscard]] State state() const { return current; }
    [[nodiscard]] TimePoint deadline() const { return due; }
    // What the answer says of itself: its type, and how many bits one of its units has (8, 16 or 32).
    [[nodiscard]] xcb_atom_t type() const { return answerType; }
    [[nodiscard]] quint8 format() const { return answerFormat; }
    [[nodiscard]] xcb_atom_t target() const { return question.target; }
    [[nodiscard]] QByteArray takeBytes();

private:
    enum class Step { asked, receiving, draining };

    void takeAnswer(TimePoint now);
    void takeChunk(TimePoint now);
    void drainChunk(TimePoint now);
    void finish(State state, bool answered, TimePoint now);

    PasteboardConnection &x;
    PropertyRing &ring;
    Question question;
    xcb_atom_t property = XCB_ATOM_NONE;
    State current = State::pending;
    Step step = Step::asked;
    TimePoint due;
    xcb_atom_t answerType = XCB_ATOM_NONE;
    quint8 answerFormat = 8;
    GatheredBytes bytes;
    qint64 drained = 0;
};
