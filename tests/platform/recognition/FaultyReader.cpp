// A reader that does what hostile images and damaged language data do to a real one. Linked into the
// recognition process in place of the real reader; the image's colour and the language say what happens.

#include "Platform/linux/tesseract/Explain.h"
#include "Platform/linux/tesseract/PageReader.h"

#include <csignal>
#include <cstdlib>
#include <limits>
#include <unistd.h>

struct PageReader::Engine {
    QStringList codes;
};

PageReader::PageReader(std::unique_ptr<Engine> loaded) : engine(std::move(loaded)) {}

PageReader::~PageReader() = default;

std::unique_ptr<PageReader> PageReader::open(const QString &, const QStringList &codes)
{
    if (codes.contains(QStringLiteral("deu")))
        std::abort();
    if (codes == QStringList(QStringLiteral("fra")))
        return nullptr;
    return std::unique_ptr<PageReader>(new PageReader(std::make_unique<Engine>(Engine{codes})));
}

std::optional<std::vector<RecognizedFragment>> PageReader::read(const QImage &upright,
                                                                const std::function<bool()> &isExpired)
{
    const QColor colour = upright.pixelColor(0, 0);
    const QString text = engine->codes.join(u'+');
    if (colour == Qt::red) {
        for (volatile bool forever = true; forever;) {
        }
    }
    if (colour == Qt::yellow) {
        while (!isExpired()) {
        }
        return std::nullopt;
    }
    if (colour == Qt::blue)
        std::abort();
    if (colour == Qt::green)
        std::raise(SIGKILL);
    if (colour == Qt::black)
        (void)std::vector<char>(size_t{2} << 30, 'x').size();
    if (colour == Qt::magenta) {
        [[maybe_unused]] const auto sent = ::write(3, "\x08\0\0\0garbage!", 12);
    }
    if (colour == Qt::cyan)
        return {{{text, std::numeric_limits<float>::quiet_NaN(), QRectF(0, 0, 1, 1)}}};
    if (colour == Qt::gray)
        return {{{text, 1, QRectF(0, 0, 1e9, 1)}}};
    return {{{text, 1, QRectF(0, 0, 1, 1)}}};
}

// It has no stages to show.
bool explain(PageReader &, const QImage &, const QString &)
{
    return false;
}
