#pragma once

#include <QString>
#include <algorithm>
#include <array>

// What an instance can be asked to do.
[[nodiscard]] inline bool isInstanceAction(const QString &action)
{
    constexpr std::array<QStringView, 5> actions{u"show", u"toggle", u"hide", u"pause", u"quit"};
    return std::ranges::find(actions, QStringView(action)) != actions.end();
}

inline constexpr int instanceAnswerLimit = 1000; // milliseconds
