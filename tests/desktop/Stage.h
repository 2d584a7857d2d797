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

// A step of the demonstration did not show what it should. Thrown by require() and by everything here that
// waits for something; the table of steps catches it, so that a step reads as what the user does and nothing
// else.
struct StepFailure {
    QString why;
};

void require(bool shown, const QString &why);

// A program to paste into, with a file that tells what arrived.
struct Target {
    std::unique_ptr<Child> program;
    xcb_window_t window = XCB_NONE;
    QString file;
    QString viewFile; // the Qt program's second field

    [[nodiscard]] QByteArray content() const;
};

// The desktop of the demonstration and the program shown on it.
//
// Norvane runs as a user's does, with its own settings and data below a scratch folder. Whatever a step
// starts it also ends; the history stays from step to step.
class Stage {
public:
    // `program` is norvane, `output` takes screenshots and logs.
    Stage(QString program, const QDir &output);
    ~Stage();

    Desktop desktop;
    Keyboard keyboard{desktop};
    Clipboard clipboard{desktop};

    static constexpr Desktop::Milliseconds finger{100}; // how long a hot key stays down under a hand
    static constexpr Desktop::Milliseconds quiet{
        700}; // two polls of the clipboard: what did not happen by then won't

    // Starts Norvane and waits until it answers. `data` names its data folder: another one, another history.
    // `variables` ("NAME=value") are added to its environment.
    void start(const QString &language = QStringLiteral("en"), const QString &data = QStringLiteral("data"),
               const QStringList &variables = {});
    void quit(); // by SIGTERM; requires exit status 0
    [[nodiscard]] Child &norvane() const { return *running; }
    [[nodiscard]] bool isRunning() const { return running && running->isRunning(); }
    [[nodiscard]] HistoryFile history() const;
    [[nodiscard]] std::vector<HistoryFile::Row> rows() const; // requires a readable history

    // The command line of a second start, which asks the first to show its panel.
    [[nodiscard]] Child::Setting commandLine() const;

    // Whether the panel is to be a managed window, as in a Wayland session.
    bool managedPanel = false;

    // The panel's window when it is open.
    [[nodiscard]] std::optional<xcb_window_t> panel() const;
    xcb_window_t awaitPanel() const; // open, with the keyboard
    void awaitNoPanel() const;
    xcb_window_t openPanel() const; // by the hot key
    void closePanel() const;        // by Esc, as often as it takes; never fails
    void hotKey(Desktop::Milliseconds held = finger) const;

    // What the panel says to a screen reader.
    [[nodiscard]] QString searchText() const;
    [[nodiscard]] QString searchName() const;
    [[nodiscard]] bool searchHasFocus() const;
    [[nodiscard]] QStringList listed() const;
    [[nodiscard]] QString countText() const;
    // The part that a screen reader would call this; any name when that is empty.
    Accessible awaitPart(const QString &role, const QString &name = {}) const;
    void awaitListed(qsizetype count, const QString &when) const;

    // Hot key, a few words and the last chord, with no pause in between: as fast as fingers can be.
    void choose(const QString &words, const QString &chord = QStringLiteral("Enter")) const;

    // Copies through another program and waits until it is recorded.
    void copy(const QByteArray &bytes, const QByteArray &target = "UTF8_STRING");
    void copyForms(const SelectionOwner::Content &content); // the same copy in several forms
    [[nodiscard]] bool isNewest(const QString &text) const;
    HistoryFile::Row awaitNewest(const QString &text) const;

    // Programs to paste into, active and empty.
    Target openTerminal();
    Target openQtEntry();
    Target openMousepad(const QByteArray &content = {});
    // A compositor, drawing the screen when this returns.
    std::unique_ptr<Child> startCompositor();

    void awaitContent(const Target &target, const QByteArray &expected) const;

    // A fresh path in the scratch folder.
    QString scratchFile(const QString &suffix);
    [[nodiscard]] QString logFile(const QString &name) const { return folder.filePath(name); }
    void saveScreenshot(const QString &name) const;

private:
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

// One thing that the demonstration shows. `show` returns when it was seen and throws StepFailure otherwise.
struct Step {
    const char *name;
    void (*show)(Stage &);
};
using Steps = std::vector<Step>;

Steps textSteps();
Steps fileSteps();
Steps readingSteps();
Steps pictureSteps();
Steps privacySteps();
Steps panelSteps();
Steps lifeSteps();
Steps screenSteps();
Steps looksSteps();
Steps viewSteps();
Steps traySteps();
