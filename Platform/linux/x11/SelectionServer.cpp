#include "Platform/linux/x11/SelectionServer.h"

#include "Platform/linux/x11/WindowProperties.h"

#include <algorithm>
#include <cstring>

namespace {

// Chunks of 1 MiB go fastest; above 256 KiB other programs' toolkits send in chunks too.
constexpr qsizetype maxWholeBytes = 256LL * 1024;
constexpr qsizetype maxChunkBytes = 1024LL * 1024;
constexpr std::chrono::seconds stallTime(30);
constexpr size_t maxTransfers = 1024;
constexpr ptrdiff_t maxTransfersOfOneClient = 64;
constexpr quint32 maxMultiplePairs = 256;

QByteArray bytesOf(const std::vector<quint32> &units)
{
    return {reinterpret_cast<const char *>(units.data()), static_cast<qsizetype>(units.size() * 4)};
}

} // namespace

SelectionServer::SelectionServer(PasteboardConnection &connection) : x(connection) {}

void SelectionServer::offer(xcb_atom_t selection, const PasteboardConnection::Claim &claim,
                            const std::vector<ServedTarget> &targets)
{
    std::vector<QByteArray> names;
    for (const ServedTarget &each : targets) {
        names.push_back(each.target);
        names.push_back(each.type);
    }
    const auto atoms = internAtoms(x.raw(), names);
    Offer offer{claim.time, claim.sequence, {}};
    for (size_t i = 0; i < targets.size(); ++i)
        offer.forms.push_back({atoms[2 * i], atoms[2 * i + 1], targets[i]});
    offers_.insert_or_assign(selection, std::move(offer));
}

void SelectionServer::withdraw(xcb_atom_t selection)
{
    offers_.erase(selection);
}

std::vector<xcb_atom_t> SelectionServer::handleRequest(const xcb_selection_request_event_t &request,
                                                       TimePoint now)
{
    // Programs of the oldest kind name no property: the answer goes into one named like the target.
    const xcb_atom_t property = request.property != XCB_ATOM_NONE ? request.property : request.target;
    const auto found = offers_.find(request.selection);
    std::vector<xcb_atom_t> given;
    bool answered = false;
    if (found != offers_.end()) {
        const bool tooEarly = request.time != XCB_CURRENT_TIME && isBefore(request.time, found->second.time);
        answered = !tooEarly && answer(found->second, request, property, now, given);
    }
    notify(request, answered ? property : xcb_atom_t(XCB_ATOM_NONE));
    return given;
}

void SelectionServer::answerSave(const xcb_selection_request_event_t &request, bool kept)
{
    const xcb_atom_t property = request.property != XCB_ATOM_NONE ? request.property : request.target;
    if (kept)
        write({request.requestor, property}, x.atoms().null, 32, {});
    notify(request, kept ? property : xcb_atom_t(XCB_ATOM_NONE));
}

void SelectionServer::notify(const xcb_selection_request_event_t &request, xcb_atom_t property)
{
    xcb_selection_notify_event_t event{};
    event.response_type = XCB_SELECTION_NOTIFY;
    event.time = request.time;
    event.requestor = request.requestor;
    event.selection = request.selection;
    event.target = request.target;
    event.property = property;
    char sent[32] = {}; // which is more than the structure has
    std::memcpy(sent, &event, sizeof(event));
    xcb_send_event(x.raw(), 0, request.requestor, XCB_EVENT_MASK_NO_EVENT, sent);
}

void SelectionServer::handleClear(const xcb_generic_event_t &event)
{
    const auto selection = reinterpret_cast<const xcb_selection_clear_event_t &>(event).selection;
    const auto found = offers_.find(selection);
    if (found != offers_.end() && !isBefore(sequenceOf(event), found->second.sequence))
        offers_.erase(found);
}

bool SelectionServer::answer(Offer &offer, const xcb_selection_request_event_t &request, xcb_atom_t property,
                             TimePoint now, std::vector<xcb_atom_t> &given)
{
    const auto &atoms = x.atoms();
    const Key key(request.requestor, property);
    if (request.target == atoms.targets)
        return send(key, XCB_ATOM_ATOM, 32, bytesOf(listOf(offer)), now);
    if (request.target == atoms.timestamp)
        return send(key, XCB_ATOM_INTEGER, 32, bytesOf({offer.time}), now);
    if (request.target == atoms.saveTargets && request.selection != atoms.clipboardManager)
        return send(key, atoms.null, 32, {}, now);
    if (request.target == atoms.multiple)
        return request.property != XCB_ATOM_NONE && answerMultiple(offer, request, property, now, given);
    const auto form = std::find_if(offer.forms.begin(), offer.forms.end(),
                                   [&](const Form &each) { return each.target == request.target; });
    if (form == offer.forms.end())
        return false;
    form->content.convert(); // once: all transfers share the bytes
    const bool sent = send(key, form->type, form->content.format, form->content.bytes, now);
    if (sent)
        given.push_back(form->target);
    return sent;
}

