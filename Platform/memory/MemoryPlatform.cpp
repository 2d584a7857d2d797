#include "Platform/memory/MemoryPlatform.h"

#include "Platform/KeyCodes.h"

#include <QTimer>
#include <algorithm>
#include <array>
#include <utility>

namespace {

// What the key codes 0 to 50 of the ANSI positions type; U+0000 for keys that type nothing here.
constexpr char16_t none = u'\0';
using Characters = std::array<char16_t, 51>;
constexpr Characters usCharacters{
    u'a', u's', u'd', u'f', u'h', u'g',  u'z', u'x', u'c',  u'v', none, u'b', u'q', u'w', u'e', u'r', u'y',
    u't', u'1', u'2', u'3', u'4', u'6',  u'5', u'=', u'9',  u'7', u'-', u'8', u'0', u']', u'o', u'u', u'[',
    u'i', u'p', none, u'l', u'j', u'\'', u'k', u';', u'\\', u',', u'/', u'n', u'm', u'.', none, u' ', u'`'};
constexpr Characters italianCharacters{
    u'a', u's', u'd', u'f', u'h', u'g', u'z', u'x', u'c', u'v', u'<',  u'b', u'q', u'w', u'e', u'r', u'y',
    u't', u'1', u'2', u'3', u'4', u'6', u'5', u'ì', u'9', u'7', u'\'', u'8', u'0', u'+', u'o', u'u', u'è',
    u'i', u'p', none, u'l', u'j', u'à', u'k', u'ò', u'ù', u',', u'-',  u'n', u'm', u'.', none, u' ', u'\\'};
constexpr Characters dvorakCharacters{
    u'a', u'o', u'e', u'u', u'd', u'i', u';', u'q', u'j',  u'k', none, u'x', u'\'', u',', u'.', u'p', u'f',
    u'y', u'1', u'2', u'3', u'4', u'6', u'5', u']', u'9',  u'7', u'[', u'8', u'0',  u'=', u'r', u'g', u'/',
    u'c', u'l', none, u'n', u'h', u'-', u't', u's', u'\\', u'w', u'z', u'b', u'm',  u'v', none, u' ', u'`'};

const Characters &charactersOf(MemoryKeyboardLayout::Layout layout)
{
    switch (layout) {
    case MemoryKeyboardLayout::Layout::italian:
        return italianCharacters;
    case MemoryKeyboardLayout::Layout::dvorak:
        return dvorakCharacters;
    case MemoryKeyboardLayout::Layout::us:
        break;
    }
    return usCharacters;
}

} // namespace

FrontApplication MemoryDesktopEntries::application(const WindowIdentity &window) const
{
    const auto installed = byClass.constFind(window.className);
    if (installed != byClass.cend())
        return *installed;
    if (window.className.isEmpty())
        return {};
    return {window.className, window.className};
}

std::optional<QString> MemoryDesktopEntries::iconName(const QString &bundleIdentifier) const
{
    const auto icon = icons.constFind(bundleIdentifier);
    return icon == icons.cend() ? std::nullopt : std::optional(*icon);
}

void MemoryDesktopEntries::install(const QString &className, const FrontApplication &application,
                                   const QString &icon)
{
    byClass.insert(className, application);
    if (application.bundleIdentifier && !icon.isEmpty())
        icons.insert(*application.bundleIdentifier, icon);
}

std::optional<QString> MemoryKeyboardLayout::layoutCharacter(quint32 keyCode) const
{
    const auto &characters = charactersOf(layout);
    if (keyCode >= characters.size() || characters[keyCode] == none)
        return std::nullopt;
    return QString(QChar(characters[keyCode]));
}

std::optional<QString> MemoryKeyboardLayout::symbolName(quint32 keyCode) const
{
    constexpr quint32 evdevMenu = 127; // KEY_COMPOSE, the key that opens menus
    if (keyCode == KeyCode::firstUnnumbered + evdevMenu)
        return QStringLiteral("Menu");
    return std::nullopt;
}

bool MemoryWorkspace::isThisApplicationActive() const
{
    return front && front->bundleIdentifier == QString::fromUtf16(ownBundleIdentifier);
}

