#pragma once

#include "Platform/Accessibility.h"
#include "Platform/Appearance.h"
#include "Platform/ApplicationInstance.h"
#include "Platform/DesktopEntries.h"
#include "Platform/HotKeys.h"
#include "Platform/KeyEvents.h"
#include "Platform/KeyboardLayout.h"
#include "Platform/PanelSurface.h"
#include "Platform/Pasteboard.h"
#include "Platform/RecognitionService.h"
#include "Platform/Screens.h"
#include "Platform/StatusItem.h"
#include "Platform/UserDefaults.h"
#include "Platform/Workspace.h"

#include <memory>

// Every service of one desktop. None is null: a desktop that lacks one has one that says so. Members are
// destroyed in reverse order, so that what uses another stands after it.
struct Platform {
    std::unique_ptr<UserDefaults> defaults;
    std::shared_ptr<DesktopEntries> desktopEntries;
    std::unique_ptr<KeyboardLayout> keyboardLayout;
    std::unique_ptr<Workspace> workspace;
    std::unique_ptr<Pasteboard> pasteboard;
    std::unique_ptr<HotKeys> hotKeys;
    std::unique_ptr<PanelSurface> panelSurface;
    std::unique_ptr<KeyEvents> keyEvents;
    std::unique_ptr<Screens> screens;
    std::unique_ptr<Accessibility> accessibility;
    std::unique_ptr<StatusItem> statusItem;
    std::unique_ptr<Appearance> appearance;
    std::shared_ptr<RecognitionService> recognition;
};
