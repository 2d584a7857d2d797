#include "Platform/linux/tesseract/ConfidenceScale.h"

#include <algorithm>

namespace {

constexpr double cutOfShort = 60;
constexpr double cutOfLong = 45; // what is read where nothing is, is short
constexpr qsizetype minLong = 8;
constexpr double full = 96;
constexpr double cutConfidence = 0.3;
constexpr double minCertaintyOfSigns = 85;
constexpr double minCertaintyOfTwo = 75;
constexpr float doubtful = 0.25F; // below the cut, whatever the engine says

double scaled(double certainty, double cut)
{
    if (certainty <= cut)
        return std::max(0.0, cutConfidence * certainty / cut);
    return std::min(1.0, cutConfidence + (1 - cutConfidence) * (certainty - cut) / (full - cut));
}

} // namespace

float confidenceOf(const QString &text, double certainty)
{
    const double cut = text.size() >= minLong ? cutOfLong : cutOfShort;
    const auto confidence = static_cast<float>(scaled(certainty, cut));
    const bool onlySigns =
        std::none_of(text.begin(), text.end(), [](QChar c) { return c.isLetterOrNumber(); });
    const bool tooShort = (onlySigns && text.size() <= 3 && certainty < minCertaintyOfSigns) ||
                          (text.size() <= 2 && certainty < minCertaintyOfTwo);
    return tooShort ? std::min(confidence, doubtful) : confidence;
}
