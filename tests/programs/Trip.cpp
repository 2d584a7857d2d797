#include "tests/programs/Trip.h"

#include <QFile>
#include <QRegularExpression>
#include <cstdio>
#include <gtest/gtest.h>
#include <ostream>

namespace {

const QStringList kindNames{QStringLiteral("text"), QStringLiteral("styled text"), QStringLiteral("image"),
                            QStringLiteral("files")};

struct Departure {
    Original original;
    HistoryFile::Row row;
};

// Copies in the source, which is left open.
Departure depart(Stage &stage, const Trip &trip, std::optional<OpenProgram> &source)
{
    Departure departure;
    const auto before = newestClip(stage).id; // what is open already may have copied the like
    const auto path = trip.makeDocument(freshPath(stage));
    departure.original.file = path;
    departure.original.document = readFile(path); // now: a program may write into it
    source.emplace(stage, trip.source, path);
    departure.row = source->copyAll([&](const HistoryFile::Row &row) {
        return row.id != before && row.kind == trip.recorded && row.text.contains(trip.words);
    });
    for (const auto &target : trip.kept)
        departure.original.copied[target] = stage.clipboard.read(target).value_or(QByteArray());
    return departure;
}

// "yes", or adds a failure and says why not.
QString arrive(Stage &stage, const Trip &trip, const Departure &from, const Program &where,
               const Proof &proof)
{
    std::optional<OpenProgram> target; // outlives a failure, for the screenshot
    try {
        target.emplace(stage, where, where.makeBlank(freshPath(stage)));
        target->becomeReady();
        pasteFromPanel(stage, from.row, trip.words);
        if (trip.recorded != 3)
            target->awaitPaste();
        proof(*target, from.original);
        return QStringLiteral("yes");
    } catch (const StepFailure &failure) {
        stage.saveScreenshot(QStringLiteral("failed-%1-%2").arg(trip.source.package, where.package));
        ADD_FAILURE() << trip.source.name.toStdString() << ", " << trip.kind.toStdString() << ", into "
                      << where.name.toStdString() << ": " << failure.why.toStdString();
        return QStringLiteral("no");
    }
}

// From a little before the first byte that differs.
QString difference(const QByteArray &arrived, const QByteArray &wanted)
{
    const auto from = std::mismatch(arrived.begin(), arrived.end(), wanted.begin(), wanted.end()).first;
    const auto begin = std::max<qsizetype>(from - arrived.begin() - 40, 0);
    return QStringLiteral("%1 came back, not %2").arg(shown(arrived.mid(begin)), shown(wanted.mid(begin)));
}

// The first pattern that matches nowhere; empty when all do.
QString missingIn(const QByteArray &bytes, const QStringList &patterns)
{
    const auto text = QString::fromUtf8(bytes);
    for (const auto &pattern : patterns)
        if (!text.contains(QRegularExpression(pattern)))
            return pattern;
    return {};
}

} // namespace

void PrintTo(const Trip &trip, std::ostream *out)
{
    *out << trip.source.name.toStdString() << ", " << trip.kind.toStdString();
}

void travel(Stage &stage, const Trip &trip)
{
    QString recorded = QStringLiteral("no");
    QString home = QStringLiteral("–");
    QString away = QStringLiteral("–");
    std::optional<OpenProgram> source; // outlives a failure, for the screenshot
    try {
        const auto from = depart(stage, trip, source);
        source.reset();
        recorded = kindNames[from.row.kind];
        if (trip.home)
            home = arrive(stage, trip, from, trip.back ? *trip.back : trip.source, trip.home);
        if (trip.other)
            away =
                trip.other->name + QStringLiteral(": ") + arrive(stage, trip, from, *trip.other, trip.away);
    } catch (const StepFailure &failure) {
        stage.saveScreenshot(QStringLiteral("failed-") + trip.source.package);
        ADD_FAILURE() << trip.source.name.toStdString() << ", " << trip.kind.toStdString() << ": "
                      << failure.why.toStdString();
    }
    std::printf("| %s %s | %s | %s | %s | %s |\n", qUtf8Printable(trip.source.name),
                qUtf8Printable(installedVersion(trip.source)), qUtf8Printable(trip.kind),
                qUtf8Printable(recorded), qUtf8Printable(home), qUtf8Printable(away));
}

void travelByClipboard(Stage &stage, const Trip &trip)
{
    std::optional<OpenProgram> target; // both outlive a failure, for the screenshot
    std::optional<OpenProgram> source;
    try {
        target.emplace(stage, *trip.other, trip.other->makeBlank(freshPath(stage)));
        target->becomeReady();
        const auto from = depart(stage, trip, source);
        source.reset();
        require(stage.desktop.activate(target->window),
                trip.other->name + QStringLiteral(" did not become active"));
        target->press({QStringLiteral("Ctrl+V")});
        if (trip.recorded != 3)
            target->awaitPaste();
        trip.away(*target, from.original);
    } catch (const StepFailure &failure) {
        stage.saveScreenshot(QStringLiteral("failed-clipboard-") + trip.source.package);
        ADD_FAILURE() << trip.source.name.toStdString() << ", " << trip.kind.toStdString()
                      << ", by the clipboard: " << failure.why.toStdString();
    }
}

Proof savesTheSame()
{
    return [](const OpenProgram &target, const Original &original) {
        const auto last = target.saved([&](const QByteArray &bytes) { return bytes == original.document; });
        require(last == original.document,
                QStringLiteral("%1 was saved, not %2").arg(shown(last), shown(original.document)));
    };
}

Proof copiesTheSame(const QByteArray &target, const Essence &essence)
{
    return [=](const OpenProgram &program, const Original &original) {
        const auto first = essence(original.copied.value(target));
        require(!first.isEmpty(), QStringLiteral("the first copy had no ") + QString::fromLatin1(target));
        const auto again = essence(
            program.copiedAgain(target, [&](const QByteArray &bytes) { return essence(bytes) == first; }));
        require(again == first, difference(again, first));
    };
}

Proof copiesMarked(const QByteArray &target, const QStringList &patterns)
{
    return [=](const OpenProgram &program, const Original &) {
        const auto bytes = program.copiedAgain(
            target, [&](const QByteArray &again) { return missingIn(again, patterns).isEmpty(); });
        const auto missing = missingIn(bytes, patterns);
        require(missing.isEmpty(), missing + QStringLiteral(" is not in ") +
                                       shown(bytes.mid(std::max<qsizetype>(bytes.indexOf("<body"), 0))));
    };
}

Proof savesMarked(const QStringList &patterns)
{
    return [=](const OpenProgram &program, const Original &) {
        const auto bytes =
            program.saved([&](const QByteArray &last) { return missingIn(last, patterns).isEmpty(); });
        const auto missing = missingIn(bytes, patterns);
        require(missing.isEmpty(), missing + QStringLiteral(" was not saved"));
    };
}

Proof all(const QList<Proof> &proofs)
{
    return [=](const OpenProgram &program, const Original &original) {
        for (const auto &proof : proofs)
            proof(program, original);
    };
}
