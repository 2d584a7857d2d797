#pragma once

#include "Platform/Log.h"

#include <QStringList>
#include <mutex>

// Keeps the log lines of a test from standard error. Any thread may log meanwhile.
class LogLines {
public:
    LogLines()
    {
        setLogSink([this](const QString &line) {
            const std::lock_guard lock(mutex);
            lines << line;
        });
    }
    ~LogLines() { setLogSink({}); }
    LogLines(const LogLines &) = delete;
    LogLines &operator=(const LogLines &) = delete;

    [[nodiscard]] qsizetype count() const { return all().size(); }
    [[nodiscard]] bool mention(const QString &word) const { return !all().filter(word).isEmpty(); }
    [[nodiscard]] std::string text() const { return all().join(u'\n').toStdString(); }
    [[nodiscard]] QStringList all() const
    {
        const std::lock_guard lock(mutex);
        return lines;
    }

    QStringList lines; // while nobody else logs

private:
    mutable std::mutex mutex;
};
