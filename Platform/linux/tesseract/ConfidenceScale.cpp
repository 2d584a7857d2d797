#include "Platform/linux/tesseract/ConfidenceScale.h"

#include <algorithm>

namespace {

constexpr qsizetype few = 2;
constexpr qsizetype notMany = 3;
constexpr double cut = 97;
constexpr double cutOfFew = 97.3;
constexpr double cutOfSigns = 97.9;
constexpr double cutOfFiguresAlone = 98; // the counts and row numbers of tables
constexpr double cutOfLettersAlone = 98.9;
constexpr double cutOfSignsAlone = 99.3;
constexpr double full = 99.5;
constexpr double cutConfidence = 0.3;

double scaled(double certainty, double limit)
{
    if (certainty <= limit)
        return std::max(0.0, cutConfidence * certainty / limit);
    return std::min(1.0, cutConfidence + (1 - cutConfidence) * (certainty - limit) / (full - limit));
}

double limitOf(const QString &text, bool isAlone)
{
    if (text.size() > notMany)
        return cut;
    if (std::none_of(text.begin(), text.end(), [](QChar c) { return c.isLetterOrNumber(); }))
        return isAlone ? cutOfSignsAlone : cutOfSigns;
    if (!isAlone)
        return text.size() <= few ? cutOfFew : cut;
    const bool hasLetters = std::any_of(text.begin(), text.end(), [](QChar c) { return c.isLetter(); });
    return hasLetters ? cutOfLettersAlone : cutOfFiguresAlone;
}

} // namespace

float confidenceOf(const QString &text, double certainty, bool isAlone)
{
    return static_cast<float>(scaled(certainty, limitOf(text, isAlone)));
}
