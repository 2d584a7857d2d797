#include "Norvane/store/ClipSearch.h"

#include "Norvane/store/ClipStore.h"
#include "Norvane/store/SearchArena.h"
#include "Vesmo/ByteSearch.h"
#include "Vesmo/Localisation.h"
#include "Vesmo/Text.h"

#include <algorithm>
#include <limits>
#include <numeric>
#include <unordered_map>

namespace {

// One word of a query, with what is asked of every clip worked out once.
struct Term {
    QString word;
    QString lower;
    QByteArray key;           // empty for a word of joiners and marks alone, which is searched as it stands
    bool findsImages = false; // it begins the name of images
    int effort = 0;           // the more clips are likely to match, the more

    explicit Term(const QString &text) : word(text), lower(text.toLower()), key(foldedKey(text))
    {
        effort = key.isEmpty() ? std::numeric_limits<int>::max() : commonness(key);
        findsImages = L("immagine").startsWith(lower) || QStringLiteral("immagine").startsWith(lower);
    }

    // What matches this word matches the older one too.
    [[nodiscard]] bool narrows(const Term &older) const
    {
        return word == older.word ||
               (!older.key.isEmpty() && key.startsWith(older.key) && lower.startsWith(older.lower));
    }
};

const QString &searchedText(const Clip &clip)
{
    static const QString none;
    if (clip.kind != ClipKind::image)
        return clip.text;
    return clip.recognizedText ? *clip.recognizedText : none;
}

bool containsAsItStands(const Clip &clip, const QString &word)
{
    return searchedText(clip).contains(word) || (clip.appName && clip.appName->contains(word));
}

} // namespace

QString title(ClipFilter filter)
{
    switch (filter) {
    case ClipFilter::all:
        return L("Tutti");
    case ClipFilter::text:
        return L("Testo");
    case ClipFilter::images:
        return L("Immagini");
    case ClipFilter::files:
        return L("File##files");
    case ClipFilter::pinned:
        return L("Fissati");
    }
    return {};
}

bool passes(ClipFilter filter, const Clip &clip)
{
    switch (filter) {
    case ClipFilter::all:
        return true;
    case ClipFilter::text:
        return clip.kind == ClipKind::text || clip.kind == ClipKind::richText;
    case ClipFilter::images:
        return clip.kind == ClipKind::image;
    case ClipFilter::files:
        return clip.kind == ClipKind::files;
    case ClipFilter::pinned:
        return clip.pinned;
    }
    return false;
}

QStringList queryWords(const QString &query)
{
    QStringList words;
    qsizetype start = 0;
    for (qsizetype i = 0; i <= query.size(); ++i) {
        if (i < query.size() && !query[i].isSpace())
            continue;
        if (i > start)
            words.append(query.mid(start, i - start));
        start = i + 1;
    }
    return words;
}

bool matches(const Clip &clip, const QStringList &words)
{
    if (words.isEmpty())
        return true;
    const QByteArray text = foldedKey(searchedText(clip));
    const QByteArray appName = foldedKey(clip.appName.value_or(QString()));
    return std::all_of(words.begin(), words.end(), [&](const QString &word) {
        const Term term(word);
        if (term.findsImages && clip.kind == ClipKind::image)
            return true;
        if (term.key.isEmpty())
            return containsAsItStands(clip, word);
        return indexOfKey(text, term.key) >= 0 || indexOfKey(appName, term.key) >= 0;
    });
}

struct ClipSearch::Private {
    // A clip of the store and where its key is.
    struct Record {
        ClipPointer clip; // null: unused
        qint64 revision = 0;
        quint64 serial = 0;
        std::optional<SearchArena::Place> place; // absent while there is no key
    };

    // The last answer, for the next one to begin with.
    struct Answer {
        ClipFilter filter = ClipFilter::all;
        std::vector<Term> terms;
        std::vector<quint32> positions; // in the store's list
    };

    explicit Private(ClipStore &searched)
        : store(searched),
          arena([this](quint32 record, SearchArena::Place place) { records[record].place = place; }),
          worker([this] { takeKeys(); })
    {
    }

    void followStore();
    void prepareKeys();
    void takeKeys();
    void foldMissing(const std::vector<quint32> &positions);
    void keepMatches(std::vector<quint32> &positions, const Term &term);
    [[nodiscard]] std::vector<quint32> passingPositions(ClipFilter filter) const;
    [[nodiscard]] std::vector<quint32> matchingPositions(ClipFilter filter, const std::vector<Term> &terms);
    [[nodiscard]] bool narrowsLast(ClipFilter filter, const std::vector<Term> &terms) const;
    [[nodiscard]] bool contains(const Record &record, const Term &term) const;

