#pragma once

#include "Platform/linux/tesseract/EngineWords.h"
#include "Platform/linux/tesseract/Pixels.h"

#include <QStringList>
#include <functional>
#include <memory>
#include <optional>

namespace tesseract {
class TessBaseAPI;
}

// What the engine is told about the picture it gets.
enum class PictureLayout {
    page,     // find columns and lines yourself
    oneBlock, // one column of lines
    oneLine
};

// Tesseract with its languages loaded. Belongs to one thread.
class TextEngine {
public:
    // See PageReader::open.
    [[nodiscard]] static std::unique_ptr<TextEngine> open(const QString &dataFolder,
                                                          const QStringList &codes);
    ~TextEngine();

    // The lines of a picture, in its own pixels. Absent when `isExpired` became true or the engine failed.
    [[nodiscard]] std::optional<std::vector<EngineLine>>
    read(const GreyPicture &picture, PictureLayout layout, const std::function<bool()> &isExpired);

private:
    TextEngine();
    [[nodiscard]] std::vector<EngineLine> collectLines();

    std::unique_ptr<tesseract::TessBaseAPI> api;
};
