#pragma once

#include "Norvane/store/Clip.h"

#include <span>

class Database;

// The stored formats of one clip, read when they are asked for. Lives no longer than the connection it reads
// from, and on its thread.
class StoredFormats {
public:
    StoredFormats(Database &connection, qint64 id) : db(&connection), clip(id) {}

    // Of a clip whose formats are in memory.
    explicit StoredFormats(std::vector<ClipFormat> formats) : known(std::move(formats)) {}

    // In their order.
    [[nodiscard]] std::vector<ClipFormat> all() const;

    // The bytes of the first format of the first of these types that has one. The others are not read.
    [[nodiscard]] std::optional<QByteArray> first(std::span<const std::u16string_view> types) const;

private:
    Database *db = nullptr;
    qint64 clip = 0;
    std::vector<ClipFormat> known;
};
