#include "Vesmo/TextRecognizer.h"

#include "Platform/Log.h"
#include "Platform/RecognitionService.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QLocale>
#include <QThread>
#include <QTimer>
#include <QTransform>
#include <algorithm>
#include <cmath>
#include <numeric>

namespace TextRecognizer {

namespace {

constexpr float leastConfidence = 0.3F;
constexpr double columnGap = 1.5;    // of a line's height: farther apart are columns, or paragraphs
constexpr double paragraphGap = 1.6; // of the usual gap between lines
constexpr QSize blankSize(64, 32);

QString trimmedBlanks(const QString &text)
{
    const auto isBlank = [](QChar c) { return c == u' ' || c == u'\t'; };
    const auto first = std::find_if_not(text.begin(), text.end(), isBlank);
    const auto last = std::find_if_not(text.rbegin(), std::make_reverse_iterator(first), isBlank).base();
    return text.mid(first - text.begin(), last - first);
}

std::vector<Piece> piecesOf(const RecognizedImage &image)
{
    const double width = image.uprightSize.width();
    const double height = image.uprightSize.height();
    std::vector<Piece> pieces;
    for (const auto &fragment : image.fragments) {
        if (fragment.confidence < leastConfidence)
            continue;
        const QString text = trimmedBlanks(fragment.text);
        if (text.isEmpty())
            continue;
        pieces.push_back({text, QRectF(fragment.box.x() * width, fragment.box.y() * height,
                                       fragment.box.width() * width, fragment.box.height() * height)});
    }
    return pieces;
}

struct Line {
    std::vector<Piece> pieces; // the first one found is the line's reference
    double minY = 0;
    double maxY = 0;
    double height = 0; // of the highest piece

    explicit Line(const Piece &first)
        : pieces{first}, minY(first.minY()), maxY(first.maxY()), height(first.height())
    {
    }

    [[nodiscard]] bool takes(const Piece &piece) const
    {
        return piece.midY() >= pieces.front().minY() && piece.midY() <= pieces.front().maxY();
    }

    void add(const Piece &piece)
    {
        pieces.push_back(piece);
        minY = std::min(minY, piece.minY());
        maxY = std::max(maxY, piece.maxY());
        height = std::max(height, piece.height());
    }

    [[nodiscard]] QString text() const
    {
        std::vector<Piece> ordered = pieces;
        std::ranges::stable_sort(ordered, {}, &Piece::minX);
        QString text = ordered.front().text;
        for (size_t i = 1; i < ordered.size(); ++i) {
            const bool isColumn = ordered[i].minX() - ordered[i - 1].maxX() > columnGap * height;
            text += (isColumn ? u'\t' : u' ') + ordered[i].text;
        }
        return text;
    }
};

std::vector<Line> linesOf(std::vector<Piece> pieces)
{
    std::ranges::stable_sort(pieces, std::greater(), &Piece::midY);
    std::vector<Line> lines;
    for (const auto &piece : pieces) {
        if (!lines.empty() && lines.back().takes(piece))
            lines.back().add(piece);
        else
            lines.emplace_back(piece);
    }
    return lines;
}

// From 1.6 times the usual gap on; the lower of the two in the middle is the usual one.
double paragraphThreshold(std::vector<double> gaps)
{
    if (gaps.empty())
        return 0;
    const auto middle = gaps.begin() + static_cast<std::ptrdiff_t>((gaps.size() + 1) / 2 - 1);
    std::nth_element(gaps.begin(), middle, gaps.end());
    return paragraphGap * *middle;
}

struct Identifier {
    QString language;
    QString script;
};

Identifier parsed(const QString &identifier)
{
    const auto consistsOfLetters = [](const QString &part) {
        return std::ranges::all_of(part, [](QChar c) { return c.isLetter() && c.unicode() < 0x80; });
    };
    const QStringList parts = QString(identifier).replace(u'_', u'-').split(u'-');
    const QString &first = parts.front();
    if (first.size() < 2 || first.size() > 8 || first.size() == 4 || !consistsOfLetters(first))
        return {identifier, {}};
    const bool hasScript = parts.size() > 1 && parts[1].size() == 4 && consistsOfLetters(parts[1]);
    return {first, hasScript ? parts[1] : QString()};
}

QString match(const QString &candidate, const QStringList &supported)
{
    if (supported.contains(candidate))
        return candidate;
    const auto [language, script] = parsed(candidate);
    const auto first = [&supported](const auto &condition) {
        const auto found = std::ranges::find_if(supported, condition);
        return found == supported.end() ? QString() : *found;
    };
    if (!script.isEmpty()) {
        const QString prefix = language + u'-' + script;
        const QString found = first([&prefix](const QString &each) { return each.startsWith(prefix); });
        if (!found.isEmpty())
            return found;
    }
    const QString prefix = language + u'-';
    return first([&language = language, &prefix](const QString &each) {
        return each == language || each.startsWith(prefix);
    });
}

// What turns the stored picture upright, by its EXIF orientation.
QTransform uprightTurn(int orientation)
{
    constexpr int turns[] = {0, 0, 180, 180, 270, 90, 90, 270}; // after the mirroring
    constexpr bool mirrored[] = {false, true, false, true, true, false, true, false};
    if (orientation < 1 || orientation > 8)
        return {};
    QTransform turn;
    turn.rotate(turns[orientation - 1]);
    if (mirrored[orientation - 1])
        turn = QTransform::fromScale(-1, 1) * turn;
    return turn;
}

QByteArray bitmap(const QImage &image)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG", 100); // uncompressed: it is read once, at once
    return bytes;
}

QImage blankImage()
{
    QImage image(blankSize, QImage::Format_RGBA8888_Premultiplied);
    image.fill(Qt::white);
    return image;
}

} // namespace

