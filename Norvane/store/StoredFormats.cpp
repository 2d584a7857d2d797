#include "Norvane/store/StoredFormats.h"

#include "Norvane/store/HistorySchema.h"

std::vector<ClipFormat> StoredFormats::all() const
{
    return db ? loadFormats(*db, clip) : known;
}

std::optional<QByteArray> StoredFormats::first(std::span<const std::u16string_view> types) const
{
    for (const auto type : types) {
        if (auto data = db ? loadFormat(*db, clip, type) : dataOfType(known, type))
            return data;
    }
    return std::nullopt;
}
