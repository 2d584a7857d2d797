#include "Platform/linux/tesseract/Fragments.h"

#include "Platform/linux/tesseract/ConfidenceScale.h"

namespace {

constexpr double maxGap = 1.5;

// Words that stand together, and what they add up to.
struct Gathered {
    QString text;
    QRectF box;
    double certainty = 0; // summed over characters
    double height = 0;    // of the tallest word
    qsizetype length = 0; // characters

    void add(const RecognizedWord &word)
    {
        text += (text.isEmpty() ? QString() : QStringLiteral(" ")) + word.text;
        box = box.isNull() ? word.box : box.united(word.box);
        certainty += word.certainty * static_cast<double>(word.text.size());
        height = std::max(height, word.box.height());
        length += word.text.size();
    }
    [[nodiscard]] bool isFollowedBy(const RecognizedWord &word) const
    {
        return !word.beginsLine &&
               word.box.left() - box.right() <= maxGap * std::max(height, word.box.height());
    }
};

} // namespace

std::vector<RecognizedFragment> makeFragments(const std::vector<RecognizedWord> &words, QSize picture)
{
    std::vector<RecognizedFragment> fragments;
    Gathered current;
    const auto finish = [&] {
        if (current.length == 0)
            return;
        const QRectF &box = current.box;
        fragments.push_back({current.text,
                             confidenceOf(current.text, current.certainty / static_cast<double>(current.length)),
                             QRectF(box.left() / picture.width(), 1 - box.bottom() / picture.height(),
                                    box.width() / picture.width(), box.height() / picture.height())});
        current = {};
    };
    for (const RecognizedWord &word : words) {
        if (word.text.isEmpty())
            continue;
        if (current.length > 0 && !current.isFollowedBy(word))
            finish();
        current.add(word);
    }
    finish();
    return fragments;
}
