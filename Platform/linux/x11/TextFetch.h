#pragma once

#include "Platform/linux/x11/SelectionReader.h"

#include <functional>

// Those who wait for the plain text of the clipboard's owner, and the one read that serves them all. Nobody
// waits beyond its limit.
class TextFetch {
public:
    // Called once; nullopt says that the last published content has the answer.
    using Callback = std::function<void(std::optional<QByteArray>)>;

    void add(Callback callback, TimePoint limit) { requests.push_back({std::move(callback), limit}); }

    // Whether somebody waits and nobody is asked yet.
    [[nodiscard]] bool isDue() const { return !requests.empty() && !reader; }
    // When the first of them has waited long enough.
    [[nodiscard]] TimePoint limit() const;

    void start(std::unique_ptr<SelectionReader> textReader) { reader = std::move(textReader); }
    // The owner is gone, or another one.
    void stop() { reader.reset(); }
    void answer(const std::optional<QByteArray> &text);

    // True when the event was this read's.
    bool handleAnswer(const xcb_selection_notify_event_t &event, TimePoint now);
    bool handleProperty(const xcb_property_notify_event_t &event, TimePoint now);
    void advance(TimePoint now);
    [[nodiscard]] TimePoint deadline() const;

private:
    struct Request {
        Callback callback;
        TimePoint limit;
    };

    std::vector<Request> requests;
    std::unique_ptr<SelectionReader> reader;
};
