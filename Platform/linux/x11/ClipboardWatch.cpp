#include "Platform/linux/x11/ClipboardWatch.h"

#include "Platform/linux/x11/ServedContent.h"
#include "Platform/linux/x11/WindowProperties.h"

#include <algorithm>

namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr seconds readLimit(5);
constexpr seconds retryDelay(3);
constexpr milliseconds clearGrace(50);    // LibreOffice lets go for 2 ms whenever it copies again
constexpr milliseconds answerGrace(100);  // for the answer of an owner that has let go
constexpr milliseconds managerGrace(300); // for another clipboard manager to keep what its owner left behind
constexpr seconds saveLimit(2);
constexpr milliseconds curiosity(500); // programs that look at every copy have done so by then
constexpr qint64 minTextBudget = 64LL * 1048576;

bool withholdsText(const std::vector<PasteboardItem> &items)
{
    return std::any_of(items.begin(), items.end(), [](const PasteboardItem &item) {
        return std::any_of(item.representations.begin(), item.representations.end(), [](const auto &each) {
            return each.type == PasteboardType::plainText && !each.data;
        });
    });
}

qint64 sizeOf(const std::vector<PasteboardItem> &items)
{
    qint64 size = 0;
    for (const PasteboardItem &item : items) {
        for (const PasteboardRepresentation &each : item.representations)
            size += each.data ? each.data->size() : 0;
    }
    return size;
}

} // namespace

ClipboardWatch::ClipboardWatch(PasteboardConnection &connection,
                               std::shared_ptr<const DesktopEntries> entries, Callbacks callbacks)
    : x(connection), ring(connection), front(connection, std::move(entries)), call(std::move(callbacks)),
      role(connection, call.serve), pictures(call.wake)
{
}

void ClipboardWatch::begin()
{
    role.begin();
    if (owner != XCB_WINDOW_NONE || claimSequence)
        return; // somebody was faster, and is being read
    const auto cookie = xcb_get_selection_owner(x.raw(), x.atoms().clipboard);
    auto *reply = xcb_get_selection_owner_reply(x.raw(), cookie, nullptr);
    owner = reply ? reply->owner : xcb_window_t(XCB_WINDOW_NONE);
    std::free(reply);
    wantsRead = owner != XCB_WINDOW_NONE;
}

void ClipboardWatch::handleOwnerChange(const xcb_xfixes_selection_notify_event_t &event, uint32_t sequence,
                                       TimePoint now)
{
    role.handleOwnerChange(event);
    if (event.selection != x.atoms().clipboard || (claimSequence && isBefore(sequence, *claimSequence)))
        return;
    claimSequence.reset();
    if (event.subtype == XCB_XFIXES_SELECTION_EVENT_SET_SELECTION_OWNER && event.owner == x.window())
        return; // counted when it was written
    retryDue.reset();
    retrying = false;
    if (event.subtype != XCB_XFIXES_SELECTION_EVENT_SET_SELECTION_OWNER) {
        noticeDeath(now);
    } else if (event.owner == XCB_WINDOW_NONE) {
        noticeLetGo(now);
    } else {
        const qint64 unpublished = changes;
        forgetForeign();
        owner = event.owner;
        changes = unpublished + 1;
        wantsRead = true;
    }
}

// Its owner has died, which is no change of what was copied.
void ClipboardWatch::noticeDeath(TimePoint now)
{
    owner = XCB_WINDOW_NONE;
    texts.stop();
    if (reader)
        reader->stop();
    keepDue = role.isAnothers() ? now + managerGrace : now;
}

// The user, or a program in the user's name, empties the clipboard. Unless the owner did so because it quits,
// and has entrusted its content to us, or because we read it.
void ClipboardWatch::noticeLetGo(TimePoint now)
{
    const bool wasForeign = owner != XCB_WINDOW_NONE && owner != x.window();
    owner = XCB_WINDOW_NONE;
    if (reader)
        reader->finishBy(now + answerGrace);
    const bool byReading = lastRead && lastRead->wasLetGoByReading(now);
    if (wasForeign && (byReading || saves.wereAnsweredBefore(now))) {
        keepDue = now;
        cutKeptAt = byReading ? keepDue : std::nullopt;
        return;
    }
    clearDue = now + clearGrace;
    letGoAt = wasForeign ? std::optional(now) : std::nullopt;
}

