#include "Platform/Pasteboard.h"

std::optional<QByteArray> PasteboardItem::data(QStringView type) const
{
    for (const auto &representation : representations) {
        if (representation.type == type && representation.data)
            return representation.data;
    }
    return std::nullopt;
}