    [[nodiscard]] quint32 newRecord(const ClipPointer &clip);
    void retire(quint32 record);
    void dropKey(Record &record);
    [[nodiscard]] FoldingJob job(quint32 record) const;
    [[nodiscard]] bool isAwaited(const FoldedKeys::Key &key) const;

    ClipStore &store;
    std::optional<quint64> followed; // the store's change count that all below stands for
    std::vector<Record> records;
    std::vector<quint32> unused;
    std::unordered_map<const Clip *, quint32> recordOf;
    std::vector<quint32> order; // records, as the store's list
    quint64 lastSerial = 0;
    std::optional<Answer> last;
    std::vector<quint64> hits; // by record: the search that found it last
    quint64 searches = 0;
    bool preparing = false;
    SearchArena arena;
    FoldingWorker worker;
};

ClipSearch::ClipSearch(ClipStore &store) : d(std::make_unique<Private>(store))
{
    d->prepareKeys();
    connect(&store, &ClipStore::ClipStoreDidChange, this, [this] {
        if (std::exchange(d->preparing, true))
            return;
        QMetaObject::invokeMethod(
            this,
            [this] {
                d->preparing = false;
                d->prepareKeys();
            },
            Qt::QueuedConnection);
    });
}

ClipSearch::~ClipSearch() = default;

ClipList ClipSearch::results(ClipFilter filter, const QString &query)
{
    d->followStore();
    std::vector<Term> terms;
    for (const QString &word : queryWords(query))
        terms.emplace_back(word);
    auto positions = d->matchingPositions(filter, terms);
    ClipList found;
    found.reserve(positions.size());
    for (const quint32 position : positions)
        found.push_back(d->store.clips()[position]);
    d->last = Private::Answer{filter, std::move(terms), std::move(positions)};
    return found;
}

// Changes are mostly at the front of the list: what follows is compared and kept.
void ClipSearch::Private::followStore()
{
    if (followed == store.changeCount())
        return;
    const ClipList &clips = store.clips();
    const auto same = [this](quint32 record, const ClipPointer &clip) {
        return records[record].clip == clip;
    };
    const auto [oldEnd, newEnd] =
        std::mismatch(order.rbegin(), order.rend(), clips.rbegin(), clips.rend(), same);
    std::vector<quint32> gone(oldEnd, order.rend());
    std::vector<quint32> front;
    for (auto clip = clips.begin(); clip != newEnd.base(); ++clip) {
        const auto known = recordOf.find(clip->get());
        front.push_back(known != recordOf.end() ? known->second : newRecord(*clip));
    }
    std::sort(gone.begin(), gone.end());
    auto kept = front;
    std::sort(kept.begin(), kept.end());
    std::vector<quint32> retired;
    std::set_difference(gone.begin(), gone.end(), kept.begin(), kept.end(), std::back_inserter(retired));
    order.erase(order.begin(), oldEnd.base());
    order.insert(order.begin(), front.begin(), front.end());
    for (const quint32 record : retired)
        retire(record);
    for (const quint32 index : order) {
        Record &record = records[index];
        if (record.revision == record.clip->revision)
            continue;
        record.revision = record.clip->revision;
        dropKey(record);
    }
    hits.resize(records.size());
    last.reset();
    followed = store.changeCount();
}

void ClipSearch::Private::prepareKeys()
{
    followStore();
    takeKeys();
    worker.withdraw();
    std::vector<FoldingJob> jobs;
    for (const quint32 record : order) {
        if (!records[record].place)
            jobs.push_back(job(record));
    }
    worker.submit(std::move(jobs));
}

void ClipSearch::Private::takeKeys()
{
    for (auto &block : worker.takeFinished())
        arena.add(std::move(block), [this](const FoldedKeys::Key &key) { return isAwaited(key); });
}

