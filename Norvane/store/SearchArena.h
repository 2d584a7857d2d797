#pragma once

#include "Norvane/store/FoldingWorker.h"

#include <QByteArray>
#include <functional>
#include <vector>

// The search keys of all clips in a few large buffers, so that a search is one run over memory. Main thread.
//
// Every key belongs to a record, a number that the owner gives. Keys move when buffers with much garbage are
// packed.
class SearchArena {
public:
    struct Place {
        quint32 segment = 0;
        quint32 start = 0;
        quint32 length = 0;
    };

    // Called with the new place of a key, when it is added and whenever it moves.
    explicit SearchArena(std::function<void(quint32 record, Place place)> onPlace)
        : placed(std::move(onPlace))
    {
    }

    // Adds those keys of a block that `wanted` says are still good.
    void add(FoldedKeys block, const std::function<bool(const FoldedKeys::Key &)> &wanted);
    void discard(Place place);

    [[nodiscard]] QByteArrayView key(Place place) const;

    // Calls back with every record whose key contains the word.
    void search(QByteArrayView word, const std::function<void(quint32 record)> &found) const;

    // Bytes held, garbage included.
    [[nodiscard]] qsizetype size() const;

private:
    struct Entry {
        quint32 start = 0;
        quint32 record = 0;
    };
    struct Segment {
        QByteArray bytes;
        std::vector<Entry> entries; // by start
        qsizetype garbage = 0;
    };

    void append(quint32 record, QByteArrayView key);
    void adopt(FoldedKeys block);
    [[nodiscard]] size_t emptySegment();
    void packIfWasteful(size_t segment);

    std::function<void(quint32, Place)> placed;
    std::vector<Segment> segments;
    std::optional<size_t> open; // takes single keys until it is large
};
