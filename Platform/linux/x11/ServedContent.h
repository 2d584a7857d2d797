#pragma once

#include "Platform/Pasteboard.h"

#include <QByteArray>
#include <vector>

// What is served to other programs of a content of ours. Pure.

// One target with the bytes behind it. `type` is the target that the answer names as its kind.
struct ServedTarget {
    QByteArray target;
    QByteArray type;
    QByteArray bytes;    // shared with the item, but for rebuilt lists and joined texts
    bool latin1 = false; // the bytes are UTF-8 and go out in Latin-1
    quint8 format = 8;   // bits of one unit: 8, 16 or 32

    void convert(); // makes the bytes what goes out
};

// Every target of these items: the stored forms in their order under the targets they came from, and the ones
// that are rebuilt from a text or from file addresses. Texts of several items are joined by LF; any other
// type comes from the first item that has it. Files are to be copied.
//
// `originals` are what a program that is gone had given for these items: they go out as it would have sent
// them, in place of what the items would be turned into, and files that it had cut are to be moved.
[[nodiscard]] std::vector<ServedTarget> servedTargets(const std::vector<PasteboardItem> &items,
                                                      const std::vector<ServedTarget> &originals = {});

// The targets of the text alone.
[[nodiscard]] std::vector<ServedTarget> servedTexts(const std::vector<PasteboardItem> &items);

// The plain text of several items, joined by LF; absent when none has any.
[[nodiscard]] std::optional<QByteArray> joinedText(const std::vector<PasteboardItem> &items);
