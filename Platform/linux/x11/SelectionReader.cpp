#include "Platform/linux/x11/SelectionReader.h"

#include "Platform/linux/x11/FileList.h"
#include "Platform/linux/x11/TextEncoding.h"
#include "Platform/linux/x11/WindowProperties.h"

#include <algorithm>
#include <cstring>

namespace {

using Kind = ReadRequest::Kind;
using Status = ReadOutcome::Status;
using State = IncomingTransfer::State;

// A healthy owner lists its targets within 2 ms; the slowest single conversion that was measured took 2.3 s.
constexpr std::chrono::milliseconds targetsPatience(500);
constexpr std::chrono::seconds targetPatience(2);
constexpr qint64 maxListBytes = 256LL * 1024;
constexpr size_t maxTargets = 1024;
constexpr std::chrono::milliseconds cutPatience(100); // pcmanfm lets go within 1 ms

} // namespace

SelectionReader::SelectionReader(PasteboardConnection &connection, PropertyRing &propertyRing,
                                 const Options &wanted, TimePoint now)
    : x(connection), ring(propertyRing), options(wanted), end(now + wanted.limit)
{
    ask("TARGETS", maxListBytes, targetsPatience, now);
}

bool SelectionReader::handleAnswer(const xcb_selection_notify_event_t &event, TimePoint now)
{
    if (finished || !transfer->handleAnswer(event, now))
        return false;
    proceed(now);
    return true;
}

bool SelectionReader::handleProperty(const xcb_property_notify_event_t &event, TimePoint now)
{
    if (finished || !transfer->handleProperty(event, now))
        return false;
    proceed(now);
    return true;
}

void SelectionReader::advance(TimePoint now)
{
    if (finished)
        return;
    transfer->advance(now);
    proceed(now);
    if (now >= end)
        stop();
}

void SelectionReader::stop()
{
    finished = true;
    transfer.reset();
}

void SelectionReader::finishBy(TimePoint limit)
{
    letGo = true;
    end = std::min(end, limit);
}

void SelectionReader::resume(xcb_timestamp_t time, std::vector<QByteArray> targets, TimePoint limit,
                             TimePoint now)
{
    options.time = time;
    onlyTargets = std::move(targets);
    end = limit;
    finished = letGo = false;
    request = 0;
    askNext(now);
}

TimePoint SelectionReader::deadline() const
{
    return transfer ? std::min(end, transfer->deadline()) : end;
}

void SelectionReader::ask(const QByteArray &target, qint64 maxBytes, Clock::duration patience, TimePoint now)
{
    transfer.reset();
    askedAt = now;
    transfer = std::make_unique<IncomingTransfer>(
        x, ring,
        IncomingTransfer::Question{options.selection, internAtom(x.raw(), target), options.time, maxBytes,
                                   patience},
        now);
}

void SelectionReader::proceed(TimePoint now)
{
    while (!finished && transfer->state() != State::pending) {
        if (!answered)
            takeTargets(now);
        else
            takeCandidate(now);
    }
}

// The owner's list becomes the plan. An owner that has no list is asked for text, as it always was.
void SelectionReader::takeTargets(TimePoint now)
{
    if (transfer->state() == State::unanswered || transfer->state() == State::endless) {
        stop();
        return;
    }
    answered = true;
    std::vector<QByteArray> targets = {"UTF8_STRING", "STRING"};
    const bool isList = transfer->state() == State::tooLarge || transfer->format() == 32;
    if (transfer->state() != State::refused && isList) {
        const QByteArray list = transfer->takeBytes();
        std::vector<xcb_atom_t> atoms(std::min(static_cast<size_t>(list.size()) / 4, maxTargets));
        if (!atoms.empty())
            std::memcpy(atoms.data(), list.constData(), atoms.size() * 4);
        targets = atomNames(x.raw(), atoms);
    }
    plan = planFor(targets);
    outcomes.resize(plan.requests.size());
    const bool concealed = plan.concealed && options.scope != Scope::text;
    if (options.scope != Scope::list && !concealed) {
        askNext(now);
        return;
    }
    textFound = plan.offers(Kind::text); // as far as the list tells
    for (size_t i = 0; i < outcomes.size(); ++i) {
        if (plan.requests[i].kind == Kind::picture && isPictureLess())
            outcomes[i].status = Status::refused;
    }
    stop();
}

void SelectionReader::takeCandidate(TimePoint now)
{
    const ReadRequest &asked = plan.requests[request];
    ReadOutcome &outcome = outcomes[request];
    const State state = transfer->state();
    if (state == State::endless) {
        stop();
        return;
    }
    const bool usable = state == State::complete && accept(asked, outcome, now);
    const bool refused = !usable && (state == State::refused || state == State::complete);
    if (refused && outcome.candidate + 1 < asked.candidates.size()) {
        ++outcome.candidate;
    } else {
        if (refused)
            outcome.status = Status::refused;
        else if (state == State::tooLarge)
            outcome.status = Status::withheld;
        ++request;
    }
    askNext(now);
}

