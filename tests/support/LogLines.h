#pragma once

#include "Platform/Log.h"

#include <QStringList>

// Keeps the log lines of a test from standard error.
class LogLines {
public:
    LogLines()
    {
        setLogSink([this](const QString &line) { lines.append(line); });
    }
    ~LogLines() { setLogSink({}); }
    LogLines(const LogLines &) = delete;
    LogLines &operator=(const LogLines &) = delete;

    QStringList lines;
};
