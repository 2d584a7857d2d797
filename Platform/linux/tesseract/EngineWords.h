#pragma once

#include <QRectF>
#include <QString>
#include <vector>

// What the engine reads, in pixels with the origin top left: of the picture that it was given, or of the
// whole one, whoever holds them knows.

struct EngineSymbol {
    QString text; // one character with its accents
    double left = 0;
    double right = 0;

    [[nodiscard]] double centre() const { return (left + right) / 2; }
};

struct EngineWord {
    QString text;
    double certainty = 0; // 0 to 100, of its characters on average
    QRectF box;
    std::vector<EngineSymbol> symbols;
};

struct EngineLine {
    QRectF box;
    std::vector<EngineWord> words; // from left to right
    double letterHeight = 0;       // of a capital about, 0 when unknown
    bool isAlone = false;          // one or two pieces of ink far from any other text
};
