#include "Platform/linux/x11/TextEncoding.h"

#include <QString>
#include <QStringConverter>
#include <QUtf8StringView>
#include <algorithm>

namespace {

bool isAscii(const QByteArray &bytes)
{
    return std::all_of(bytes.cbegin(), bytes.cend(), [](char byte) { return (byte & 0x80) == 0; });
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
    // U+00FF is 0xC3 0xBF: a higher lead byte begins a character beyond Latin-1.
    const bool low = std::none_of(utf8.cbegin(), utf8.cend(), [](char byte) { return quint8(byte) > 0xC3; });
    return low && QUtf8StringView(utf8).isValidUtf8();
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
