#pragma once

#include "Norvane/PopupController.h"
#include "Norvane/PopupPanel.h"
#include "Norvane/app/Preferences.h"
#include "Norvane/store/ClipStore.h"
#include "Platform/memory/MemoryPlatform.h"
#include "tests/support/Captures.h"

#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

// A desktop in memory, its services by the names of those that steer them.
struct MemoryDesktop : ::testing::Test {
    QTemporaryDir folder;
    std::unique_ptr<Platform> platform = makeMemoryPlatform();
    MemoryPasteboard &pasteboard = static_cast<MemoryPasteboard &>(*platform->pasteboard);
    MemoryPanelSurface &surface = static_cast<MemoryPanelSurface &>(*platform->panelSurface);
    MemoryScreens &screens = static_cast<MemoryScreens &>(*platform->screens);
    MemoryWorkspace &workspace = static_cast<MemoryWorkspace &>(*platform->workspace);
    MemoryAccessibility &accessibility = static_cast<MemoryAccessibility &>(*platform->accessibility);
    MemoryAppearance &appearance = static_cast<MemoryAppearance &>(*platform->appearance);
    MemoryKeyEvents &keyEvents = static_cast<MemoryKeyEvents &>(*platform->keyEvents);
    MemoryStatusItem &item = static_cast<MemoryStatusItem &>(*platform->statusItem);
    Preferences prefs{*platform->defaults};
};

// A history and the panel that shows it.
struct MemoryPanel : MemoryDesktop {
    ClipPointer addText(const QString &text) { return store.add(textCapture(text)); }
    ClipPointer addImage() { return store.add(imageCapture("image", {10, 10})); }

    double age = 0; // of clips at their capture
    ClipStore store{folder.path(), [this] { return secondsSinceReferenceDate() - age; }};
    PopupController popup{{store, prefs, pasteboard, surface, screens, workspace, *platform->desktopEntries}};
    PopupPanel &panel = popup.window();
};
