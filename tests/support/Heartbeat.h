#pragma once

#include <QElapsedTimer>
#include <QTimer>
#include <algorithm>

// The longest time that the event loop was away while this lived.
class Heartbeat {
public:
    Heartbeat()
    {
        beat.setTimerType(Qt::PreciseTimer);
        beat.callOnTimeout([this] { take(); });
        sinceBeat.start();
        beat.start(1);
    }
    [[nodiscard]] qint64 longest() // milliseconds
    {
        take();
        return longestTurn;
    }

private:
    void take() { longestTurn = std::max(longestTurn, sinceBeat.restart()); }

    QElapsedTimer sinceBeat;
    QTimer beat;
    qint64 longestTurn = 0;
};
