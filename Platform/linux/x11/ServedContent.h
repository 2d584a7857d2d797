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

    [[nodiscard]] QByteArray answer() const;
};

// Every target of these items: the stored forms in their order under the targets they came from, and the ones
// that are rebuilt from a text or from file addresses. Texts of several items are joined by LF; any other
// type comes from the first item that has it.
[[nodiscard]] std::vector<ServedTarget> servedTargets(const std::vector<PasteboardItem> &items);

// The targets of the text alone.
[[nodiscard]] std::vector<ServedTarget> servedTexts(const std::vector<PasteboardItem> &items);

// The plain text of several items, joined by LF; absent when none has any.
[[nodiscard]] std::optional<QByteArray> joinedText(const std::vector<PasteboardItem> &items);
