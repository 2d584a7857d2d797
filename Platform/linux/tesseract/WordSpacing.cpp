#include "Platform/linux/tesseract/WordSpacing.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <numbers>
#include <optional>
#include <utility>

namespace {

constexpr std::uint8_t clearInk = 205; // leaves out most of the soft edges that enlarging makes wider
constexpr double minBlank = 0.86;      // of the letters' distance; a colon has 0.8 beside it

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
          lowest(static_cast<std::size_t>(std::clamp(static_cast<int>(box.right()) + 1, left, picture.width) -
                                          left),
                 0),
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

    // The white between the letters, from left to right.
    [[nodiscard]] std::vector<Gap> gaps() const
    {
        std::vector<Gap> found;
        std::size_t begin = 0;
        for (std::size_t x = 0; x <= lowest.size(); ++x) {
            if (x < lowest.size() && lowest[x] == 0)
                continue;
            if (x > begin && begin > 0 && x < lowest.size())
                found.push_back({static_cast<double>(left) + static_cast<double>(begin),
                                 static_cast<double>(left) + static_cast<double>(x)});
            begin = x + 1;
        }
        return found;
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

// Symbols of a line in one row, with the word each is in.
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

// For each symbol but the first the gap before it, of width 0 where there is none. The engine's places are
// rough: a gap belongs to the blank of the engine that is next to it, and only else to the nearest symbol.
std::vector<Gap> gapsBefore(const std::vector<Placed> &placed, std::vector<Gap> gaps, double reach)
{
    std::vector<Gap> result(placed.size());
    const auto between = [&placed](std::size_t i) {
        return (placed[i - 1].symbol->right + placed[i].symbol->left) / 2;
    };
    for (std::size_t i = 1; i < placed.size(); ++i) {
        if (!placed[i].beginsWord)
            continue;
        auto widest = gaps.end();
        for (auto gap = gaps.begin(); gap != gaps.end(); ++gap) {
            const bool isNear = gap->right > between(i) - reach && gap->left < between(i) + reach;
            if (isNear && (widest == gaps.end() || gap->width() > widest->width()))
                widest = gap;
        }
        if (widest == gaps.end())
            continue;
        result[i] = *widest;
        gaps.erase(widest);
    }
    for (const Gap &gap : gaps) {
        std::size_t nearest = 0;
        for (std::size_t i = 1; i < placed.size(); ++i) {
            if (nearest == 0 ||
                std::abs(between(i) - gap.centre()) < std::abs(between(nearest) - gap.centre()))
                nearest = i;
        }
        if (nearest > 0 && !placed[nearest].beginsWord && gap.width() > result[nearest].width())
            result[nearest] = gap;
    }
    return result;
}

// A line of the engine with what its picture shows.
struct MeasuredLine {
    EngineLine *line;
    LineProfile profile;
    std::vector<Gap> gaps;
};

bool hasEmptySymbol(const EngineWord &word)
{
    return word.symbols.empty() ||
           std::any_of(word.symbols.begin(), word.symbols.end(),
                       [](const EngineSymbol &symbol) { return symbol.text.isEmpty(); });
}

// How far apart the letters of a typewriter font are: absent for other fonts. The middles of the letters then
// stand at equal distances; small hinted letters of other fonts come near that, so the agreement has to be
// good over many letters.
std::optional<double> pitchOf(const std::vector<MeasuredLine> &lines)
{
    constexpr std::size_t minLetters = 24;
    constexpr double minAgreement = 0.86;
    std::size_t letters = 0;
    double height = 0;
    for (const MeasuredLine &measured : lines) {
        letters += measured.gaps.size();
        height = std::max(height, measured.line->box.height());
    }
    if (letters < minLetters)
        return std::nullopt;
    double best = 0;
    double agreement = minAgreement;
    for (double pitch = 0.45 * height; pitch < height; pitch *= 1.003) {
        double total = 0;
        for (const MeasuredLine &measured : lines) {
            double cosine = 0;
            double sine = 0;
            for (std::size_t i = 1; i < measured.gaps.size(); ++i) {
                const double turn =
                    std::numbers::pi * (measured.gaps[i - 1].right + measured.gaps[i].left) / pitch;
                cosine += std::cos(turn);
                sine += std::sin(turn);
            }
            total += std::hypot(cosine, sine);
        }
        const double share = total / static_cast<double>(letters - lines.size());
        if (share > agreement) {
            agreement = share;
            best = pitch;
        }
    }
    return best > 0 ? std::optional(best) : std::nullopt;
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
        current.box = current.box.united(
            QRectF(current.box.left(), from.box.top(), symbol.right - current.box.left(), from.box.height()));
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

// Whether there is a blank between two symbols with that gap between them.
using BlankRule = std::function<bool(const Placed &before, const Placed &after, double gap)>;

BlankRule typewriterRule(double pitch)
{
    return [pitch](const Placed &, const Placed &, double gap) { return gap >= minBlank * pitch; };
}

bool isWordCharacter(const QString &symbol)
{
    return !symbol.isEmpty() &&
           (symbol.front().isLetterOrNumber() || symbol.front().category() == QChar::Symbol_Currency);
}

// The engine's own blanks, and those it lost: where two characters of words are much farther apart than
// letters are in this line. Figures are not asked: a 1 has much white beside it.
BlankRule usualRule(const MeasuredLine &measured)
{
    constexpr double minPart = 0.2;  // of the line's height
    constexpr double minTimes = 2.5; // of the usual white between letters
    std::vector<double> widths;
    for (const Gap &gap : measured.gaps)
        widths.push_back(gap.width());
    const auto middle = widths.begin() + static_cast<std::ptrdiff_t>(widths.size() / 2);
    std::nth_element(widths.begin(), middle, widths.end());
    const double limit = std::max(minPart * measured.line->box.height(), minTimes * *middle);
    return [limit](const Placed &before, const Placed &after, double gap) {
        if (after.beginsWord)
            return true;
        const QString &left = before.symbol->text;
        const QString &right = after.symbol->text;
        return gap >= limit && isWordCharacter(left) && isWordCharacter(right) &&
               !(left.front().isDigit() && right.front().isDigit());
    };
}

void setBlanks(MeasuredLine &measured, const BlankRule &isBlank)
{
    EngineLine &line = *measured.line;
    const std::vector<Placed> placed = placedSymbols(line);
    const std::vector<Gap> before = gapsBefore(placed, measured.gaps, 0.35 * line.box.height());
    WordBuilder builder;
    builder.begin(line.words.front(), line.words.front().box.left());
    builder.add(line.words.front(), *placed.front().symbol);
    for (std::size_t i = 1; i < placed.size(); ++i) {
        const Placed &now = placed[i];
        const Placed &last = placed[i - 1];
        if (isBlank(last, now, before[i].width())) {
            const bool hasGap = before[i].width() > 0;
            builder.endAt(hasGap ? before[i].left : last.symbol->right);
            builder.begin(*now.word, hasGap ? before[i].right : now.symbol->left);
        } else if (now.beginsWord && last.symbol->text != u'_' && now.symbol->text != u'_' &&
                   measured.profile.isUnderscored(last.word->box.right(), now.word->box.left(),
                                                  line.box.bottom() - 0.3 * line.box.height())) {
            builder.add(*now.word, {QStringLiteral("_"), last.symbol->right, now.symbol->left});
        }
        builder.add(*now.word, *now.symbol);
    }
    builder.endAt(line.words.back().box.right());
    builder.finish();
    line.words = std::move(builder.words);
}

// Figures stand at equal distances in other fonts too, and so do letters now and then by chance: there must
// be enough letters, and most blanks of the engine as wide as a letter.
bool isTypewriterFont(const std::vector<MeasuredLine> &lines, double pitch)
{
    std::size_t symbols = 0;
    std::size_t figures = 0;
    std::size_t blanks = 0;
    std::size_t wide = 0;
    for (const MeasuredLine &measured : lines) {
        const std::vector<Placed> placed = placedSymbols(*measured.line);
        const std::vector<Gap> before = gapsBefore(placed, measured.gaps, 0.35 * measured.line->box.height());
        for (std::size_t i = 0; i < placed.size(); ++i) {
            ++symbols;
            figures += placed[i].symbol->text.front().isDigit() ? 1U : 0U;
            if (i > 0 && placed[i].beginsWord) {
                ++blanks;
                wide += before[i].width() >= minBlank * pitch ? 1U : 0U;
            }
        }
    }
    return 2 * figures < symbols && 2 * wide >= blanks;
}

} // namespace

void correctSpacing(const GreyPicture &picture, std::vector<EngineLine> &lines)
{
    std::vector<MeasuredLine> measured;
    for (EngineLine &line : lines) {
        const bool isComplete =
            !line.words.empty() && std::none_of(line.words.begin(), line.words.end(), hasEmptySymbol);
        if (!isComplete)
            continue;
        LineProfile profile(picture, line.box);
        std::vector<Gap> gaps = profile.gaps();
        if (!gaps.empty())
            measured.push_back({&line, std::move(profile), std::move(gaps)});
    }
    auto pitch = pitchOf(measured);
    if (pitch && !isTypewriterFont(measured, *pitch))
        pitch.reset();
    for (MeasuredLine &line : measured)
        setBlanks(line, pitch ? typewriterRule(*pitch) : usualRule(line));
}
