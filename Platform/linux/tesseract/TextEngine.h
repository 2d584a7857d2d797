#pragma once

#include "Platform/linux/tesseract/Fragments.h"
#include "Platform/linux/tesseract/Pixels.h"

#include <functional>
#include <memory>
#include <optional>

namespace tesseract {
class TessBaseAPI;
}

// What the engine is told about the picture it gets.
enum class PictureLayout {
    page,   // find columns and lines yourself
    oneBlock // one column of lines
};

// Where a picture that the engine gets lies in the upright picture: pixel p of it is `origin + (p - border) *
// step` there.
struct PictureFrame {
    QPointF origin;
    double border = 0;
    double step = 1;
};

// Tesseract with its languages loaded. Belongs to one thread.
class TextEngine {
public:
    // See PageReader::open.
    [[nodiscard]] static std::unique_ptr<TextEngine> open(const QString &dataFolder,
                                                          const QStringList &codes);
    ~TextEngine();

    // Adds the words of a picture to `words`. False when `isExpired` became true or the engine failed: then
    // what was added counts for nothing.
    [[nodiscard]] bool read(const GreyPicture &picture, PictureLayout layout, const PictureFrame &frame,
                            const std::function<bool()> &isExpired, std::vector<RecognizedWord> &words);

private:
    TextEngine();
    void collectWords(const PictureFrame &frame, std::vector<RecognizedWord> &words);

    std::unique_ptr<tesseract::TessBaseAPI> api;
};
