#include "Platform/linux/x11/SaveRequests.h"

namespace {

constexpr size_t maxWaiting = 16;
constexpr std::chrono::seconds farewellTime(1); // GIMP lets go of its content before it quits

} // namespace

void SaveRequests::add(Answer answer)
{
    if (waiting.size() < maxWaiting)
        waiting.push_back(std::move(answer));
    else
        answer(false);
}

void SaveRequests::answer(bool kept, TimePoint now)
{
    if (kept && !waiting.empty())
        keptUntil = now + farewellTime;
    for (const Answer &each : std::exchange(waiting, {}))
        each(kept);
}

void SaveRequests::forget()
{
    keptUntil.reset();
    for (const Answer &each : std::exchange(waiting, {}))
        each(false);
}
