#pragma once

#include "Platform/linux/x11/PasteboardConnection.h"

#include <functional>
#include <optional>
#include <vector>

// Programs that quit and wait for us to say that we have what they copied. Clipboard's thread.
class SaveRequests {
public:
    // Called once, with whether the content is kept.
    using Answer = std::function<void(bool kept)>;

    // Too many at once are refused.
    void add(Answer answer);
    [[nodiscard]] bool areWaiting() const { return !waiting.empty(); }

    // Tells all that wait. Who was told that its content is kept has a second to let go of it on purpose.
    void answer(bool kept, TimePoint now);
    // Whether what was let go of now was entrusted to us before.
    [[nodiscard]] bool wereAnsweredBefore(TimePoint now) const { return keptUntil && now < *keptUntil; }

    // Another copy came: those that wait are refused, what was entrusted is void.
    void forget();

private:
    std::vector<Answer> waiting;
    std::optional<TimePoint> keptUntil;
};