void MemoryWorkspace::beep(QWidget *concerned)
{
    ++beepCount;
    lastBeepConcerned = concerned;
}

int MemoryHotKeys::registerHotKey(quint32 keyCode, quint64 modifiers)
{
    const Key key{keyCode, modifiers};
    registered.reset();
    const auto refusal = std::ranges::find(refusals, key, &std::pair<Key, int>::first);
    if (refusal != refusals.end())
        return refusal->second;
    registered = key;
    return 0;
}

void MemoryHotKeys::refuse(const Key &key, int status)
{
    std::erase_if(refusals, [&](const auto &each) { return each.first == key; });
    if (status != 0)
        refusals.emplace_back(key, status);
}

void MemoryHotKeys::press(const Key &key) const
{
    if (registered == key && onPress)
        onPress();
}

void MemoryHotKeys::press() const
{
    if (registered)
        press(*registered);
}

void MemoryPanelSurface::adopt(QWidget *widget)
{
    panel = widget;
    panel->setWindowFlags(Qt::FramelessWindowHint | Qt::Tool);
}

void MemoryPanelSurface::present(const QRect &geometry)
{
    ++presentCount;
    presented = true;
    lastGeometry = geometry;
    if (!panel)
        return;
    panel->setGeometry(geometry);
    panel->show();
    panel->raise();
    panel->activateWindow();
}

void MemoryPanelSurface::dismiss()
{
    if (!presented)
        return;
    presented = false;
    ++dismissCount;
    if (panel)
        panel->hide();
}

void MemoryPanelSurface::requestDismissal() const
{
    if (presented && onDismissRequest)
        onDismissRequest();
}

void MemoryAccessibility::requestCaretRect(std::function<void(std::optional<QRectF>)> callback)
{
    pending = std::move(callback);
    const int number = ++requestCount;
    if (manner != Manner::prompt)
        return;
    QTimer::singleShot(0, &context, [this, number] {
        if (number == requestCount)
            answer();
    });
}

void MemoryAccessibility::answer()
{
    if (const auto callback = std::exchange(pending, nullptr))
        callback(caret);
}

void MemoryStatusItem::setTray(bool present)
{
    const bool before = isAvailable();
    hasTray = present;
    if (isAvailable() != before && onAvailabilityChange)
        onAvailabilityChange();
}

std::vector<ClosureMenuItem> MemoryStatusItem::menu() const
{
    return menuContents ? menuContents() : std::vector<ClosureMenuItem>();
}

void MemoryStatusItem::choose(const QString &title) const
{
    for (const auto &item : menu()) {
        if (item.title == title && item.enabled) {
            item.run();
            return;
        }
    }
}

void MemoryAppearance::setColorScheme(ColorScheme value)
{
    if (std::exchange(scheme, value) != value && onChange)
        onChange();
}

MemoryInstance::~MemoryInstance()
{
    if (room.running == this)
        room.running = nullptr;
}

bool MemoryInstance::claim()
{
    if (!room.running)
        room.running = this;
    return room.running == this;
}

bool MemoryInstance::ask(const QString &action)
{
    if (!room.running || room.hung)
        return false;
    if (room.running->onAction)
        room.running->onAction(action);
    return true;
}

std::unique_ptr<Platform> makeMemoryPlatform()
{
    auto platform = std::make_unique<Platform>();
    platform->defaults = std::make_unique<MemoryUserDefaults>();
    platform->desktopEntries = std::make_shared<MemoryDesktopEntries>();
    platform->keyboardLayout = std::make_unique<MemoryKeyboardLayout>();
    platform->workspace = std::make_unique<MemoryWorkspace>();
    platform->pasteboard = std::make_unique<MemoryPasteboard>();
    platform->hotKeys = std::make_unique<MemoryHotKeys>();
    platform->panelSurface = std::make_unique<MemoryPanelSurface>();
    platform->keyEvents = std::make_unique<MemoryKeyEvents>();
    platform->screens = std::make_unique<MemoryScreens>();
    platform->accessibility = std::make_unique<MemoryAccessibility>();
    platform->statusItem = std::make_unique<MemoryStatusItem>();
    platform->appearance = std::make_unique<MemoryAppearance>();
    platform->recognition = std::make_shared<MemoryRecognition>();
    return platform;
}
