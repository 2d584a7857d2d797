#include "Platform/linux/x11/IncomingTransfer.h"

#include <algorithm>

namespace {

constexpr std::chrono::seconds chunkPatience(1);
constexpr qint64 maxDrained = 1024LL * 1048576;
constexpr qint64 maxReserved = 64LL * 1048576; // an announced size is a promise of the owner, no more

struct FreeReply {
    void operator()(xcb_get_property_reply_t *reply) const { std::free(reply); }
};
using PropertyReply = std::unique_ptr<xcb_get_property_reply_t, FreeReply>;

// Reads up to `maxBytes` and deletes the property if that was all of it.
PropertyReply takeProperty(const PasteboardConnection &x, xcb_atom_t property, qint64 maxBytes)
{
    const auto units = static_cast<uint32_t>(std::clamp<qint64>(maxBytes / 4 + 1, 1, 0x0fffffff));
    const auto cookie =
        xcb_get_property(x.raw(), 1, x.window(), property, XCB_GET_PROPERTY_TYPE_ANY, 0, units);
    return PropertyReply(xcb_get_property_reply(x.raw(), cookie, nullptr));
}

} // namespace

IncomingTransfer::IncomingTransfer(PasteboardConnection &connection, PropertyRing &propertyRing,
                                   const Question &asked, TimePoint now)
    : x(connection), ring(propertyRing), question(asked), property(ring.take(now)), due(now + asked.patience)
{
    if (property == XCB_ATOM_NONE) {
        current = State::unanswered;
        return;
    }
    xcb_convert_selection(x.raw(), x.window(), question.selection, question.target, property, question.time);
}

IncomingTransfer::~IncomingTransfer()
{
    if (current == State::pending)
        ring.giveBack(property, false, Clock::now());
}

bool IncomingTransfer::handleAnswer(const xcb_selection_notify_event_t &event, TimePoint now)
{
    if (current != State::pending || step != Step::asked || event.selection != question.selection)
        return false;
    if (event.property == XCB_ATOM_NONE) {
        if (event.target != question.target || event.time != question.time)
            return false;
        finish(State::refused, true, now);
        return true;
    }
    if (event.property != property) // the target is not compared: some owners answer with another one's name
        return false;
    takeAnswer(now);
    return true;
}

bool IncomingTransfer::handleProperty(const xcb_property_notify_event_t &event, TimePoint now)
{
    if (current != State::pending || event.atom != property)
        return false;
    // Before the answer is here, this is the answer being written, the header of a long one included.
    if (event.state == XCB_PROPERTY_NEW_VALUE && step == Step::receiving)
        takeChunk(now);
    else if (event.state == XCB_PROPERTY_NEW_VALUE && step == Step::draining)
        drainChunk(now);
    return true;
}

void IncomingTransfer::advance(TimePoint now)
{
    if (current == State::pending && now >= due)
        finish(State::unanswered, false, now);
}

QByteArray IncomingTransfer::takeBytes()
{
    return bytes.take();
}

void IncomingTransfer::takeAnswer(TimePoint now)
{
    const auto reply = takeProperty(x, property, question.maxBytes);
    if (!reply || reply->type == XCB_ATOM_NONE) {
        finish(State::refused, true, now);
        return;
    }
    const auto *data = static_cast<const char *>(xcb_get_property_value(reply.get()));
    const qint64 length = xcb_get_property_value_length(reply.get());
    if (reply->type == x.atoms().incr) {
        if (reply->bytes_after > 0)
            xcb_delete_property(x.raw(), x.window(), property); // the owner waits for it
        const qint64 announced =
            reply->format == 32 && length >= 4 ? *reinterpret_cast<const quint32 *>(data) : 0;
        if (announced <= question.maxBytes)
            bytes.expect(std::min(announced, maxReserved));
        step = Step::receiving;
        due = now + chunkPatience;
        return;
    }
    answerType = reply->type;
    answerFormat = reply->format;
    if (reply->bytes_after > 0 || length > question.maxBytes) {
        finish(State::tooLarge, true, now);
        return;
    }
    bytes.expect(length);
    bytes.append({data, length});
    finish(State::complete, true, now);
}

void IncomingTransfer::takeChunk(TimePoint now)
{
    const qint64 room = question.maxBytes - bytes.size();
    const auto reply = takeProperty(x, property, room);
    if (!reply || reply->type == XCB_ATOM_NONE)
        return; // its event came before the one of a chunk that is already taken
    due = now + chunkPatience;
    answerType = reply->type;
    answerFormat = reply->format;
    const qint64 length = xcb_get_property_value_length(reply.get());
    if (reply->bytes_after > 0 || length > room) {
        step = Step::draining;
        drained = bytes.size() + length + reply->bytes_after;
        bytes = GatheredBytes();
        if (reply->bytes_after > 0)
            xcb_delete_property(x.raw(), x.window(), property);
        return;
    }
    if (length > 0) {
        bytes.append({static_cast<const char *>(xcb_get_property_value(reply.get())), length});
        return;
    }
    finish(State::complete, true, now);
}

void IncomingTransfer::drainChunk(TimePoint now)
{
    const auto cookie = xcb_get_property(x.raw(), 0, x.window(), property, XCB_GET_PROPERTY_TYPE_ANY, 0, 0);
    const PropertyReply reply(xcb_get_property_reply(x.raw(), cookie, nullptr));
    if (!reply || reply->type == XCB_ATOM_NONE)
        return;
    xcb_delete_property(x.raw(), x.window(), property);
    due = now + chunkPatience;
    drained += reply->bytes_after;
    if (reply->bytes_after == 0)
        finish(State::tooLarge, true, now);
    else if (drained > maxDrained)
        finish(State::endless, false, now);
}

void IncomingTransfer::finish(State state, bool answered, TimePoint now)
{
    current = state;
    if (state != State::complete)
        bytes = GatheredBytes();
    ring.giveBack(property, answered, now);
}
