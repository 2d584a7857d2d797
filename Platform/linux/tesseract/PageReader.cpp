#include "Platform/linux/tesseract/PageReader.h"

#include "Platform/linux/tesseract/PagePictures.h"
#include "Platform/linux/tesseract/TextEngine.h"

#include "Platform/linux/tesseract/BlockPicture.h"
#include "Platform/linux/tesseract/IconRemover.h"
#include "Platform/linux/tesseract/LineEraser.h"
#include "Platform/linux/tesseract/PhotoNormalizer.h"
#include "Platform/linux/tesseract/PictureKind.h"
#include "Platform/linux/tesseract/SurfaceNormalizer.h"

// What stays loaded from one picture to the next.
struct PageReader::Engine {
    std::unique_ptr<TextEngine> text;
};

namespace {

using Words = std::vector<RecognizedWord>;
using StageObserver = std::function<void(const QString &, const QImage &)>;

// One picture on its way through the stages.
class PageRun {
public:
    PageRun(TextEngine &textEngine, const ColorPicture &subject, const std::function<bool()> &expired,
            const StageObserver &observer)
        : engine(textEngine), picture(subject), isExpired(expired), onStage(observer)
    {
    }

    // Absent when the time is over or the engine failed.
    std::optional<Words> read()
    {
        const double equalNeighbours = equalNeighbourShare(picture);
        if (pictureKind(equalNeighbours, 1) == PictureKind::photo)
            return readPhoto();
        const Surfaces surfaces = findSurfaces(picture);
        if (pictureKind(equalNeighbours, surfaces.share) == PictureKind::photo)
            return readPhoto();
        return readScreenshot(surfaces);
    }

private:
    std::optional<Words> readPhoto()
    {
        const GreyPicture even = normalizePhoto(picture);
        show("photo", even);
        Words words;
        if (isExpired() || !engine.read(even, PictureLayout::page, {}, isExpired, words))
            return std::nullopt;
        return words;
    }

    std::optional<Words> readScreenshot(const Surfaces &surfaces)
    {
        show("surfaces", surfaces.marks, 255);
        GreyPicture normalized = normalizeSurfaces(picture, surfaces);
        show("normalized", normalized);
        if (isExpired())
            return std::nullopt;
        eraseLines(normalized);
        show("without-lines", normalized);
        const BlobMap map = findBlobs(normalized);
        std::vector<TextLine> lines = findLines(map);
        removeIcons(map, lines);
        attachSmallParts(map, lines);
        const std::vector<TextBlock> blocks = findBlocks(map, lines);
        if (onStage)
            onStage(QStringLiteral("blocks"), outlined(normalized, lines, blocks));
        return readBlocks(normalized, map, blocks);
    }

    std::optional<Words> readBlocks(const GreyPicture &normalized, const BlobMap &map,
                                    const std::vector<TextBlock> &blocks)
    {
        Words words;
        for (const TextBlock &block : blocks) {
            if (isExpired())
                return std::nullopt;
            const BlockPicture cut = cutBlock(normalized, map, block);
            const PictureFrame frame{QPointF(cut.source.left, cut.source.top),
                                     static_cast<double>(cut.border), 1.0 / cut.scale};
            if (!engine.read(cut.picture, PictureLayout::oneBlock, frame, isExpired, words))
                return std::nullopt;
        }
        return words;
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
    const QImage image = readableCopy(upright);
    if (image.isNull())
        return std::vector<RecognizedFragment>{};
    const ColorPicture picture = colorPicture(image);
    const auto words = PageRun(*engine->text, picture, isExpired, onStage).read();
    if (!words)
        return std::nullopt;
    return makeFragments(*words, image.size());
}