void ClipboardWatch::takeOver()
{
    keepDue.reset();
    if (owner != XCB_WINDOW_NONE || !lastRead || !lastRead->mayOutliveOwner())
        return;
    const auto claim = x.claimIfFree(x.atoms().clipboard);
    if (claim.result != PasteboardConnection::Claim::Result::confirmed)
        return; // the event of another's copy is on its way
    claimSequence = claim.sequence;
    owner = claim.owner;
    saves.forget();
    keptClaim = claim;
    serveKept();
}

void ClipboardWatch::serveKept()
{
    const auto &items = reencoding ? reencoding->items : lastItems;
    call.serve(x.atoms().clipboard, *keptClaim, servedTargets(items, lastRead->originals()));
}

// Who cuts files and lets go of them when they are asked for means them to be moved once: a second paste
// would look for files that are gone. So a paste ends this as it would have ended there.
void ClipboardWatch::noticeServed(xcb_atom_t target, TimePoint now)
{
    if (!keptClaim || !cutKeptAt || now < *cutKeptAt + curiosity)
        return;
    if (!isCutSelection(atomNames(x.raw(), std::span(&target, 1)).front()))
        return;
    cutKeptAt.reset();
    x.letGo(x.atoms().clipboard);
}

void ClipboardWatch::save(xcb_window_t requestor, const std::vector<QByteArray> &targets,
                          SaveRequests::Answer answer, TimePoint now)
{
    if (!x.areOfOneClient(requestor, owner)) {
        answer(false);
        return;
    }
    saves.add(std::move(answer));
    if (reader)
        reader->hurry(now + saveLimit);
    else if (retryDue)
        retryDue = now; // it hung, and is back
    else if (lastRead && lastRead->isIncomplete()) {
        reader = std::move(lastRead);
        reader->resume(nextReadTime(), targets, now + saveLimit, now);
    }
}

void ClipboardWatch::forgetForeign()
{
    reader.reset();
    texts.stop();
    reencoding.reset();
    lastRead.reset();
    lastItems.clear();
    keptClaim.reset();
    cutKeptAt.reset();
    saves.forget();
    keepDue.reset();
    letGoAt.reset();
    clearDue.reset();
    retryDue.reset();
    retrying = false;
    wantsRead = false;
    changes = 0;
}

void ClipboardWatch::noticeClaim(const PasteboardConnection::Claim &claim, qint64 write)
{
    forgetForeign();
    claimSequence = claim.sequence;
    writesSeen = write;
    owner = claim.owner;
    textWithheld = false;
    if (claim.result == PasteboardConnection::Claim::Result::refused) {
        changes = 1;
        wantsRead = true;
    }
}

void ClipboardWatch::handleAnswer(const xcb_selection_notify_event_t &event, TimePoint now)
{
    if ((reader && reader->handleAnswer(event, now)) || texts.handleAnswer(event, now))
        return;
    if (event.property != XCB_ATOM_NONE)
        ring.discard(event.property);
    if (retryDue)
        retryDue = now; // a late answer: its owner hangs no more
}

void ClipboardWatch::handleProperty(const xcb_property_notify_event_t &event, TimePoint now)
{
    if ((reader && reader->handleProperty(event, now)) || texts.handleProperty(event, now))
        return;
    if (event.state == XCB_PROPERTY_NEW_VALUE)
        ring.discard(event.atom);
}

void ClipboardWatch::advance(TimePoint now)
{
    if (retryDue && now >= *retryDue) {
        retryDue.reset();
        retrying = true;
        changes = retryChanges;
        wantsRead = true;
    }
    if (wantsRead)
        startRead(now);
    if (reader)
        reader->advance(now);
    if (reader && reader->isFinished())
        finishRead(now);
    if (saves.areWaiting() && !wantsRead && !reader)
        saves.answer(lastRead && lastRead->mayOutliveOwner(), now);
    if (keepDue && now >= *keepDue && !wantsRead && !reader)
        takeOver();
    if (reencoding)
        finishReencoding(now);
    if (clearDue && now >= *clearDue && !isReading()) {
        const qint64 unpublished = changes;
        forgetForeign();
        changes = unpublished + 1;
        frontApplication = front.application();
        publishItems({});
    }
    advanceTexts(now);
    if (isIdle()) {
        for (const auto &callback : std::exchange(idleCallbacks, {}))
            callback();
    }
}

TimePoint ClipboardWatch::deadline() const
{
    TimePoint first = TimePoint::max();
    first = std::min(first, retryDue.value_or(TimePoint::max()));
    if (!isReading()) // what is read then, or turned into PNG, has a deadline of its own
        first = std::min(first, clearDue.value_or(TimePoint::max()));
    if (reader)
        first = std::min(first, reader->deadline());
    else if (keepDue)
        first = std::min(first, *keepDue);
    first = std::min(first, texts.deadline());
    if (reencoding)
        first = std::min(first, reencoding->due);
    return first;
}

