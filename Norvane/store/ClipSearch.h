#pragma once

#include "Norvane/store/Clip.h"

#include <QObject>
#include <QStringList>

enum class ClipFilter : int { all = 0, text = 1, images = 2, files = 3, pinned = 4 };
inline constexpr int clipFilterCount = 5;

[[nodiscard]] QString title(ClipFilter filter);
[[nodiscard]] bool passes(ClipFilter filter, const Clip &clip);

// The query cut at white space, empty pieces dropped.
[[nodiscard]] QStringList queryWords(const QString &query);

// Every word is in the clip's text or application name, case and diacritics aside; a word that begins
// "immagine" finds every image. True for no words.
[[nodiscard]] bool matches(const Clip &clip, const QStringList &words);

// Searches a store's clips fast: the answers of passes() and matches(), from keys made ahead of the query on
// a worker. Main thread. A clip whose key is not ready is folded on the spot, so a result is never
// incomplete.
class ClipSearch : public QObject {
    Q_OBJECT

public:
    explicit ClipSearch(ClipStore &store);
    ~ClipSearch() override;

    // The clips that pass the filter and match the query, in store order.
    [[nodiscard]] ClipList results(ClipFilter filter, const QString &query);

private:
    struct Private;
    std::unique_ptr<Private> d;
};
