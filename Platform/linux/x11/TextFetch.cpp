#include "Platform/linux/x11/TextFetch.h"

#include "Platform/linux/x11/ServedContent.h"

#include <algorithm>

TimePoint TextFetch::limit() const
{
    TimePoint first = TimePoint::max();
    for (const Request &each : requests)
        first = std::min(first, each.limit);
    return first;
}

void TextFetch::answer(const std::optional<QByteArray> &text)
{
    for (const Request &each : std::exchange(requests, {}))
        each.callback(text);
}

bool TextFetch::handleAnswer(const xcb_selection_notify_event_t &event, TimePoint now)
{
    return reader && reader->handleAnswer(event, now);
}

bool TextFetch::handleProperty(const xcb_property_notify_event_t &event, TimePoint now)
{
    return reader && reader->handleProperty(event, now);
}

void TextFetch::advance(TimePoint now)
{
    if (reader)
        reader->advance(now);
    if (reader && reader->isFinished()) {
        const auto items = std::exchange(reader, nullptr)->items();
        answer(joinedText(items).value_or(QByteArray()));
    }
    for (Request &each : requests) {
        if (now >= each.limit)
            std::exchange(each.callback, nullptr)(QByteArray());
    }
    std::erase_if(requests, [](const Request &each) { return !each.callback; });
}

TimePoint TextFetch::deadline() const
{
    return reader ? std::min(limit(), reader->deadline()) : limit();
}
