#include "Platform/linux/x11/TextEncoding.h"

#include <QString>
#include <QStringConverter>
#include <QUtf8StringView>
#include <algorithm>
#include <cstring>

namespace {

// Whether any byte is this one or a higher one, of those from 0x80 on. Eight at a time: texts have hundreds
// of megabytes.
template <quint8 first>
bool hasByteFrom(QByteArrayView bytes)
{
    constexpr quint64 each = 0x0101010101010101, low = 0x7f * each, toOverflow = (0x100 - first) * each;
    qsizetype at = 0;
    for (; at + 8 <= bytes.size(); at += 8) {
        quint64 word = 0;
        std::memcpy(&word, bytes.data() + at, 8);
        if (((word & low) + toOverflow) & word & ~low)
            return true;
    }
    return std::any_of(bytes.begin() + at, bytes.end(), [](char byte) { return quint8(byte) >= first; });
}

bool isAscii(QByteArrayView bytes)
{
    return !hasByteFrom<0x80>(bytes);
}

} // namespace

QByteArray utf8FromUnlabelled(const QByteArray &bytes)
{
    if (QUtf8StringView(bytes).isValidUtf8())
        return bytes;
    return QString::fromLatin1(bytes).toUtf8();
}

std::optional<QByteArray> utf8FromCharset(const QByteArray &bytes, const QByteArray &charset)
{
    const auto encoding = QStringConverter::encodingForName(charset.constData());
    if (!encoding)
        return std::nullopt;
    if (*encoding == QStringConverter::Utf8)
        return bytes;
    QStringDecoder decoder(*encoding);
    const QString text = decoder.decode(bytes);
    if (decoder.hasError())
        return std::nullopt;
    return text.toUtf8();
}

bool fitsLatin1(const QByteArray &utf8)
{
    // U+00FF is 0xC3 0xBF: a higher lead byte begins a character beyond Latin-1. Most large texts are ASCII,
    // and whoever asks for one waits for the answer.
    return isAscii(utf8) || (!hasByteFrom<0xC4>(utf8) && QUtf8StringView(utf8).isValidUtf8());
}

QByteArray latin1FromUtf8(const QByteArray &utf8)
{
    return isAscii(utf8) ? utf8 : QString::fromUtf8(utf8).toLatin1();
}

bool isBlank(const QByteArray &utf8)
{
    const auto first = std::find_if(utf8.cbegin(), utf8.cend(), [](char byte) {
        return !(byte == ' ' || (byte >= '\t' && byte <= '\r'));
    });
    if (first == utf8.cend())
        return true;
    if ((*first & 0x80) == 0)
        return *first == '\0' && utf8.size() == 1;
    const auto rest = QByteArrayView(utf8).sliced(first - utf8.cbegin());
    return QString::fromUtf8(rest).trimmed().isEmpty(); // other scripts' spaces
}
