#pragma once

#include "Platform/Pasteboard.h"
#include "Platform/linux/x11/TypeTable.h"

// From what was read of an owner to pasteboard items. Pure.

// What became of one request of a plan.
struct ReadOutcome {
    enum class Status {
        notFetched, // not asked for yet, unanswered, or its owner died
        withheld,   // forbidden by the user's rules, or too large for them
        refused,    // by every candidate: counts as not offered
        fetched,
    };

    Status status = Status::notFetched;
    size_t candidate = 0; // the one that was fetched, or would be
    QByteArray bytes;
    // As its owner gave it: text before it was decoded, and what the answer said of itself.
    QByteArray original = {};
    QByteArray type = {}; // empty: the target's name
    quint8 format = 8;
};

// Texts become UTF-8 whatever their character set; other bytes stay as they are. Absent when a text cannot be
// decoded.
[[nodiscard]] std::optional<QByteArray> storedBytes(const ReadRequest &request,
                                                    const ReadCandidate &candidate, const QByteArray &bytes);

// The items of a copy, their forms in the owner's order: one item, or one a file; none where an empty text is
// all that was copied, which is a clear. `outcomes` stand in the order of the plan's requests.
[[nodiscard]] std::vector<PasteboardItem> itemsFrom(const ReadPlan &plan,
                                                    const std::vector<ReadOutcome> &outcomes);

// Whether a copy has text that is more than white space.
[[nodiscard]] bool hasText(const std::vector<PasteboardItem> &items);

// The picture that has to be re-encoded, so that a copied picture always comes in a known encoding: there is
// no text and none of the known encodings.
[[nodiscard]] std::optional<QByteArray> pictureToReencode(const std::vector<PasteboardItem> &items);
