#pragma once

#include <QLocale>
#include <QString>
#include <QStringList>

// Every text that the user sees is written as an Italian phrase, which is also the key of its translation:
//
//     L("Svuota")                              a plain phrase
//     L("%@ di %@", shown, stored)             a phrase with values
//     L("Annulla##undo")                       a phrase told apart from another use of the same word
//
// A key that is known only when the program runs: localizedString(key).
