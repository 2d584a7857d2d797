#pragma once

#include "Norvane/store/Clip.h"
#include "Platform/Pasteboard.h"

inline constexpr int thumbnailMaxPixels = 256;

// The settings that a capture depends on, as a value for the worker.
struct CaptureSettings {
    bool saveFiles = true;
    bool saveImages = true;
    qint64 maxClipMB = 32;
};

// Turns one state of the pasteboard into a capture; absent when it is not to be recorded. Any thread.
[[nodiscard]] std::optional<CapturedClip> captureFrom(const PasteboardSnapshot &pasteboard,
                                                      const std::optional<FrontApplication> &frontApp,
                                                      const CaptureSettings &prefs);
