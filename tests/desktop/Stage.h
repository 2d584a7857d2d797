#pragma once

#include "tests/desktop/Accessible.h"
#include "tests/desktop/Child.h"
#include "tests/desktop/Clipboard.h"
#include "tests/desktop/Desktop.h"
#include "tests/desktop/HistoryFile.h"
#include "tests/desktop/Keyboard.h"
#include "tests/desktop/SelectionOwner.h"

#include <QDir>
#include <QTemporaryDir>
#include <memory>
#include <stdexcept>

// Something did not show what it should. Thrown by require() and by everything here that waits, so that a
// step of the demonstration, or a test, reads as what the user does and nothing else.
struct StepFailure : std::runtime_error {
    explicit StepFailure(const QString &reason) : std::runtime_error(reason.toStdString()), why(reason) {}

    QString why;
};

void require(bool shown, const QString &why);

// A program to paste into, with a file that tells what arrived.
struct Target {
    std::unique_ptr<Child> program;
    xcb_window_t window = XCB_NONE;
    QString file;
    QString viewFile = {}; // the Qt program's second field

    [[nodiscard]] QByteArray content() const;
    [[nodiscard]] QByteArray viewContent() const;
};

// A desktop and the program shown on it.
//
// Norvane runs as a user's does, with its own settings and data below a scratch folder. Whatever a step
// starts it also ends; the history stays from step to step.
class Stage {
public:
    using Milliseconds = Desktop::Milliseconds;
    using Condition = std::function<bool()>;

    // `program` is norvane, `output` takes screenshots and logs.
    Stage(QString program, const QDir &output);
    ~Stage();

    Desktop desktop;
    Keyboard keyboard{desktop};
    Clipboard clipboard{desktop};

    static constexpr Milliseconds finger{100}; // how long a hot key stays down under a hand
    static constexpr Milliseconds quiet{700}; // two polls of the clipboard: what did not happen by then won't

    // What must come, and what must not within the span; `why` says what it means where it fails.
    void await(const Condition &condition, const QString &why, Milliseconds bound = Desktop::patience) const;
    void never(const Condition &condition, const QString &why, Milliseconds span = quiet) const;
    // Does something again and again, as a person does whose program was not ready, until the condition
    // holds.
    void repeat(const std::function<void()> &act, const Condition &until, const QString &why,
                Milliseconds attempt = Milliseconds(1500)) const;

    // Starts Norvane and waits until it answers. `data` names its data folder: another one, another history.
    // `variables` ("NAME=value") are added to its environment.
    void start(const QString &language = "en", const QString &data = "data",
               const QStringList &variables = {});
    void launch(const QString &language, const QString &data,
                const QStringList &variables); // without waiting
    void quit();                               // by SIGTERM; requires exit status 0
    void restart(const QString &language, const QString &data, const QStringList &variables = {});
    [[nodiscard]] Child &norvane() const { return *running; }
    [[nodiscard]] bool isRunning() const { return running && running->isRunning(); }
    [[nodiscard]] HistoryFile history() const;
    [[nodiscard]] std::vector<HistoryFile::Row> rows() const; // requires a readable history

    // The command line of a second start, which asks the first to show its panel.
    [[nodiscard]] Child::Setting commandLine(const QStringList &arguments = {}) const;

    // Whether the panel is to be a managed window, as in a Wayland session.
    bool managedPanel = false;

    // The panel's window when it is open.
    [[nodiscard]] std::optional<xcb_window_t> panel() const;
    xcb_window_t awaitPanel() const; // open, with the keyboard
    void awaitNoPanel() const;
    xcb_window_t openPanel() const; // by the hot key
    void closePanel() const;        // by Esc, as often as it takes; never fails
    void hotKey(Milliseconds held = finger) const;
    void press(const QString &chord, Milliseconds held = {}) const;
    void type(const QString &text) const;

    // Hot key and a text with no pause in between, as fast as fingers can be. The text has to be in the
    // search field and nothing in the program in front; but a machine too busy to show the panel in time has
    // to give the keyboard back, so that this counts where it succeeds once in three times.
    void typeAhead(const QString &text, const Target &front) const;

    // Hot key, a few words and, with no pause in between, the last chord.
    void choose(const QString &words, const QString &chord = "Enter") const;

    // What the panel says to a screen reader.
    [[nodiscard]] QString searchText() const;
    [[nodiscard]] QString searchName() const;
    [[nodiscard]] bool searchHasFocus() const;
    void awaitSearch(const QString &text) const;
    [[nodiscard]] QStringList listed() const;
    [[nodiscard]] QString countText() const;
    // The part that a screen reader would call this; any name when that is empty.
    Accessible awaitPart(const QString &role, const QString &name = {}) const;
    void awaitListed(qsizetype count, const QString &when) const;

    // Copies through another program and waits until it is recorded.
    void copy(const QByteArray &bytes, const QByteArray &target = "UTF8_STRING");
    void copyForms(const SelectionOwner::Content &content); // the same copy in several forms
    void copyAndPin(const QByteArray &bytes);
    [[nodiscard]] bool isNewest(const QString &text) const;
    HistoryFile::Row awaitNewest(const QString &text) const;
    void awaitClipboard(const QByteArray &bytes, const QByteArray &target = "UTF8_STRING") const;

    // A program with its own log.
    std::unique_ptr<Child> run(const QString &program, const QStringList &arguments = {}) const;
    xcb_window_t activate(const WindowMatch &match) const; // awaits its window
    // Programs to paste into, active and empty.
    Target openTerminal();
    Target openQtEntry();
    Target openMousepad(const QByteArray &content = {});
    // A compositor or a tray, at work when this returns.
    std::unique_ptr<Child> startCompositor() const;
    std::unique_ptr<Child> startTray() const;

    void awaitContent(const Target &target, const QByteArray &expected) const;
    void awaitView(const Target &target, const QByteArray &expected) const;
    void awaitSaved(const Target &editor,
                    const QByteArray &expected) const; // which saves until it has the paste
    void awaitKeyboard(xcb_window_t window) const;

    // A fresh path in the scratch folder.
    QString scratchFile(const QString &suffix);
    [[nodiscard]] QString logFile(const QString &name) const { return folder.filePath(name); }
    void saveScreenshot(const QString &name) const;

private:
    [[nodiscard]] std::optional<Accessible> part(const std::function<bool(const Accessible &)> &test) const;
    [[nodiscard]] std::optional<Accessible> searchField() const;
    Target opened(std::unique_ptr<Child> program, const WindowMatch &match, const QString &file) const;

    QString programPath;
    QDir folder;
    QTemporaryDir scratch;
    QString dataFolder;
    QString language;
    QStringList extraVariables;
    std::unique_ptr<Child> running;
    int files = 0;
};
