#include "Platform/linux/tesseract/RecognitionProtocol.h"

#include <QDataStream>
#include <QIODevice>
#include <algorithm>
#include <cmath>

namespace RecognitionProtocol {

namespace {

constexpr quint32 helloKind = 0x4e565201; // of this build's protocol: another one is refused
constexpr quint32 loadKind = 2, loadedKind = 3, readKind = 4, answerKind = 5;
constexpr int mostSide = 1'000'000; // pixels
constexpr quint32 mostFragments = 200'000;
constexpr qsizetype longestFragment = 100'000; // UTF-16 units

class Writer {
public:
    explicit Writer(quint32 kind) : stream(&bytes, QIODevice::WriteOnly)
    {
        stream.setVersion(QDataStream::Qt_6_0);
        stream << kind;
    }

    template <typename Value>
    Writer &operator<<(const Value &value)
    {
        stream << value;
        return *this;
    }
    [[nodiscard]] QByteArray frame() const { return bytes; }

private:
    QByteArray bytes;
    QDataStream stream;
};

class Reader {
public:
    Reader(const QByteArray &frame, quint32 kind) : stream(frame)
    {
        stream.setVersion(QDataStream::Qt_6_0);
        isOfKind = value<quint32>() == kind;
    }

    template <typename Value>
    [[nodiscard]] Value value()
    {
        Value read{};
        stream >> read;
        return read;
    }
    [[nodiscard]] bool isGood() const { return isOfKind && stream.status() == QDataStream::Ok; }
    [[nodiscard]] bool isWhole() const { return isGood() && stream.atEnd(); }

private:
    QDataStream stream;
    bool isOfKind = false;
};

bool isText(const QString &text)
{
    return text.size() <= longestFragment && text.isValidUtf16() &&
           std::ranges::none_of(text, [](QChar c) { return c.unicode() < 0x20 && c != u'\t'; });
}

bool isPart(double value)
{
    constexpr double tolerance = 0.01; // of a box at the image's edge
    return std::isfinite(value) && value >= -tolerance && value <= 1 + tolerance;
}

bool isSound(const RecognizedFragment &fragment)
{
    const QRectF &box = fragment.box;
    return isText(fragment.text) && fragment.confidence >= 0 && fragment.confidence <= 1 && isPart(box.x()) &&
           isPart(box.y()) && isPart(box.width()) && isPart(box.height());
}

RecognizedFragment fragmentOf(Reader &reader)
{
    RecognizedFragment fragment;
    fragment.text = reader.value<QString>();
    fragment.confidence = reader.value<float>();
    fragment.box = reader.value<QRectF>();
    return fragment;
}

} // namespace

QByteArray encoded(const Hello &)
{
    return Writer(helloKind).frame();
}

QByteArray encoded(const LoadRequest &request)
{
    return (Writer(loadKind) << request.dataFolder << request.codes).frame();
}

QByteArray encoded(const LoadAnswer &answer)
{
    return (Writer(loadedKind) << answer.isLoaded).frame();
}

QByteArray encoded(const ReadRequest &request)
{
    return (Writer(readKind) << request.cpuMilliseconds).frame();
}

QByteArray encoded(const ReadAnswer &answer)
{
    Writer writer(answerKind);
    writer << static_cast<quint8>(answer.outcome) << answer.image.uprightSize
           << static_cast<quint32>(answer.image.fragments.size());
    for (const auto &fragment : answer.image.fragments)
        writer << fragment.text << fragment.confidence << fragment.box;
    return writer.frame();
}

template <>
std::optional<Hello> decoded(const QByteArray &frame)
{
    return Reader(frame, helloKind).isWhole() ? std::optional(Hello()) : std::nullopt;
}

template <>
std::optional<LoadRequest> decoded(const QByteArray &frame)
{
    Reader reader(frame, loadKind);
    LoadRequest request;
    request.dataFolder = reader.value<QString>();
    request.codes = reader.value<QStringList>();
    return reader.isWhole() ? std::optional(request) : std::nullopt;
}

template <>
std::optional<LoadAnswer> decoded(const QByteArray &frame)
{
    Reader reader(frame, loadedKind);
    const LoadAnswer answer{reader.value<bool>()};
    return reader.isWhole() ? std::optional(answer) : std::nullopt;
}

template <>
std::optional<ReadRequest> decoded(const QByteArray &frame)
{
    Reader reader(frame, readKind);
    const ReadRequest request{reader.value<qint64>()};
    return reader.isWhole() ? std::optional(request) : std::nullopt;
}

template <>
std::optional<ReadAnswer> decoded(const QByteArray &frame)
{
    Reader reader(frame, answerKind);
    const auto outcome = reader.value<quint8>();
    ReadAnswer answer{static_cast<Outcome>(outcome), {reader.value<QSize>(), {}}};
    const QSize size = answer.image.uprightSize;
    const auto count = reader.value<quint32>();
    const bool isSensible =
        answer.outcome == Outcome::read
            ? !size.isEmpty() && std::max(size.width(), size.height()) <= mostSide && count <= mostFragments
            : outcome <= static_cast<quint8>(Outcome::failed) && count == 0;
    if (!reader.isGood() || !isSensible)
        return std::nullopt;
    for (quint32 i = 0; i < count; ++i) {
        answer.image.fragments.push_back(fragmentOf(reader));
        if (!reader.isGood() || !isSound(answer.image.fragments.back()))
            return std::nullopt;
    }
    return reader.isWhole() ? std::optional(std::move(answer)) : std::nullopt;
}

} // namespace RecognitionProtocol
