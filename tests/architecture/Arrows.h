#pragma once

#include <QString>
#include <QStringList>

// The arrows of docs/architecture.md, kept by reading every include of our own files: who may name whom, and
// where the words of a desktop (xcb, D-Bus, …) may stand. Pure functions.

// The room a file lives in, by its path from the root: "Norvane/store", "Platform/linux/x11", "Norvane" for
// the windows, "tests" for all below it, "Norvane/main.cpp" for the composition root alone. Empty outside all
// rooms.
[[nodiscard]] QString roomOf(const QString &path);

// What is wrong with one file, a sentence a fault ("Vesmo/Text.cpp:3: …"); empty when nothing is.
[[nodiscard]] QStringList faultsOf(const QString &path, const QString &text);

// The text with every comment blanked out; lines, literals and everything else stay in place.
[[nodiscard]] QString withoutComments(const QString &text);
