#pragma once

#include "Platform/linux/x11/PasteboardConnection.h"
#include "Platform/linux/x11/ServedContent.h"

#include <map>

// Answers the programs that want what is ours: at once up to 256 KiB, in chunks above. Never waits for any of
// them: one that stalls for 30 s or dies is forgotten. Content is shared with the transfers, so that what
// began goes on after another program has become the owner.
class SelectionServer {
public:
    explicit SelectionServer(PasteboardConnection &connection);

    // Makes these targets the content of a selection that was claimed at this time.
    void offer(xcb_atom_t selection, const PasteboardConnection::Claim &claim,
               const std::vector<ServedTarget> &targets);
    void withdraw(xcb_atom_t selection);
    [[nodiscard]] bool offers(xcb_atom_t selection) const { return offers_.contains(selection); }

    // The targets whose content it gave: none when it was refused, several where several were asked for at
    // once.
    std::vector<xcb_atom_t> handleRequest(const xcb_selection_request_event_t &request, TimePoint now);
    // Tells a program that wanted its content saved whether it is.
    void answerSave(const xcb_selection_request_event_t &request, bool kept);
    // Another program took a selection.
    void handleClear(const xcb_generic_event_t &event);
    void handleProperty(const xcb_property_notify_event_t &event, TimePoint now);
    // A requestor's window is gone.
    void forget(xcb_window_t requestor);

    void advance(TimePoint now);
    // Of the transfer that stalls first; the end of time when there is none.
    [[nodiscard]] TimePoint deadline() const;
    [[nodiscard]] size_t transferCount() const { return transfers.size(); }

private:
    struct Form {
        xcb_atom_t target = XCB_ATOM_NONE;
        xcb_atom_t type = XCB_ATOM_NONE;
        ServedTarget content;
    };
    struct Offer {
        xcb_timestamp_t time = 0;
        uint32_t sequence = 0;
        std::vector<Form> forms;
    };
    // What goes out to one property of one window.
    struct Transfer {
        xcb_atom_t type = XCB_ATOM_NONE;
        uint8_t format = 8;
        QByteArray bytes;
        qsizetype sent = 0;
        TimePoint due;
    };
    using Key = std::pair<xcb_window_t, xcb_atom_t>;

    // Both add to the targets given.
    [[nodiscard]] bool answer(Offer &offer, const xcb_selection_request_event_t &request, xcb_atom_t property,
                              TimePoint now, std::vector<xcb_atom_t> &given);
    [[nodiscard]] bool answerMultiple(Offer &offer, const xcb_selection_request_event_t &request,
                                      xcb_atom_t property, TimePoint now, std::vector<xcb_atom_t> &given);
    [[nodiscard]] bool send(const Key &key, xcb_atom_t type, uint8_t format, const QByteArray &bytes,
                            TimePoint now);
    void makeRoom(xcb_window_t requestor);
    void notify(const xcb_selection_request_event_t &request, xcb_atom_t property);
    void write(const Key &key, xcb_atom_t type, uint8_t format, QByteArrayView bytes);
    [[nodiscard]] std::vector<quint32> listOf(const Offer &offer) const;
    void watch(xcb_window_t requestor, bool on);
    void end(const Key &key);

    PasteboardConnection &x;
    std::map<xcb_atom_t, Offer> offers_;
    std::map<Key, Transfer> transfers;
};
