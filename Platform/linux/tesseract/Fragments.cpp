#include "Platform/linux/tesseract/Fragments.h"

#include "Platform/linux/tesseract/ConfidenceScale.h"

#include <utility>

namespace {

constexpr double maxGap = 1.5;

// Words that stand together, and what they add up to.
struct Gathered {
    QString text;
    QRectF box;
    double certainty = 0; // summed over characters
    double height = 0;    // of the tallest word, or of the line's letters
    qsizetype length = 0; // characters

    void add(const EngineWord &word)
    {
        text += (text.isEmpty() ? QString() : QStringLiteral(" ")) + word.text;
        box = box.isNull() ? word.box : box.united(word.box);
        certainty += word.certainty * static_cast<double>(word.text.size());
        height = std::max(height, word.box.height());
        length += word.text.size();
    }
    [[nodiscard]] bool isFollowedBy(const EngineWord &word) const
    {
        return word.box.left() - box.right() <= maxGap * std::max(height, word.box.height());
    }
};

RecognizedFragment fragmentOf(const Gathered &gathered, bool isAlone, QSize picture)
{
    const QRectF &box = gathered.box;
    return {gathered.text,
            confidenceOf(gathered.text, gathered.certainty / static_cast<double>(gathered.length), isAlone),
            QRectF(box.left() / picture.width(), 1 - box.bottom() / picture.height(),
                   box.width() / picture.width(), box.height() / picture.height())};
}

} // namespace

std::vector<RecognizedFragment> makeFragments(const std::vector<EngineLine> &lines, QSize picture)
{
    std::vector<RecognizedFragment> fragments;
    for (const EngineLine &line : lines) {
        Gathered current;
        current.height = line.letterHeight;
        for (const EngineWord &word : line.words) {
            if (word.text.isEmpty())
                continue;
            if (current.length > 0 && !current.isFollowedBy(word)) {
                fragments.push_back(fragmentOf(std::exchange(current, {}), line.isAlone, picture));
                current.height = line.letterHeight;
            }
            current.add(word);
        }
        if (current.length > 0)
            fragments.push_back(fragmentOf(current, line.isAlone, picture));
    }
    return fragments;
}