// Whether the bytes are what was asked for; keeps them if so.
bool SelectionReader::accept(const ReadRequest &asked, ReadOutcome &outcome, TimePoint now)
{
    if (asked.kind == Kind::text && transfer->type() == x.atoms().compoundText)
        return false;
    const ReadCandidate &candidate = asked.candidates[outcome.candidate];
    const QByteArray original = transfer->takeBytes();
    auto bytes = storedBytes(asked, candidate, original);
    if (!bytes || (asked.isPicture() && bytes->isEmpty())) // a picture that its owner failed to render
        return false;
    if (kept + bytes->size() > options.byteBudget) { // re-encoded beyond the budget
        outcome.status = Status::withheld;
        return true;
    }
    kept += bytes->size();
    outcome.status = Status::fetched;
    outcome.bytes = std::move(*bytes);
    keepOriginal(outcome, original);
    if (asked.kind == Kind::copiedFiles && saysCut(candidate.target, outcome.bytes))
        cut = CutRead{askedAt, now};
    if (asked.kind == Kind::text)
        textFound = !isBlank(outcome.bytes);
    if (asked.kind == Kind::files) {
        const auto addresses = addressesOfUriList(outcome.bytes);
        filesFound = std::any_of(addresses.begin(), addresses.end(), isFileAddress);
    }
    return true;
}

// A text that was decoded is kept twice, where there is room for it.
void SelectionReader::keepOriginal(ReadOutcome &outcome, const QByteArray &bytes)
{
    if (!bytes.isSharedWith(outcome.bytes)) {
        if (kept + bytes.size() > options.byteBudget)
            return;
        kept += bytes.size();
    }
    outcome.original = bytes;
    outcome.format = transfer->format();
    if (transfer->type() != transfer->target()) {
        const xcb_atom_t type = transfer->type();
        outcome.type = atomNames(x.raw(), std::span(&type, 1)).front();
    }
}

void SelectionReader::askNext(TimePoint now)
{
    for (; request < plan.requests.size() && !letGo; ++request) {
        if (!isStillWanted())
            continue;
        const ReadRequest &next = plan.requests[request];
        if (next.kind == Kind::picture && isPictureLess())
            outcomes[request].status = Status::refused;
        else if (isWanted(next)) {
            const QByteArray &target = next.candidates[outcomes[request].candidate].target;
            ask(target, options.byteBudget - kept, targetPatience, now);
            return;
        } else if (next.kind != Kind::marker)
            outcomes[request].status = Status::withheld;
    }
    stop();
}

// Of a resumed read: whether this form is missing, and is one of those that matter now.
bool SelectionReader::isStillWanted() const
{
    if (outcomes[request].status != Status::notFetched)
        return false;
    const auto &candidates = plan.requests[request].candidates;
    return onlyTargets.empty() ||
           std::any_of(candidates.begin(), candidates.end(), [this](const ReadCandidate &each) {
               return std::find(onlyTargets.begin(), onlyTargets.end(), each.target) != onlyTargets.end();
           });
}

// Pictures beside styled text are previews that cost their owner seconds.
bool SelectionReader::isPictureLess() const
{
    return textFound && (plan.offers(Kind::html) || plan.offers(Kind::rtf));
}

bool SelectionReader::isWanted(const ReadRequest &asked) const
{
    if (asked.kind == Kind::marker)
        return false; // its name says everything
    if (options.scope == Scope::text)
        return asked.kind == Kind::text;
    if (asked.kind == Kind::files)
        return true;
    if (filesFound && !options.files)
        return false;
    return options.pictures || !asked.isPicture() || textFound;
}

std::vector<ServedTarget> SelectionReader::originals() const
{
    std::vector<ServedTarget> targets;
    for (size_t i = 0; i < outcomes.size(); ++i) {
        const ReadOutcome &outcome = outcomes[i];
        if (outcome.status != Status::fetched || (outcome.original.isEmpty() && !outcome.bytes.isEmpty()))
            continue;
        const QByteArray &target = plan.requests[i].candidates[outcome.candidate].target;
        targets.push_back({target, outcome.type.isEmpty() ? target : outcome.type, outcome.original, false,
                           outcome.format});
    }
    return targets;
}

bool SelectionReader::isIncomplete() const
{
    if (!answered || plan.concealed || options.scope != Scope::everything)
        return false;
    for (size_t i = 0; i < outcomes.size(); ++i) {
        if (outcomes[i].status == Status::notFetched && plan.requests[i].kind != Kind::marker)
            return true;
    }
    return false;
}

bool SelectionReader::mayOutliveOwner() const
{
    const bool secret = plan.concealed || plan.offers(Kind::marker);
    if (!answered || secret || options.scope != Scope::everything || (filesFound && !options.files))
        return false;
    bool anything = false;
    bool picture = false;
    bool pictureWithheld = false;
    for (size_t i = 0; i < outcomes.size(); ++i) {
        const ReadRequest &asked = plan.requests[i];
        const bool fetched = outcomes[i].status == Status::fetched && !outcomes[i].bytes.isEmpty();
        const bool withheld = outcomes[i].status == Status::withheld;
        if (withheld && (asked.kind == Kind::text || asked.kind == Kind::files))
            return false;
        anything = anything || fetched;
        picture = picture || (fetched && asked.isPicture());
        pictureWithheld = pictureWithheld || (withheld && asked.isPicture());
    }
    return anything && (textFound || picture || !pictureWithheld);
}

bool SelectionReader::wasLetGoByReading(TimePoint letGoAt) const
{
    return cut && letGoAt >= cut->asked && letGoAt < cut->answered + cutPatience;
}
