#include "tests/platform/pasteboard/Requestor.h"

#include <cstring>
#include <gtest/gtest.h>

void Requestor::handle(const xcb_generic_event_t &event)
{
    const auto type = event.response_type & 0x7f;
    if (type == XCB_SELECTION_NOTIFY) {
        answered = as<xcb_selection_notify_event_t>(event);
        ++notifies;
    } else if (type == XCB_PROPERTY_NOTIFY &&
               as<xcb_property_notify_event_t>(event).state == XCB_PROPERTY_NEW_VALUE) {
        ++newValues[as<xcb_property_notify_event_t>(event).atom];
    }
}

void Requestor::ask(const QByteArray &target, const QByteArray &property, const QByteArray &selection,
                    xcb_timestamp_t time)
{
    xcb_convert_selection(raw(), ownWindow, atom(selection), atom(target),
                          property.isEmpty() ? xcb_atom_t(XCB_ATOM_NONE) : atom(property), time);
    server->flush();
}

bool Requestor::awaitNotify()
{
    const bool came = await([this] { return notifies > 0; }, 20000);
    notifies = 0;
    return came;
}

Requestor::Answer Requestor::take(const QByteArray &property)
{
    newValues[atom(property)] = 0;
    const XcbReply<xcb_get_property_reply_t> reply(xcb_get_property_reply(
        raw(),
        xcb_get_property(raw(), 1, ownWindow, atom(property), XCB_GET_PROPERTY_TYPE_ANY, 0, 0x0fffffff),
        nullptr));
    const qsizetype length = xcb_get_property_value_length(reply.get());
    Answer answer{{static_cast<const char *>(xcb_get_property_value(reply.get())), length},
                  name(reply->type),
                  reply->format};
    answer.incremental = answer.type == "INCR";
    answer.largestChunk = length;
    return answer;
}

Requestor::Answer Requestor::finish(const QByteArray &property)
{
    Answer whole;
    whole.incremental = true;
    while (true) {
        const bool came = await([&] { return newValues[atom(property)] > 0; });
        if (!came) {
            ADD_FAILURE() << "The transfer stopped after " << whole.bytes.size() << " bytes";
            return whole;
        }
        const Answer chunk = take(property);
        if (chunk.bytes.isEmpty())
            return whole;
        whole.bytes += chunk.bytes;
        whole.type = chunk.type;
        whole.format = chunk.format;
        whole.largestChunk = std::max(whole.largestChunk, chunk.bytes.size());
    }
}

std::optional<Requestor::Answer> Requestor::convert(const QByteArray &target, const QByteArray &selection,
                                                    xcb_timestamp_t time)
{
    ask(target, "TEST_ANSWER", selection, time);
    if (!awaitNotify()) {
        ADD_FAILURE() << "No answer to " << target.constData();
        return std::nullopt;
    }
    if (answered.property == XCB_ATOM_NONE)
        return std::nullopt;
    const Answer answer = take("TEST_ANSWER");
    return answer.incremental ? finish("TEST_ANSWER") : answer;
}

QByteArray Requestor::text(const QByteArray &selection)
{
    const auto answer = convert("UTF8_STRING", selection);
    return answer ? answer->bytes : QByteArray();
}

QByteArrayList Requestor::targets(const QByteArray &selection)
{
    const auto answer = convert("TARGETS", selection);
    QByteArrayList names;
    for (qsizetype i = 0; answer && i + 4 <= answer->bytes.size(); i += 4) {
        xcb_atom_t each = 0;
        std::memcpy(&each, answer->bytes.constData() + i, 4);
        names.push_back(name(each));
    }
    return names;
}