std::optional<QString> text(const QByteArray &image, RecognitionService &service)
{
    const QStringList wanted = languages(QLocale::system().uiLanguages(), service.supportedLanguages());
    QString error;
    const auto recognized = service.recognize(image, wanted, &error);
    if (!recognized) {
        if (!error.isEmpty())
            logLine(QStringLiteral("Text recognition failed: ") + error);
        return std::nullopt;
    }
    return layout(piecesOf(*recognized));
}

std::optional<QString> text(const QImage &image, int orientation, RecognitionService &service)
{
    return text(bitmap(image.transformed(uprightTurn(orientation))), service);
}

QStringList languages(const QStringList &preferred, const QStringList &supported)
{
    QStringList chosen;
    for (const auto &candidate : preferred + QStringList(QStringLiteral("en-US"))) {
        const QString found = match(candidate, supported);
        if (!found.isEmpty() && !chosen.contains(found))
            chosen << found;
    }
    return chosen;
}

QString layout(const std::vector<Piece> &pieces)
{
    const std::vector<Line> lines = linesOf(pieces);
    std::vector<double> gaps;
    for (size_t i = 1; i < lines.size(); ++i)
        gaps.push_back(lines[i - 1].minY - lines[i].maxY);
    const double threshold = paragraphThreshold(gaps);
    QStringList text;
    for (size_t i = 0; i < lines.size(); ++i) {
        if (i > 0 && gaps[i - 1] > columnGap * lines[i].height && gaps[i - 1] > threshold)
            text << QString();
        text << lines[i].text();
    }
    return text.join(u'\n');
}

void warmUp(double seconds, const std::shared_ptr<RecognitionService> &service)
{
    const int delay = static_cast<int>(std::lround(seconds * 1000));
    QTimer::singleShot(delay, qApp, [service] {
        auto *thread = QThread::create([service] {
            if (!service->supportedLanguages().isEmpty())
                (void)text(blankImage(), 1, *service);
        });
        QObject::connect(thread, &QThread::finished, thread, &QObject::deleteLater);
        QObject::connect(qApp, &QCoreApplication::aboutToQuit, thread, [thread, service] {
            service->cancel();
            thread->wait();
        });
        thread->start(QThread::LowestPriority);
    });
}

} // namespace TextRecognizer
