#pragma once

#include <QByteArray>
#include <QRectF>
#include <QSize>
#include <QString>
#include <QStringList>
#include <optional>
#include <vector>

// One piece of text that was read in an image.
struct RecognizedFragment {
    QString text;
    float confidence = 0; // 0 to 1; below 0.3 it is more likely wrong than right
    QRectF box;           // parts of the upright image's width and height, origin bottom left, y up
};

struct RecognizedImage {
    QSize uprightSize;                         // pixels, after the turn that the image's orientation asks for
    std::vector<RecognizedFragment> fragments; // in reading order
};

// Reads the text in images. Any thread; the calls may take seconds and are served one after the other.
class RecognitionService {
public:
    virtual ~RecognitionService() = default;

    // Languages that can be read, as BCP-47 identifiers ("it", "zh-Hans"); none while nothing can be read, be
    // it for lack of language data or of what reads.
    [[nodiscard]] virtual QStringList supportedLanguages() = 0;

    // Reads an image file of any format that the program records, turned upright by its EXIF orientation. Of
    // the languages, main one first, those that are supported count. Absent for bytes that are no image, and
    // with the reason in `error` when the recognition failed on a good one.
    [[nodiscard]] virtual std::optional<RecognizedImage>
    recognize(const QByteArray &image, const QStringList &languages, QString *error) = 0;

    // Ends the recognition under way, which is absent then, and refuses every later one: the program is
    // ending.
    virtual void cancel() = 0;
};
