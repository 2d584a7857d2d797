#pragma once

#include "bench/SampleClips.h"

#include <QCoreApplication>
#include <QTimer>

// The longest time in milliseconds that the event loop is away, in turns of at most a millisecond where there
// is nothing to do, until `over`.
inline double longestTurn(const std::function<bool()> &over)
{
    QTimer beat;
    beat.start(1);
    double longest = 0;
    while (!over())
        longest = std::max(
            longest, fastest(1, [] { QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents); }));
    return longest;
}