// Two reads within a millisecond still have times of their own. An owner checks only that it is not too
// early.
xcb_timestamp_t ClipboardWatch::nextReadTime()
{
    const xcb_timestamp_t time = x.serverTime();
    lastReadTime = isBefore(lastReadTime, time) || lastReadTime == 0 ? time : lastReadTime + 1;
    return lastReadTime;
}

SelectionReader::Options ClipboardWatch::optionsFor(SelectionReader::Scope scope, Clock::duration limit)
{
    qint64 budget = policy.byteBudget;
    if (scope == SelectionReader::Scope::text)
        budget = std::max(budget, minTextBudget);
    return {x.atoms().clipboard, nextReadTime(), scope, budget, policy.images, policy.files, limit};
}

void ClipboardWatch::startRead(TimePoint now)
{
    wantsRead = false;
    if (!retrying)
        frontApplication = front.application();
    if (policy.paused || owner == XCB_WINDOW_NONE) {
        publishItems({});
        textWithheld = owner != XCB_WINDOW_NONE;
        return;
    }
    const bool ignored = frontApplication && frontApplication->bundleIdentifier &&
                         policy.ignoredApplications.contains(*frontApplication->bundleIdentifier);
    const auto scope = ignored ? SelectionReader::Scope::list : SelectionReader::Scope::everything;
    const auto limit = saves.areWaiting() ? saveLimit : readLimit;
    reader = std::make_unique<SelectionReader>(x, ring, optionsFor(scope, limit), now);
}

void ClipboardWatch::finishRead(TimePoint now)
{
    lastRead = std::exchange(reader, nullptr);
    if (!lastRead->wasAnswered() && owner != XCB_WINDOW_NONE) {
        noticeHungOwner(now);
        return;
    }
    if (letGoAt && lastRead->wasLetGoByReading(*letGoAt)) {
        clearDue.reset();
        keepDue = cutKeptAt = now;
    }
    types.learn(lastRead->originals());
    std::vector<PasteboardItem> items = lastRead->items();
    if (const auto picture = pictureToReencode(items))
        reencoding = Reencoding{pictures.start(*picture), std::move(items), now + readLimit};
    else
        publishItems(std::move(items));
}

// The change counts at once. Its content follows as a change of its own if the owner comes back: it is asked
// once more.
void ClipboardWatch::noticeHungOwner(TimePoint now)
{
    if (retrying) {
        retrying = false;
        changes = 0;
        textWithheld = true;
        return;
    }
    retryDue = now + retryDelay;
    retryChanges = changes > 0 ? 1 : 0;
    publishItems({});
    textWithheld = true;
}

void ClipboardWatch::finishReencoding(TimePoint now)
{
    const auto result = pictures.take(reencoding->number);
    if (!result && now < reencoding->due)
        return;
    std::vector<PasteboardItem> items = std::move(reencoding->items);
    reencoding.reset();
    if (result && result->png) {
        const bool fits = sizeOf(items) + result->png->size() <= policy.byteBudget;
        items.front().representations.push_back(
            {QStringView(PasteboardType::png).toString(), fits ? result->png : std::nullopt});
    }
    publishItems(std::move(items));
}

void ClipboardWatch::publishItems(std::vector<PasteboardItem> items)
{
    textWithheld = withholdsText(items);
    retrying = false;
    lastItems = items;
    if (keptClaim)
        serveKept(); // a picture has come to it
    if (changes > 0 || !items.empty())
        call.publish({changes, writesSeen, std::move(items), frontApplication});
    changes = 0;
}

void ClipboardWatch::readText(TextFetch::Callback callback, TimePoint limit)
{
    texts.add(std::move(callback), limit);
}

void ClipboardWatch::advanceTexts(TimePoint now)
{
    texts.advance(now);
    if (!texts.isDue() || isReading())
        return;
    if (owner == XCB_WINDOW_NONE || owner == x.window() || !textWithheld) {
        texts.answer(std::nullopt);
        return;
    }
    const auto scope = SelectionReader::Scope::text;
    texts.start(std::make_unique<SelectionReader>(x, ring, optionsFor(scope, texts.limit() - now), now));
}

void ClipboardWatch::whenIdle(std::function<void()> callback)
{
    if (isIdle())
        callback();
    else
        idleCallbacks.push_back(std::move(callback));
}
