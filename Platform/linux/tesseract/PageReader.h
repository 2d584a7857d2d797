#pragma once

#include "Platform/RecognitionService.h"

#include <QImage>
#include <functional>
#include <memory>

// Finds and reads the text of one picture after the other with Tesseract. Belongs to the thread that opened
// it; runs in the recognition's own process, since damaged language data ends a process.
class PageReader {
public:
    // Loads the data of these languages, Tesseract's codes ("ita"), main one first, from a folder of
    // *.traineddata files. Null, with a log line, when not one of them can be loaded.
    [[nodiscard]] static std::unique_ptr<PageReader> open(const QString &dataFolder,
                                                          const QStringList &codes);
    ~PageReader();

    // The fragments of an upright picture of any size, best guess each; what is transparent counts as white.
    // `isExpired` is asked often; once it is true the reading ends without a result. Absent then, and when
    // the engine fails.
    [[nodiscard]] std::optional<std::vector<RecognizedFragment>> read(const QImage &upright,
                                                                      const std::function<bool()> &isExpired);

    // Developers' view: is given the picture that each stage of the reading leaves behind.
    std::function<void(const QString &stage, const QImage &picture)> onStage;

private:
    struct Engine;
    explicit PageReader(std::unique_ptr<Engine> loaded);
    std::unique_ptr<Engine> engine;
};
