#pragma once

#include "Norvane/paste/PasteMode.h"
#include "Norvane/store/Clip.h"
#include "Norvane/store/NewestRequest.h"
#include "Platform/Pasteboard.h"

#include <QObject>
#include <functional>

class ClipboardMonitor;
class KeyEvents;
class Preferences;
class Workspace;

// Clears the pasteboard and writes the formats as items, grouped and ordered by their item number.
void writeFormats(const std::vector<ClipFormat> &formats, Pasteboard &pasteboard);

// Puts a chosen clip on the pasteboard and, when the user wants it, pastes it into the program in front.
// Owned by AppDelegate. Main thread.
class PasteService : public QObject {
    Q_OBJECT

public:
    struct Services {
        ClipStore &store;
        Pasteboard &pasteboard;
        ClipboardMonitor &monitor;
        Preferences &prefs;
        Workspace &workspace;
        KeyEvents &keyEvents;
    };
    explicit PasteService(const Services &services);

    // A large clip is read on a worker, and a long text converted there: then all this happens a moment after
    // the call. It does not happen where something else is chosen or copied first, or the clip is deleted.
    void paste(const ClipPointer &clip, PasteMode mode);

    // Types the paste stroke 0.05 s from now, if the settings and the desktop allow it.
    void autoPaste();

    // Keys cannot be synthesised here: called once in the life of the installation, to tell the user.
    std::function<void()> onAskAccessibility;

private:
    // What a choice puts on the pasteboard; absent when the clip is unreadable.
    using Content = std::optional<std::vector<ClipFormat>>;
    void deliver(const ClipPointer &clip, PasteMode mode, const Content &content);
    void postCommandV();

    Services services;
    NewestRequest choices;
};
