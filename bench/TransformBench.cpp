#include "bench/SampleClips.h"

#include "Norvane/app/TextTransform.h"

#include <ctime>
#include <malloc.h>

// Every transform on 10 million characters against 1 million: its time grows with the text, not with its
// square.

namespace {

constexpr qsizetype small = 1000000;
constexpr double growth = 30; // ten times the text, which no cache holds any more; the square would be 100

// Milliseconds of the processor, the least of several runs: other programs' turns do not count.
double leastTime(const std::function<void()> &work)
{
    double best = std::numeric_limits<double>::max();
    for (int run = 0; run < 2; ++run) {
        const std::clock_t start = std::clock();
        work();
        best = std::min(best, static_cast<double>(std::clock() - start) * 1000 / CLOCKS_PER_SEC);
    }
    return std::max(best, 0.001);
}

QString repeatedTo(const QString &piece, qsizetype length)
{
    return piece.repeated(length / piece.size() + 1).first(length);
}

// All transforms on a text made of repetitions of this piece.
bool benchText(const char *name, const QString &piece)
{
    const QString one = repeatedTo(piece, small), ten = repeatedTo(piece, 10 * small);
    bool met = true;
    for (const TextTransform transform : TextTransforms::allCases) {
        qsizetype sink = 0;
        const double before = leastTime([&] { sink += apply(transform, one).size(); });
        const double after = leastTime([&] { sink += apply(transform, ten).size(); });
        if (sink < 0)
            std::abort();
        const QByteArray subject =
            rawValue(transform).toUtf8() + ", " + name + " (" + QByteArray::number(after, 'f', 0) + " ms):";
        met &= report(subject.constData(), after / before, "a tenth", growth);
    }
    return met;
}

} // namespace

int main()
{
    // Memory once had is kept: what the kernel takes to give it is no matter of the text's length.
    mallopt(M_MMAP_MAX, 0);
    mallopt(M_TRIM_THRESHOLD, std::numeric_limits<int>::max());
    QRandomGenerator random(5);
    QString italian;
    while (italian.size() < small)
        italian += sampleText(random);
    bool met = benchText("Italian", italian);
    met &= benchText("emoji", QStringLiteral("👨‍👩‍👧 Ciao 👍🏽 "));
    met &= benchText("one mark after another", QString(QChar(0x301)));
    met &= benchText("spaces", QStringLiteral("\u3000"));
    met &= benchText("line ends", QStringLiteral("\r\n"));
    met &= benchText("sigmas", QStringLiteral("Σ'''"));
    met &= benchText("flags", QStringLiteral("🇮🇹"));
    met &= benchText("Base64", QStringLiteral("Y2FmZsOo"));
    return met ? 0 : 1;
}
