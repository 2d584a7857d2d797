#include "Norvane/capture/FileAddress.h"

#include <QStringDecoder>

std::optional<QString> readablePath(const QByteArray &fileAddress)
{
    constexpr qsizetype schemeLength = 5; // "file:"
    const QByteArray address = fileAddress.trimmed();
    if (address.left(schemeLength).toLower() != "file:")
        return std::nullopt;
    QByteArrayView rest = QByteArrayView(address).sliced(schemeLength);
    if (rest.startsWith("//")) {
        // Who the host is does not matter here: the path is what the user sees.
        const auto pathStart = rest.toByteArray().indexOf('/', 2);
        rest = pathStart < 0 ? QByteArrayView() : rest.sliced(pathStart);
    }
    for (const char end : {'?', '#'}) { // a query or fragment is no part of the path
        if (const auto at = rest.toByteArray().indexOf(end); at >= 0)
            rest.truncate(at);
    }
    const QByteArray path = QByteArray::fromPercentEncoding(rest.toByteArray());
    if (!path.startsWith('/'))
        return std::nullopt;

    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString text = decoder(path);
    if (!decoder.hasError() && !path.contains('\0'))
        return text;
    return QString(QStringLiteral("file://") + QString::fromLatin1(path.toPercentEncoding("/")));
}
