#include "Platform/linux/tesseract/WordSpacing.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr std::uint8_t clearInk = 170; // leaves out the soft edges that enlarging makes wider
constexpr std::size_t minBlanks = 2;   // to know how wide one is in this line
constexpr double surelyNone = 0.55;    // of the usual blank: no blank
constexpr double surelyBlank = 0.8;    // of the usual blank: a blank, whatever the engine says

struct Gap {
    double left = 0;
    double right = 0;
    [[nodiscard]] double width() const { return right - left; }
    [[nodiscard]] double centre() const { return (left + right) / 2; }
};

// Columns of a line without ink, and the ink at its foot.
class LineProfile {
public:
    LineProfile(const GreyPicture &picture, const QRectF &box)
        : left(std::clamp(static_cast<int>(box.left()), 0, picture.width)),
          bottom(std::clamp(static_cast<int>(box.bottom()), 0, picture.height)),
          lowest(static_cast<std::size_t>(std::clamp(static_cast<int>(box.right()) + 1, left, picture.width) - left), 0),
          highest(lowest.size(), picture.height)
    {
        for (int y = std::clamp(static_cast<int>(box.top()), 0, bottom); y < bottom; ++y) {
            const auto row = picture.row(y).subspan(static_cast<std::size_t>(left), lowest.size());
            for (std::size_t x = 0; x < row.size(); ++x) {
                if (row[x] >= clearInk)
                    continue;
                lowest[x] = y + 1;
                highest[x] = std::min(highest[x], y);
            }
        }
    }

    // The widest white between two places, of width 0 when there is none.
    [[nodiscard]] Gap widestGap(double from, double to) const
    {
        Gap widest;
        std::size_t begin = 0;
        for (std::size_t x = 0; x <= lowest.size(); ++x) {
            if (x < lowest.size() && lowest[x] == 0)
                continue;
            const Gap gap{static_cast<double>(left) + static_cast<double>(begin),
                          static_cast<double>(left) + static_cast<double>(x)};
            if (gap.width() > widest.width() && gap.centre() > from && gap.centre() < to)
                widest = gap;
            begin = x + 1;
        }
        return widest;
    }

    // Whether most columns between two places have ink below that row only.
    [[nodiscard]] bool isUnderscored(double from, double to, double below) const
    {
        const auto first = static_cast<std::size_t>(std::max(0.0, from - left));
        const auto end = std::min(lowest.size(), static_cast<std::size_t>(std::max(0.0, to - left)));
        std::size_t underscored = 0;
        for (std::size_t x = first; x < end; ++x)
            underscored += lowest[x] > 0 && highest[x] >= below ? 1U : 0U;
        return end > first && 5 * underscored >= 3 * (end - first);
    }

private:
    int left;
    int bottom;
    std::vector<int> lowest;  // one below the lowest ink of a column, 0 without any
    std::vector<int> highest; // row of its highest ink
};

double usualBlank(const EngineLine &line, const LineProfile &profile)
{
    std::vector<double> widths;
    for (std::size_t i = 1; i < line.words.size(); ++i) {
        const auto &before = line.words[i - 1].symbols;
        const auto &after = line.words[i].symbols;
        const double width = profile.widestGap(before.back().centre(), after.front().centre()).width();
        if (width > 0)
            widths.push_back(width);
    }
    if (widths.size() < minBlanks)
        return 0;
    const auto middle = widths.begin() + static_cast<std::ptrdiff_t>(widths.size() / 2);
    std::nth_element(widths.begin(), middle, widths.end());
    return *middle;
}

// Builds the words of a line anew, symbol by symbol.
class WordBuilder {
public:
    void begin(const EngineWord &from, double left)
    {
        finish();
        current.certainty = from.certainty;
        current.box = QRectF(left, from.box.top(), 0, from.box.height());
    }
    void add(const EngineWord &from, const EngineSymbol &symbol)
    {
        const auto length = static_cast<double>(current.symbols.size());
        current.certainty = (current.certainty * length + from.certainty) / (length + 1);
        current.text += symbol.text;
        current.symbols.push_back(symbol);
        current.box = current.box.united(QRectF(current.box.left(), from.box.top(), symbol.right - current.box.left(),
                                                from.box.height()));
    }
    void endAt(double right) { current.box.setRight(std::max(current.box.left(), right)); }
    void finish()
    {
        if (!current.symbols.empty())
            words.push_back(std::exchange(current, {}));
        current = {};
    }
    std::vector<EngineWord> words;

private:
    EngineWord current;
};

// The symbols of a line with the word each is in.
struct Placed {
    const EngineWord *word;
    const EngineSymbol *symbol;
    bool beginsWord;
};

std::vector<Placed> placedSymbols(const EngineLine &line)
{
    std::vector<Placed> placed;
    for (const EngineWord &word : line.words) {
        for (const EngineSymbol &symbol : word.symbols)
            placed.push_back({&word, &symbol, &symbol == &word.symbols.front()});
    }
    return placed;
}

} // namespace

void correctSpacing(const GreyPicture &picture, EngineLine &line)
{
    for (const EngineWord &word : line.words) {
        if (word.symbols.empty())
            return;
    }
    const LineProfile profile(picture, line.box);
    const double blank = usualBlank(line, profile);
    if (blank <= 0)
        return;
    WordBuilder builder;
    const std::vector<Placed> placed = placedSymbols(line);
    for (std::size_t i = 0; i < placed.size(); ++i) {
        const Placed &now = placed[i];
        if (i == 0) {
            builder.begin(*now.word, now.word->box.left());
            builder.add(*now.word, *now.symbol);
            continue;
        }
        const Placed &before = placed[i - 1];
        const Gap gap = profile.widestGap(before.symbol->centre(), now.symbol->centre());
        const bool isUnderscore =
            now.beginsWord && gap.width() < surelyNone * blank &&
            profile.isUnderscored(before.word->box.right(), now.word->box.left(),
                                  line.box.bottom() - 0.3 * line.box.height());
        if (isUnderscore)
            builder.add(*now.word, {QStringLiteral("_"), before.symbol->right, now.symbol->left});
        else if (gap.width() >= (now.beginsWord ? surelyNone : surelyBlank) * blank) {
            builder.endAt(gap.left);
            builder.begin(*now.word, gap.right);
        }
        builder.add(*now.word, *now.symbol);
    }
    builder.endAt(line.words.back().box.right());
    builder.finish();
    line.words = std::move(builder.words);
}
