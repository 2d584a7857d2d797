#include "Platform/Log.h"

#include <cstdio>
#include <mutex>

namespace {

std::mutex sinkMutex;
std::function<void(const QString &)> currentSink;

} // namespace

void logLine(const QString &line)
{
    std::function<void(const QString &)> sink;
    {
        const std::lock_guard lock(sinkMutex);
        sink = currentSink;
    }
    if (sink) {
        sink(line);
        return;
    }
    const QByteArray bytes = line.toUtf8() + '\n';
    std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), stderr);
}

void setLogSink(std::function<void(const QString &)> sink)
{
    const std::lock_guard lock(sinkMutex);
    currentSink = std::move(sink);
}