// The property holds pairs of target and property; where a target is refused, its property becomes None.
bool SelectionServer::answerMultiple(Offer &offer, const xcb_selection_request_event_t &request,
                                     xcb_atom_t property, TimePoint now, std::vector<xcb_atom_t> &given)
{
    auto pairs = readUnits(x.raw(), request.requestor, property, x.atoms().atomPair, maxMultiplePairs * 2);
    if (pairs.size() < 2)
        return false;
    for (size_t i = 0; i + 1 < pairs.size(); i += 2) {
        xcb_selection_request_event_t single = request;
        single.target = pairs[i];
        const bool nested = single.target == x.atoms().multiple || pairs[i + 1] == property;
        if (nested || pairs[i + 1] == XCB_ATOM_NONE || !answer(offer, single, pairs[i + 1], now, given))
            pairs[i + 1] = XCB_ATOM_NONE;
    }
    write({request.requestor, property}, x.atoms().atomPair, 32, bytesOf(pairs));
    return true;
}

std::vector<quint32> SelectionServer::listOf(const Offer &offer) const
{
    const auto &atoms = x.atoms();
    std::vector<quint32> list = {atoms.timestamp, atoms.targets, atoms.multiple, atoms.saveTargets};
    for (const Form &each : offer.forms)
        list.push_back(each.target);
    return list;
}

bool SelectionServer::send(const Key &key, xcb_atom_t type, uint8_t format, const QByteArray &bytes,
                           TimePoint now)
{
    end(key); // a new question in the same place ends the old one
    if (bytes.size() <= std::min(maxWholeBytes, x.maxPropertyBytes())) {
        write(key, type, format, bytes);
        return true;
    }
    makeRoom(key.first);
    watch(key.first, true);
    transfers[key] = {type, format, bytes, 0, now + stallTime};
    const auto size = static_cast<quint32>(std::min<qsizetype>(bytes.size(), 0x7fffffff));
    write(key, x.atoms().incr, 32, bytesOf({size}));
    return true;
}

// Where a client has too many transfers, or all together have, the one that has waited longest ends: programs
// that never take what they asked for keep nobody else from theirs.
void SelectionServer::makeRoom(xcb_window_t requestor)
{
    const uint32_t ofOneClient = xcb_get_setup(x.raw())->resource_id_mask;
    auto first = transfers.lower_bound(Key(requestor & ~ofOneClient, 0));
    auto last = transfers.upper_bound(Key(requestor | ofOneClient, ~xcb_atom_t(0)));
    if (std::distance(first, last) < maxTransfersOfOneClient) {
        if (transfers.size() < maxTransfers)
            return;
        first = transfers.begin();
        last = transfers.end();
    }
    const auto stalest = std::min_element(
        first, last, [](const auto &a, const auto &b) { return a.second.due < b.second.due; });
    end(Key(stalest->first));
}

void SelectionServer::write(const Key &key, xcb_atom_t type, uint8_t format, QByteArrayView bytes)
{
    xcb_change_property(x.raw(), XCB_PROP_MODE_REPLACE, key.first, key.second, type, format,
                        static_cast<uint32_t>(bytes.size() / (format / 8)), bytes.data());
}

void SelectionServer::handleProperty(const xcb_property_notify_event_t &event, TimePoint now)
{
    const Key key(event.window, event.atom);
    const auto found = transfers.find(key);
    if (event.state != XCB_PROPERTY_DELETE || found == transfers.end())
        return;
    Transfer &transfer = found->second;
    // Small where requests are; a sixteenth of the usual 16 MiB would fall short of 1 MiB by its header.
    const qsizetype limit = std::min(maxChunkBytes, x.maxPropertyBytes() / 8) & ~qsizetype(3);
    const qsizetype length = std::min(limit, transfer.bytes.size() - transfer.sent);
    write(key, transfer.type, transfer.format, QByteArrayView(transfer.bytes).sliced(transfer.sent, length));
    transfer.sent += length;
    transfer.due = now + stallTime;
    if (length == 0) // the empty chunk is the end
        end(key);
}

void SelectionServer::forget(xcb_window_t requestor)
{
    std::erase_if(transfers, [&](const auto &each) { return each.first.first == requestor; });
}

void SelectionServer::advance(TimePoint now)
{
    std::vector<Key> stalled;
    for (const auto &[key, transfer] : transfers) {
        if (now >= transfer.due)
            stalled.push_back(key);
    }
    for (const Key &key : stalled)
        end(key);
}

TimePoint SelectionServer::deadline() const
{
    TimePoint first = TimePoint::max();
    for (const auto &[key, transfer] : transfers)
        first = std::min(first, transfer.due);
    return first;
}

void SelectionServer::end(const Key &key)
{
    if (transfers.erase(key) == 0)
        return;
    const auto other = transfers.lower_bound(Key(key.first, 0));
    if (other == transfers.end() || other->first.first != key.first)
        watch(key.first, false);
}

// Our own windows' events must go on as they are.
void SelectionServer::watch(xcb_window_t requestor, bool on)
{
    if (requestor == x.window() || requestor == x.root())
        return;
    const uint32_t events =
        on ? XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY : XCB_EVENT_MASK_NO_EVENT;
    xcb_change_window_attributes(x.raw(), requestor, XCB_CW_EVENT_MASK, &events);
}
