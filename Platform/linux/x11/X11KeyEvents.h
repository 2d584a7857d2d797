#pragma once

#include "Platform/KeyEvents.h"

#include <QTimer>
#include <functional>
#include <memory>

class SyntheticKeys;
class X11Workspace;

// Pastes into the remembered window by typing its program's paste stroke.
class X11KeyEvents : public KeyEvents {
public:
    // `ownPrimary` puts what is on the clipboard on the primary selection too; for programs that paste that
    // one.
    X11KeyEvents(X11Workspace &desktop, std::function<void()> ownPrimary);
    ~X11KeyEvents() override;

    bool canSynthesise() const override;
    void postPaste() override;

private:
    void tryToPaste();
    [[nodiscard]] bool ownsPrimary() const;

    X11Workspace &workspace;
    const std::function<void()> ownPrimarySelection;
    std::unique_ptr<SyntheticKeys> keys; // null without an X server
    QTimer retry;
    int triesLeft = 0;
    int calmNeeded = 0; // looks in a row that find the focus there, before the stroke
    int calmLeft = 0;
    quint32 target = 0; // the window that the paste is for
    bool askedForPrimary = false;
};
