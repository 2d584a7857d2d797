#pragma once

#include "tests/support/Captures.h"

// Copies as programs make them.

inline PasteboardRepresentation form(const QString &type, const QByteArray &data)
{
    return {type, data};
}

inline PasteboardRepresentation offeredOnly(const QString &type)
{
    return {type, std::nullopt};
}

inline PasteboardItem itemOf(const QString &type, const QByteArray &data)
{
    return {{form(type, data)}};
}

inline PasteboardItem textItem(const QString &text)
{
    return itemOf(plainText, text.toUtf8());
}

inline PasteboardItem fileItem(const QByteArray &address)
{
    return itemOf(QString::fromUtf16(PasteboardType::fileURL), address);
}
