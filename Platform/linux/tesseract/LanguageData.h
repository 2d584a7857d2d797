#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <vector>

// Tesseract's language data: one file a language, named by a code of its own ("ita.traineddata"). Any thread.

// A language under one of the names that it goes by.
struct DataLanguage {
    QString identifier; // BCP-47: "it", "zh-Hans"
    QString code;       // "ita", "chi_sim"

    bool operator==(const DataLanguage &) const = default;
};

// $TESSDATA_PREFIX, else where Debian keeps the data.
[[nodiscard]] QString defaultDataFolder();

// The languages of a code, none for what is no language (script detection, upright Japanese). Chinese goes by
// several names, since a region implies a script.
[[nodiscard]] QStringList identifiersOf(const QString &code);

// Whether a file is language data that today's engine reads: its table of parts is whole and names a network
// with its characters. `start` is the beginning of the file, 516 bytes or all of it.
[[nodiscard]] bool isLanguageData(const QByteArray &start, qint64 fileSize);

// The languages that a folder has data for, in the order of their codes.
[[nodiscard]] std::vector<DataLanguage> languagesIn(const QString &folder);
