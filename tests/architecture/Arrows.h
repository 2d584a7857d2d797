#pragma once

#include <QString>
#include <QStringList>

// The arrows of docs/architecture.md, kept by reading every include of our own files: who may name whom, and
// where the words of a desktop (xcb, D-Bus, …) may stand. Pure functions.

// What is wrong with one file, a sentence a fault ("Vesmo/Text.cpp:3: …"); empty when nothing is.
[[nodiscard]] QStringList faultsOf(const QString &path, const QString &text);
