#pragma once

#include <QByteArray>
#include <QImage>
#include <QRectF>
#include <QString>
#include <QStringList>
#include <memory>
#include <optional>
#include <vector>

class RecognitionService;

// Turns an image into text that reads like the image: a line a visual line, a tab between columns that stand
// far apart, an empty line before a paragraph that stands apart. Without state; any thread.
namespace TextRecognizer {

// One recognised fragment: its text, trimmed and never empty, and its place in pixels of the upright image,
// origin bottom left, y up.
struct Piece {
    QString text;
    QRectF box;

    [[nodiscard]] double minX() const { return box.x(); }
    [[nodiscard]] double maxX() const { return box.x() + box.width(); }
    [[nodiscard]] double minY() const { return box.y(); }
    [[nodiscard]] double maxY() const { return box.y() + box.height(); }
    [[nodiscard]] double midY() const { return minY() + box.height() / 2; }
    [[nodiscard]] double height() const { return box.height(); }
};

// The text in an image file of any format that readImageFile knows, turned upright; empty when it holds none.
// Absent when it cannot be read or the recognition failed, which is logged. Waits for the result: seconds.
[[nodiscard]] std::optional<QString> text(const QByteArray &image, RecognitionService &service);

// The same for a decoded image that lies as an EXIF orientation from 1 to 8 says; any other is upright.
[[nodiscard]] std::optional<QString> text(const QImage &image, int orientation, RecognitionService &service);

// The languages to read, of BCP-47 identifiers: for each preferred one, and "en-US" at the end, the supported
// one that is the same, or shares language and script, or the language. Empty when nothing matches.
[[nodiscard]] QStringList languages(const QStringList &preferred, const QStringList &supported);

[[nodiscard]] QString layout(const std::vector<Piece> &pieces);

// Reads a blank image so many seconds from now on a thread of its own, so that the first real one finds the
// language data loaded. Main thread, which goes on at once.
void warmUp(double seconds, const std::shared_ptr<RecognitionService> &service);

} // namespace TextRecognizer
