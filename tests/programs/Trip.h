#pragma once

#include "tests/programs/Program.h"

#include <QMap>
#include <functional>

// What a copy was before it went through the history.
struct Original {
    QString file;                        // that it was copied from
    QByteArray document;                 // what that file held
    QMap<QByteArray, QByteArray> copied; // by target, as the program gave it
};

// Throws StepFailure when what was pasted is not what was copied.
using Proof = std::function<void(const OpenProgram &, const Original &)>;

// A row of the table: one kind of copy of one program, on its way through the history back into the same
// program and into another one. The copying program has ended before anything is pasted.
struct Trip {
    QString kind; // as the table of results calls it
    const Program &source;
    std::function<QString(const QString &path)> makeDocument; // as Program::makeBlank
    int recorded = 0;                                         // the clip's kind, as HistoryFile::Row
    QString words;          // found in the panel by these; empty: chosen by its place in the list
    QList<QByteArray> kept; // the targets that a proof wants to compare
    Proof home;             // back in the same program; none: the program takes no paste
    const Program *other = nullptr;
    Proof away;                    // in the other one
    const Program *back = nullptr; // what `home` pastes into, where the source copies in a manner of its own
};

// The names of GoogleTest's parameters.
void PrintTo(const Trip &trip, std::ostream *out);

// Goes the whole way and adds a failure of the running test for each part that went wrong. Prints the row of
// the table of results.
void travel(Stage &stage, const Trip &trip);

// The other way: the program ends while its copy is the newest, and the copy is pasted with Ctrl+V into
// `other`, which was open before. Nobody looks into the history.
void travelByClipboard(Stage &stage, const Trip &trip);

// --- proofs

// The saved file holds exactly the original document.
[[nodiscard]] Proof savesTheSame();

// Copied again, the target has the bytes of the first copy, or the same essence: what counts of them.
using Essence = std::function<QByteArray(const QByteArray &)>;
[[nodiscard]] Proof copiesTheSame(const QByteArray &target, const Essence &essence = std::identity());

// Copied again, and saved: the bytes, read as text, have a match for each of these regular expressions.
[[nodiscard]] Proof copiesMarked(const QByteArray &target, const QStringList &patterns);
[[nodiscard]] Proof savesMarked(const QStringList &patterns);

// One after the other.
[[nodiscard]] Proof all(const QList<Proof> &proofs);
