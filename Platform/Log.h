#pragma once

#include <QString>
#include <functional>

// The system log: one line on standard error, which the session's journal keeps. Any thread.
//
// Log lines are for developers, in English, and never hold anything that was copied: no text, no target
// names, no document addresses.
void logLine(const QString &line);

// Sends log lines to `sink` instead, until an empty one is set. For tests, from the main thread.
void setLogSink(std::function<void(const QString &)> sink);
