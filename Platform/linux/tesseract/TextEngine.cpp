#include "Platform/linux/tesseract/TextEngine.h"

#include "Platform/Log.h"

#include <QFile>
#include <leptonica/allheaders.h>
#include <tesseract/baseapi.h>
#include <tesseract/ocrclass.h>
#include <tesseract/resultiterator.h>

namespace {

// Tells the engine a height of letters to expect; it does not change what is read (measured 150 to 300).
constexpr int assumedResolution = 150;

tesseract::PageSegMode segmentation(PictureLayout layout)
{
    switch (layout) {
    case PictureLayout::page:
        return tesseract::PSM_AUTO;
    case PictureLayout::oneBlock:
        return tesseract::PSM_SINGLE_BLOCK;
    case PictureLayout::oneLine:
        return tesseract::PSM_SINGLE_LINE;
    }
    return tesseract::PSM_AUTO;
}

bool askWhetherExpired(void *isExpired, int /*wordsRead*/)
{
    return (*static_cast<const std::function<bool()> *>(isExpired))();
}

std::optional<QRectF> boxAt(const tesseract::ResultIterator &it, tesseract::PageIteratorLevel level)
{
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;
    if (it.Empty(level) || !it.BoundingBox(level, &left, &top, &right, &bottom))
        return std::nullopt;
    return QRectF(QPointF(left, top), QPointF(right, bottom));
}

QString takeText(char *text)
{
    const std::unique_ptr<char[]> owned(text);
    return QString::fromUtf8(owned.get()).trimmed();
}

} // namespace

TextEngine::TextEngine() : api(std::make_unique<tesseract::TessBaseAPI>()) {}

TextEngine::~TextEngine()
{
    api->End();
}

std::unique_ptr<TextEngine> TextEngine::open(const QString &dataFolder, const QStringList &codes)
{
    setMsgSeverity(L_SEVERITY_NONE);
    std::unique_ptr<TextEngine> engine(new TextEngine);
    const std::vector<std::string> names{"debug_file"};
    const std::vector<std::string> values{"/dev/null"};
    const QByteArray languages = codes.join(u'+').toUtf8();
    if (codes.isEmpty() ||
        engine->api->Init(QFile::encodeName(dataFolder).constData(), languages.constData(),
                          tesseract::OEM_LSTM_ONLY, nullptr, 0, &names, &values, false) != 0) {
        logLine(QStringLiteral("No data for reading text in images could be loaded"));
        return nullptr;
    }
    // The pictures it gets are always dark on white.
    engine->api->SetVariable("tessedit_do_invert", "0");
    return engine;
}

std::optional<std::vector<EngineLine>> TextEngine::read(const GreyPicture &picture, PictureLayout layout,
                                                        const std::function<bool()> &isExpired)
{
    api->SetPageSegMode(segmentation(layout));
    api->SetImage(picture.pixels.data(), picture.width, picture.height, 1, picture.width);
    api->SetSourceResolution(assumedResolution);
    tesseract::ETEXT_DESC monitor;
    // The engine's interface takes a plain pointer that may change what it points to.
    auto ask = isExpired;
    monitor.cancel = &askWhetherExpired;
    monitor.cancel_this = &ask;
    std::optional<std::vector<EngineLine>> lines;
    if (api->Recognize(&monitor) == 0 && !isExpired())
        lines = collectLines();
    api->Clear();
    return lines;
}

std::vector<EngineLine> TextEngine::collectLines()
{
    std::vector<EngineLine> lines;
    const std::unique_ptr<tesseract::ResultIterator> it(api->GetIterator());
    if (!it)
        return lines;
    do {
        const auto box = boxAt(*it, tesseract::RIL_SYMBOL);
        if (!box)
            continue;
        if (it->IsAtBeginningOf(tesseract::RIL_TEXTLINE) || lines.empty())
            lines.push_back({boxAt(*it, tesseract::RIL_TEXTLINE).value_or(*box), {}, 0});
        auto &words = lines.back().words;
        // The figure of a whole word is its worst character's, and punishes what is in no dictionary.
        if (it->IsAtBeginningOf(tesseract::RIL_WORD) || words.empty())
            words.push_back({takeText(it->GetUTF8Text(tesseract::RIL_WORD)),
                             0,
                             boxAt(*it, tesseract::RIL_WORD).value_or(*box),
                             {}});
        EngineWord &word = words.back();
        const auto before = static_cast<double>(word.symbols.size());
        const double certainty = it->Confidence(tesseract::RIL_SYMBOL);
        word.certainty = (word.certainty * before + certainty) / (before + 1);
        word.symbols.push_back({takeText(it->GetUTF8Text(tesseract::RIL_SYMBOL)), box->left(), box->right()});
    } while (it->Next(tesseract::RIL_SYMBOL));
    return lines;
}
