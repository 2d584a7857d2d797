#pragma once

#include "Norvane/store/ClipStore.h"
#include "Norvane/store/HistorySchema.h"

#include <QDir>
#include <QElapsedTimer>
#include <QRandomGenerator>
#include <QStringList>
#include <algorithm>
#include <cstdio>
#include <functional>
#include <limits>

// Texts like those of a history: 50 to 500 characters, one in a hundred of 20,000 to 200,000, Italian and
// English.
inline QString sampleText(QRandomGenerator &random)
{
    static const QStringList words = QStringLiteral("perché il caffè è buono però la città non dorme mai e "
                                                    "così via fattura numero totale euro giovedì lunedì "
                                                    "riunione verrà domani alle dieci grazie cordiali saluti "
                                                    "università qualità the quick brown fox jumps over "
                                                    "lazy dog please find attached report for quarter "
                                                    "https://example.org/path?query=1 function return value "
                                                    "const auto size 1.240,50 résumé naïve Straße")
                                         .split(QLatin1Char(' '));
    const int length = random.bounded(100) == 0 ? random.bounded(20000, 200001) : random.bounded(50, 501);
    QString text;
    while (text.size() < length) {
        text += words[random.bounded(static_cast<int>(words.size()))];
        text += QLatin1Char(random.bounded(12) == 0 ? '\n' : ' ');
    }
    text.truncate(length);
    return text;
}

// Writes a history of that many clips straight into its file, as the store itself would take minutes. One
// clip a second, the newest now; one in ten has a thumbnail of 4 kB.
inline void fillHistory(const QString &folder, int count)
{
    {
        const ClipStore store(folder); // makes the file
    }
    const auto db = Database::open(folder + QStringLiteral("/clips.sqlite"));
    QRandomGenerator random(1);
    const QByteArray thumbnail(4096, 't');
    const double oldest = secondsSinceReferenceDate() - count;
    Clip clip;
    clip.appName = QStringLiteral("Firefox");
    db->exec("BEGIN");
    for (int i = 0; i < count; ++i) {
        clip.text = sampleText(random);
        clip.hash = contentHash(clip.text);
        clip.created = oldest + i;
        clip.size = clip.text.size();
        clip.thumbData = i % 10 == 0 ? std::optional(thumbnail) : std::nullopt;
        db->run(HistorySQL::insertClip, HistorySQL::insertedValues(clip));
    }
    if (!db->exec("COMMIT"))
        std::abort();
}

// Milliseconds of the fastest of several runs: what else the machine does only makes a run slower.
inline double fastest(int runs, const std::function<void()> &work)
{
    double best = std::numeric_limits<double>::max();
    for (int i = 0; i < runs; ++i) {
        QElapsedTimer timer;
        timer.start();
        work();
        best = std::min(best, static_cast<double>(timer.nsecsElapsed()) / 1e6);
    }
    return best;
}

// One line of the final table, and whether its aim is met.
inline bool report(const QByteArray &subject, double ratio, const char *limit, double aim)
{
    std::printf("%-34s %8.2f x %s (aim %g)%s\n", subject.constData(), ratio, limit, aim,
                ratio <= aim ? "" : "  MISSED");
    return ratio <= aim;
}
