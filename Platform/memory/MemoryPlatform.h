#pragma once

#include "Platform/Platform.h"
#include "Platform/memory/MemoryPasteboard.h"
#include "Platform/memory/MemoryRecognition.h"
#include "Platform/memory/MemoryUserDefaults.h"

#include <QHash>
#include <QPointer>
#include <QSet>
#include <QWidget>

// The services of a desktop that exists in memory only: for tests and sample screens. Each plays its part of
// the contract; what stands below the service's own operations steers it or tells what it was asked. Main
// thread.

class MemoryDesktopEntries : public DesktopEntries {
public:
    [[nodiscard]] FrontApplication application(const WindowIdentity &window) const override;
    [[nodiscard]] std::optional<QString> iconName(const QString &bundleIdentifier) const override;

    // Windows of this class belong to this application.
    void install(const QString &className, const FrontApplication &application, const QString &icon = {});

private:
    QHash<QString, FrontApplication> byClass;
    QHash<QString, QString> icons;
};

// Letters, digits and punctuation of a whole keyboard, as three real layouts have them.
class MemoryKeyboardLayout : public KeyboardLayout {
public:
    enum class Layout { us, italian, dvorak };

    explicit MemoryKeyboardLayout(Layout initialLayout = Layout::us) : layout(initialLayout) {}

    [[nodiscard]] std::optional<QString> layoutCharacter(quint32 keyCode) const override;
    [[nodiscard]] std::optional<QString> symbolName(quint32 keyCode) const override;

    void setLayout(Layout value) { layout = value; }

private:
    Layout layout;
};

class MemoryWorkspace : public Workspace {
public:
    [[nodiscard]] std::optional<FrontApplication> frontmostApplication() const override { return front; }
    [[nodiscard]] bool isThisApplicationActive() const override;
    void beep(QWidget *concerned) override;

    void activate(std::optional<FrontApplication> application) { front = std::move(application); }

    int beepCount = 0;
    QPointer<QWidget> lastBeepConcerned;

private:
    std::optional<FrontApplication> front;
};

class MemoryHotKeys : public HotKeys {
public:
    struct Key {
        quint32 keyCode = 0;
        quint64 modifiers = 0;

        bool operator==(const Key &) const = default;
    };

    [[nodiscard]] int registerHotKey(quint32 keyCode, quint64 modifiers) override;
    void unregisterHotKey() override { registered.reset(); }

    // Registrations of this key are refused with this status, until it is 0.
    void refuse(const Key &key, int status);

    // The user presses the key; nothing happens when it is not the registered one.
    void press(const Key &key) const;
    void press() const; // the registered one

    std::optional<Key> registered;

private:
    std::vector<std::pair<Key, int>> refusals;
};

class MemoryPanelSurface : public PanelSurface {
public:
    void adopt(QWidget *panel) override;
    void present(const QRect &geometry) override;
    void dismiss() override;
    [[nodiscard]] bool isPresented() const override { return presented; }

    // The user clicks somewhere else.
    void requestDismissal() const;

    QRect lastGeometry;
    int presentCount = 0;
    int dismissCount = 0; // of a panel that was shown

private:
    QPointer<QWidget> panel;
    bool presented = false;
};

class MemoryKeyEvents : public KeyEvents {
public:
    [[nodiscard]] bool canSynthesise() const override { return allowed; }
    void postPaste() override { ++pasteCount; }

    bool allowed = true;
    int pasteCount = 0;
};

class MemoryScreens : public Screens {
public:
    [[nodiscard]] std::vector<ScreenArea> screens() const override { return areas; }
    [[nodiscard]] QPointF pointer() const override { return pointerPosition; }

    // One screen of 1600 × 1000 with a panel of 30 along its top.
    std::vector<ScreenArea> areas{{QRectF(0, 0, 1600, 1000), QRectF(0, 30, 1600, 970)}};
    QPointF pointerPosition{800, 500};
};

// Programs whose caret lies where `caret` says.
class MemoryAccessibility : public Accessibility {
public:
    enum class Manner {
        prompt, // answers from the event loop
        told,   // answers when `answer` is called, be it too late
        silent, // never answers
    };

    [[nodiscard]] bool caretAvailable() const override { return available; }
    void setCaretWanted(bool wanted) override { caretWanted = wanted; }
    void requestCaretRect(std::function<void(std::optional<QRectF>)> callback) override;
    void cancel() override { pending = nullptr; }

    // Answers the open request; nothing when there is none, as one that was dropped.
    void answer();
    [[nodiscard]] bool isAsked() const { return pending != nullptr; }

    bool available = true;
    Manner manner = Manner::prompt;
    std::optional<QRectF> caret;
    bool caretWanted = false;
    int requestCount = 0;

private:
    std::function<void(std::optional<QRectF>)> pending;
    QObject context; // drops what is queued when this dies
};

class MemoryStatusItem : public StatusItem {
public:
    void show() override { shown = true; }
    void menuChanged() override { ++menuChanges; }
    void setPaused(bool value) override { paused = value; }
    [[nodiscard]] bool isAvailable() const override { return shown && hasTray; }
    void popUpMenu(const QPoint &lowerRight) override { lastPopUp = lowerRight; }

    // A tray comes or goes.
    void setTray(bool present);

    // The rows as the menu would show them now; the user chooses the one of this title.
    [[nodiscard]] std::vector<ClosureMenuItem> menu() const;
    void choose(const QString &title) const;

    bool shown = false;
    bool hasTray = true;
    bool paused = false;
    int menuChanges = 0;
    std::optional<QPoint> lastPopUp;
};

class MemoryAppearance : public Appearance {
public:
    [[nodiscard]] ColorScheme colorScheme() const override { return scheme; }

    // The user changes the desktop's setting.
    void setColorScheme(ColorScheme value);

private:
    ColorScheme scheme = ColorScheme::noPreference;
};

// The instances that share a room see each other, as two starts on one desktop do.
class MemoryInstance : public ApplicationInstance {
public:
    struct Room {
        MemoryInstance *running = nullptr;
        bool hung = false; // the running instance answers nothing
    };

    explicit MemoryInstance(Room &sharedRoom) : room(sharedRoom) {}
    ~MemoryInstance() override;

    [[nodiscard]] bool claim() override;
    [[nodiscard]] bool ask(const QString &action) override;

private:
    Room &room;
};

// Every service of its memory kind, so that a test may cast each down to steer it.
[[nodiscard]] std::unique_ptr<Platform> makeMemoryPlatform();
