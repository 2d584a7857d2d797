#pragma once

#include "Norvane/capture/PasteboardReader.h"

#include <QObject>
#include <functional>
#include <memory>

class Preferences;

// Notices every change of the pasteboard, decides whether it is recorded and hands the capture over. Main
// thread.
//
// The byte work of a capture runs on one serial worker; captures arrive in the order of the copies.
class ClipboardMonitor : public QObject {
    Q_OBJECT

public:
    static constexpr int pollInterval = 350; // milliseconds

    ClipboardMonitor(Pasteboard &pasteboard, const Preferences &prefs);
    ~ClipboardMonitor() override; // delivers every copy read until now

    std::function<void(CapturedClip)> onCapture;

    [[nodiscard]] bool isPaused() const { return isPaused_; }
    void setPaused(bool paused);

    // Begins polling; what is on the pasteboard now is not recorded.
    void start();
    void poll();

    // Keeps what the program has just written out of the history.
    void ignoreCurrentChange();

    // Calls back when every copy made until now has been read and delivered: before this returns if so
    // already.
    void whenCaughtUp(std::function<void()> callback);

private:
    void applyPolicy(); // tells the pasteboard which bytes are worth fetching

    struct Private;
    std::unique_ptr<Private> d;
    bool isPaused_ = false;
};
