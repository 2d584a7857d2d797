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

// The bytes that one capture may keep: maxClipMB mebibytes, at least one.
[[nodiscard]] qint64 captureByteBudget(qint64 maxClipMB);

// Turns one state of the pasteboard into a capture; absent when it is not to be recorded. Any thread.
//
// A type that was offered without bytes counts where the mere offer decides (private markers, picture, styled
// text) and gives no format. Text that is not valid UTF-8 is read as Latin-1. Where text was offered and none
// of it arrived, the copy is recorded only if a picture arrived: an unknown text can be neither shown nor
// told apart.
[[nodiscard]] std::optional<CapturedClip> captureFrom(const PasteboardSnapshot &pasteboard,
                                                      const std::optional<FrontApplication> &frontApp,
                                                      const CaptureSettings &prefs);