// The worker makes keys from the front of the list meanwhile, this from its end: each spares the other half.
void ClipSearch::Private::foldMissing(const std::vector<quint32> &positions)
{
    constexpr qsizetype blockLength = 1 << 20;
    const auto isWanted = [this](const FoldedKeys::Key &key) { return isAwaited(key); };
    FoldedKeys block;
    bool folded = false;
    for (auto position = positions.rbegin(); position != positions.rend(); ++position) {
        if (records[order[*position]].place)
            continue;
        folded = true;
        appendKey(block, job(order[*position]));
        if (block.bytes.size() < blockLength)
            continue;
        arena.add(std::exchange(block, {}), isWanted);
        takeKeys();
    }
    arena.add(std::move(block), isWanted);
    if (folded)
        prepareKeys(); // takes back from the worker what is done now
}

std::vector<quint32> ClipSearch::Private::matchingPositions(ClipFilter filter, const std::vector<Term> &terms)
{
    std::vector<quint32> positions;
    const bool narrowing = last && narrowsLast(filter, terms);
    if (narrowing) {
        positions = std::move(last->positions);
    } else {
        positions = passingPositions(filter);
    }
    if (terms.empty())
        return positions;
    takeKeys();
    foldMissing(positions);
    std::vector<const Term *> unanswered;
    for (size_t i = 0; i < terms.size(); ++i) {
        const bool answered = narrowing && i < last->terms.size() && last->terms[i].word == terms[i].word;
        if (!answered)
            unanswered.push_back(&terms[i]);
    }
    // The likely rarest first: the others are then looked for in what it leaves.
    std::ranges::stable_sort(unanswered, {}, &Term::effort);
    for (const Term *term : unanswered)
        keepMatches(positions, *term);
    return positions;
}

std::vector<quint32> ClipSearch::Private::passingPositions(ClipFilter filter) const
{
    std::vector<quint32> positions(order.size());
    std::iota(positions.begin(), positions.end(), 0U);
    if (filter != ClipFilter::all)
        std::erase_if(positions,
                      [&](quint32 position) { return !passes(filter, *records[order[position]].clip); });
    return positions;
}

bool ClipSearch::Private::narrowsLast(ClipFilter filter, const std::vector<Term> &terms) const
{
    return last->filter == filter && !last->terms.empty() && terms.size() >= last->terms.size() &&
           std::equal(last->terms.begin(), last->terms.end(), terms.begin(),
                      [](const Term &older, const Term &newer) { return newer.narrows(older); });
}

void ClipSearch::Private::keepMatches(std::vector<quint32> &positions, const Term &term)
{
    const auto keepIf = [&](const auto &predicate) {
        std::erase_if(positions, [&](quint32 position) {
            const Record &record = records[order[position]];
            const bool named = term.findsImages && record.clip->kind == ClipKind::image;
            return !named && !predicate(order[position], record);
        });
    };
    // One run over everything costs less than many short ones.
    const bool nearlyAll = positions.size() > order.size() / 2;
    if (term.key.isEmpty() || !nearlyAll) {
        keepIf([&](quint32, const Record &record) { return contains(record, term); });
        return;
    }
    const quint64 search = ++searches;
    arena.search(term.key, [&](quint32 record) { hits[record] = search; });
    keepIf([&](quint32 index, const Record &) { return hits[index] == search; });
}

bool ClipSearch::Private::contains(const Record &record, const Term &term) const
{
    if (term.key.isEmpty())
        return containsAsItStands(*record.clip, term.word);
    return indexOfKey(arena.key(*record.place), term.key) >= 0;
}

quint32 ClipSearch::Private::newRecord(const ClipPointer &clip)
{
    quint32 index = static_cast<quint32>(records.size());
    if (unused.empty()) {
        records.emplace_back();
    } else {
        index = unused.back();
        unused.pop_back();
    }
    records[index] = {clip, clip->revision, ++lastSerial, std::nullopt};
    recordOf[clip.get()] = index;
    return index;
}

void ClipSearch::Private::retire(quint32 index)
{
    dropKey(records[index]);
    recordOf.erase(records[index].clip.get());
    records[index].clip.reset();
    unused.push_back(index);
}

// A key that is still being made for the old state comes with the old serial.
void ClipSearch::Private::dropKey(Record &record)
{
    record.serial = ++lastSerial;
    if (const auto place = std::exchange(record.place, std::nullopt))
        arena.discard(*place);
}

FoldingJob ClipSearch::Private::job(quint32 record) const
{
    const Clip &clip = *records[record].clip;
    return {record, records[record].serial, searchedText(clip), clip.appName.value_or(QString())};
}

bool ClipSearch::Private::isAwaited(const FoldedKeys::Key &key) const
{
    const Record &record = records[key.record];
    return record.clip && record.serial == key.serial && !record.place;
}
