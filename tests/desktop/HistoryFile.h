#pragma once

#include <QByteArray>
#include <QString>
#include <optional>
#include <vector>

// The history as it stands in its file, read by somebody else's SQLite connection: what is really recorded.
class HistoryFile {
public:
    struct Row {
        qint64 id = 0;
        int kind = 0; // 0 text, 1 styled text, 2 image, 3 files
        QString text;
        bool pinned = false;
        QString application;
        std::optional<QString> recognized; // of an image that was read
    };

    explicit HistoryFile(QString path) : file(std::move(path)) {}

    // Newest first. Absent while there is no readable file.
    [[nodiscard]] std::optional<std::vector<Row>> rows() const;

    // Whether any clip, in its text or in any kept format, holds these bytes.
    [[nodiscard]] bool holds(const QByteArray &bytes) const;

private:
    QString file;
};
