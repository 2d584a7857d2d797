#include "Platform/linux/tesseract/PageReader.h"

#include "Platform/linux/tesseract/BlockPicture.h"
#include "Platform/linux/tesseract/Fragments.h"
#include "Platform/linux/tesseract/IconRemover.h"
#include "Platform/linux/tesseract/LineEraser.h"
#include "Platform/linux/tesseract/Overlays.h"
#include "Platform/linux/tesseract/PagePictures.h"
#include "Platform/linux/tesseract/PhotoNormalizer.h"
#include "Platform/linux/tesseract/PictureKind.h"
#include "Platform/linux/tesseract/SurfaceNormalizer.h"
#include "Platform/linux/tesseract/TextEngine.h"
#include "Platform/linux/tesseract/WordSpacing.h"

// What stays loaded from one picture to the next.
struct PageReader::Engine {
    std::unique_ptr<TextEngine> text;
};

namespace {

using Lines = std::vector<EngineLine>;
using StageObserver = std::function<void(const QString &, const QImage &)>;

// Now and then the engine leaves out a line in the middle of a column.
std::vector<TextLine> linesWithoutWords(const TextBlock &block, const Lines &read)
{
    constexpr std::size_t minBlobs = 4;
    std::vector<TextLine> missed;
    if (block.lines.size() < 2)
        return missed;
    for (const TextLine &line : block.lines) {
        const QRectF box(line.box.left, line.box.top, line.box.width, line.box.height);
        const bool isRead = std::any_of(read.begin(), read.end(), [&box](const EngineLine &candidate) {
            return std::any_of(candidate.words.begin(), candidate.words.end(),
                               [&box](const EngineWord &word) { return box.contains(word.box.center()); });
        });
        std::size_t blobs = 0;
        for (const TextWord &word : line.words)
            blobs += word.blobs.size();
        if (!isRead && blobs >= minBlobs)
            missed.push_back(line);
    }
    return missed;
}

// What is left of the round corners of a hardly visible frame.
bool isFaintRemnant(const GreyPicture &normalized, const TextBlock &block)
{
    constexpr std::size_t maxBlobs = 3;
    constexpr std::uint8_t faintest = 215;
    if (block.blobs.size() > maxBlobs)
        return false;
    for (int y = block.box.top; y < block.box.bottom(); ++y) {
        const auto row = normalized.row(y).subspan(static_cast<std::size_t>(block.box.left),
                                                   static_cast<std::size_t>(block.box.width));
        if (std::any_of(row.begin(), row.end(), [](std::uint8_t value) { return value < faintest; }))
            return false;
    }
    return true;
}

struct Weight {
    qsizetype length = 0; // characters
    double certainty = 0; // summed over them

    void add(const EngineWord &word)
    {
        length += word.text.size();
        certainty += word.certainty * static_cast<double>(word.text.size());
    }
    [[nodiscard]] double average() const { return length > 0 ? certainty / static_cast<double>(length) : 0; }
};

void moveBy(EngineLine &line, int x, int y)
{
    line.box.translate(x, y);
    for (EngineWord &word : line.words)
        word.box.translate(x, y);
}

// Takes what was read in an overlay, unless it is doubtful or the same place was read better already.
void preferOverlay(Lines &lines, EngineLine overlay)
{
    constexpr qsizetype minLength = 4;
    constexpr double minCertainty = 98;
    Weight now;
    QRectF box;
    for (const EngineWord &word : overlay.words) {
        now.add(word);
        box = box.united(word.box);
    }
    if (now.length < minLength || now.average() < minCertainty)
        return;
    const auto isThere = [&box](const EngineWord &word) { return box.contains(word.box.center()); };
    Weight before;
    for (const EngineLine &line : lines) {
        for (const EngineWord &word : line.words) {
            if (isThere(word))
                before.add(word);
        }
    }
    if (before.length >= now.length && before.average() >= now.average())
        return;
    for (EngineLine &line : lines)
        std::erase_if(line.words, isThere);
    lines.push_back(std::move(overlay));
}

bool isShort(const EngineLine &line)
{
    constexpr qsizetype fewCharacters = 3;
    qsizetype length = 0;
    for (const EngineWord &word : line.words)
        length += word.text.size();
    return length <= fewCharacters;
}

// One picture on its way through the stages.
class PageRun {
public:
    PageRun(TextEngine &textEngine, const ColorPicture &subject, const std::function<bool()> &expired,
            const StageObserver &observer)
        : engine(textEngine), picture(subject), isExpired(expired), onStage(observer)
    {
    }

    // Absent when the time is over or the engine failed.
    std::optional<Lines> read()
    {
        auto lines = readGround();
        return lines ? readOverlays(std::move(*lines)) : lines;
    }

private:
    std::optional<Lines> readGround()
    {
        const Evenness evenness = evennessOf(picture);
        if (pictureKind(picture, evenness, 1) == PictureKind::photo)
            return readPhoto();
        const Surfaces surfaces = findSurfaces(picture);
        if (pictureKind(picture, evenness, surfaces.share) == PictureKind::photo)
            return readPhoto();
        return readScreenshot(surfaces);
    }

