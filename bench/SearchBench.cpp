#include "bench/SampleClips.h"

#include "Norvane/store/ClipSearch.h"
#include "Vesmo/Text.h"

#include <QCoreApplication>
#include <QTemporaryDir>
#include <cstring>

// The search against the memory itself: what a keystroke costs, beside looking at the same bytes once.

namespace {

// Nanoseconds a character.
double perCharacter(double milliseconds, qsizetype characters)
{
    return milliseconds * 1e6 / static_cast<double>(characters);
}

bool benchText()
{
    QRandomGenerator random(3);
    QString italian;
    while (italian.size() < 4000000)
        italian += sampleText(random);
    const QString ascii = QString(4000000, QLatin1Char('A'));
    const QString cyrillic = QStringLiteral("Быстрая лиса ёжик ").repeated(60000);
    const QString emoji = QStringLiteral("👨‍👩‍👧 ciao 👍🏽 ").repeated(60000);
    const struct {
        const char *name;
        const QString &text;
        double foldAim;
        double countAim;
    } cases[] = {{"Italian", italian, 4, 1},
                 {"ASCII", ascii, 4, 1},
                 {"Cyrillic", cyrillic, 40, 40},
                 {"emoji", emoji, 40, 40}};
    bool met = true;
    for (const auto &[name, text, foldAim, countAim] : cases) {
        qsizetype sink = 0;
        const double fold = fastest(10, [&sink, &text = text] { sink += foldedKey(text).size(); });
        const double count = fastest(10, [&sink, &text = text] { sink += clusterCount(text); });
        if (sink == 0)
            std::abort();
        const QByteArray folding = QByteArray("folding, ") + name + ":";
        const QByteArray counting = QByteArray("counting, ") + name + ":";
        met &= report(folding, perCharacter(fold, text.size()), "ns a character", foldAim);
        met &= report(counting, perCharacter(count, text.size()), "ns a character", countAim);
    }
    return met;
}

struct Case {
    const char *name;
    QString before; // typed first, so that the query itself narrows
    QString query;
};

bool benchSearch(int count, int runs)
{
    const QTemporaryDir scratch(QStringLiteral("/dev/shm/bench"));
    const QTemporaryDir fallback;
    const QString folder = scratch.isValid() ? scratch.path() : fallback.path();
    fillHistory(folder, count);
    ClipStore store(folder);
    QByteArray bytes;
    for (const auto &clip : store.clips())
        bytes += foldedKey(clip->text);
    const double memory = fastest(runs, [&] {
        if (std::memchr(bytes.constData(), '\1', static_cast<size_t>(bytes.size())))
            std::abort();
    });
    ClipSearch search(store);
    const double first = fastest(1, [&] { (void)search.results(ClipFilter::all, QStringLiteral("a")); });
    std::printf(
        "%d clips, %.1f million bytes of keys: memchr %.2f ms, first query with no key ready %.0f ms\n",
        count, static_cast<double>(bytes.size()) / 1e6, memory, first);
    const Case cases[] = {{"rare word", {}, QStringLiteral("zzyzx")},
                          {"frequent word", {}, QStringLiteral("perche")},
                          {"one letter", {}, QStringLiteral("e")},
                          {"two words", {}, QStringLiteral("caffe zzyzx")},
                          {"accented", {}, QStringLiteral("qualità")},
                          {"narrowed", QStringLiteral("naiv"), QStringLiteral("naive")},
                          {"no word", {}, {}}};
    bool met = true;
    for (const auto &[name, before, query] : cases) {
        double best = std::numeric_limits<double>::max();
        for (int run = 0; run < runs; ++run) {
            (void)search.results(ClipFilter::all, before); // an empty query is narrowed by nothing
            best = std::min(best, fastest(1, [&search, &query = query] {
                                (void)search.results(ClipFilter::all, query);
                            }));
        }
        std::printf("%d clips, %s: %.2f ms\n", count, name, best);
        const QByteArray subject = QByteArray(name) + ", " + QByteArray::number(count) + ":";
        met &= report(subject, best / memory, "memchr", 12);
    }
    return met;
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    bool met = benchText();
    met &= benchSearch(5000, 20);
    met &= benchSearch(100000, 7);
    return met ? 0 : 1;
}