    std::optional<Lines> readPhoto()
    {
        const GreyPicture even = normalizePhoto(picture);
        show("photo", even);
        return isExpired() ? std::nullopt : engine.read(even, PictureLayout::page, isExpired);
    }

    std::optional<Lines> readScreenshot(const Surfaces &surfaces)
    {
        show("surfaces", surfaces.marks, 255);
        GreyPicture normalized = normalizeSurfaces(picture, surfaces);
        show("normalized", normalized);
        if (isExpired())
            return std::nullopt;
        GreyPicture erased = eraseLines(normalized);
        show("without-lines", normalized);
        BlobMap map = findBlobs(normalized);
        findFrameParts(std::move(erased), map);
        return readBlocks(normalized, map, findColumns(normalized, map));
    }

    // What programs wrote onto photographs, in place of what else was read there.
    std::optional<Lines> readOverlays(Lines lines)
    {
        for (const Overlay &overlay : findOverlays(picture)) {
            show("overlay", overlay.picture);
            BlobMap map = findBlobs(overlay.picture);
            std::vector<TextBlock> blocks = findColumns(overlay.picture, map);
            std::erase_if(blocks, [](const TextBlock &block) { return block.blobs.size() < 4; });
            auto read = readBlocks(overlay.picture, map, blocks);
            if (!read)
                return std::nullopt;
            for (EngineLine &line : *read) {
                moveBy(line, overlay.box.left, overlay.box.top);
                preferOverlay(lines, std::move(line));
            }
        }
        return lines;
    }

    std::vector<TextBlock> findColumns(const GreyPicture &normalized, BlobMap &map) const
    {
        std::vector<TextLine> lines = findLines(map);
        removeIcons(map, lines);
        attachSmallParts(map, lines);
        removeIconsOfPieces(map, lines);
        std::vector<TextBlock> blocks = findBlocks(map, lines);
        if (onStage)
            onStage(QStringLiteral("blocks"), outlined(normalized, lines, blocks));
        return blocks;
    }

    std::optional<Lines> readBlocks(const GreyPicture &normalized, const BlobMap &map,
                                    const std::vector<TextBlock> &blocks)
    {
        Lines lines;
        for (const TextBlock &block : blocks) {
            if (isExpired())
                return std::nullopt;
            if (isFaintRemnant(normalized, block))
                continue;
            auto read = readBlock(normalized, map, block, PictureLayout::oneBlock);
            if (!read)
                return std::nullopt;
            for (const TextLine &missed : linesWithoutWords(block, *read)) {
                auto again = readBlock(normalized, map, blockOf(map, {missed}), PictureLayout::oneLine);
                if (!again)
                    return std::nullopt;
                std::move(again->begin(), again->end(), std::back_inserter(*read));
            }
            std::move(read->begin(), read->end(), std::back_inserter(lines));
        }
        return lines;
    }

    // In pixels of the whole picture.
    std::optional<Lines> readBlock(const GreyPicture &normalized, const BlobMap &map, const TextBlock &block,
                                   PictureLayout layout)
    {
        const BlockPicture cut = cutBlock(normalized, map, block);
        auto lines = engine.read(cut.picture, layout, isExpired);
        if (!lines)
            return lines;
        correctSpacing(cut.picture, *lines);
        const bool isAlone = std::all_of(lines->begin(), lines->end(), isShort);
        for (EngineLine &line : *lines) {
            line.letterHeight = 1.3 * block.letterHeight;
            line.isAlone = isAlone;
            for (EngineWord &word : line.words)
                word.box = cut.placeOf(word.box);
        }
        return lines;
    }

    void show(const char *stage, const GreyPicture &shown, int factor = 1) const
    {
        if (onStage)
            onStage(QString::fromLatin1(stage), imageOf(shown, factor));
    }

    TextEngine &engine;
    const ColorPicture &picture;
    const std::function<bool()> &isExpired;
    const StageObserver &onStage;
};

} // namespace

PageReader::PageReader(std::unique_ptr<Engine> loaded) : engine(std::move(loaded)) {}
PageReader::~PageReader() = default;

std::unique_ptr<PageReader> PageReader::open(const QString &dataFolder, const QStringList &codes)
{
    auto text = TextEngine::open(dataFolder, codes);
    if (!text)
        return nullptr;
    return std::unique_ptr<PageReader>(new PageReader(std::make_unique<Engine>(Engine{std::move(text)})));
}

std::optional<std::vector<RecognizedFragment>> PageReader::read(const QImage &upright,
                                                                const std::function<bool()> &isExpired)
{
    QImage image = readableCopy(upright);
    if (image.isNull())
        return std::vector<RecognizedFragment>{};
    const QSize size = image.size();
    const int margin = needsMargin(image) ? smallMargin : 0;
    if (margin > 0)
        image = withMargin(image);
    const ColorPicture picture = colorPicture(image);
    auto lines = PageRun(*engine->text, picture, isExpired, onStage).read();
    if (!lines)
        return std::nullopt;
    for (EngineLine &line : *lines) {
        for (EngineWord &word : line.words)
            word.box = word.box.translated(-margin, -margin) & QRectF(QPointF(), size);
    }
    return makeFragments(*lines, size);
}
