#pragma once

#include "tests/desktop/Stage.h"

// How one program from Debian is handled by somebody at the keyboard: started on a file, told to select all,
// to copy, to save. Data, not a class: programs differ in their keys and their command lines.
//
// The window's title has to contain the file's base name, which is how the window is known.
struct Program {
    using Chords = QStringList;

    QString name;    // as the table of results calls it
    QString package; // Debian's, asked for its version
    QString windowClass;

    // The command line that opens `file`, without first-run questions. May write settings beforehand.
    std::function<Child::Setting(Stage &stage, const QString &file)> command;

    // A new file to paste into, made at `path`, which has no suffix; gives the file's own path. What it holds
    // is copied once before anything is pasted: a program that copies is ready, and the history has something
    // newer.
    std::function<QString(const QString &path)> makeBlank;

    Chords select = {QStringLiteral("Ctrl+A")};
    Chords copy = {QStringLiteral("Ctrl+C")};
    Chords save = {QStringLiteral("Ctrl+S")};
    Chords beforePaste = {}; // where a paste does not replace the selection

    // Stands in the title as soon as something was pasted. Empty where that is told by what saving writes:
    // no "blank" any more.
    QString changedTitle = {};

    // Selects all and copies, where that takes more than select and copy.
    std::function<void(const class OpenProgram &)> copyByHand = {};

    // How long no key follows a paste, where keys that come while it asks for the content disturb it and
    // nothing tells that it is done.
    Desktop::Milliseconds pasteTime{0};

    Desktop::Milliseconds startBound{20000};

    // When the keys of a copy are pressed again: the program was not ready and lost them. Later for one that
    // keeps them in store while it starts, which would copy once more in the midst of what comes next.
    Desktop::Milliseconds attempt{2000};
};

// One program on one file, in front. Destroying it ends the program.
class OpenProgram {
public:
    // Starts it and waits until its window has the keyboard.
    OpenProgram(Stage &stage, const Program &program, const QString &file);

    // Presses select and copy until the newest clip of the history is one that `isIt` accepts, and gives it.
    HistoryFile::Row copyAll(const std::function<bool(const HistoryFile::Row &)> &isIt) const;

    // Copies what it holds so that the history has a newer clip than before.
    void becomeReady() const;

    // What it copies now under `target`, looked at until `isIt` accepts it; the last look when that never
    // happens.
    using Acceptance = std::function<bool(const QByteArray &)>;
    [[nodiscard]] QByteArray copiedAgain(const QByteArray &target, const Acceptance &isIt) const;

    // What the file holds after saving, again until `isIt` accepts it; the last look when that never happens.
    [[nodiscard]] QByteArray saved(const Acceptance &isIt) const;

    // Waits until a paste has arrived: only then may keys of ours follow it.
    void awaitPaste();

    void press(const Program::Chords &chords) const;
    void pressCopy() const; // selects all and copies, once

    Stage &stage;
    const Program &program;
    const QString file;
    xcb_window_t window = XCB_NONE;

private:
    std::unique_ptr<Child> child;
    xcb_window_t pastedFrom = XCB_NONE; // Norvane's
};

// Picks a clip in the panel as a user does, with the program to paste into in front: by words that are typed,
// or, without, by its place among the first nine.
void pasteFromPanel(Stage &stage, const HistoryFile::Row &wanted, const QString &words);

// Its id is 0 where the history is empty.
[[nodiscard]] HistoryFile::Row newestClip(const Stage &stage);

// As Debian counts it; empty where there is no dpkg.
[[nodiscard]] QString installedVersion(const Program &program);

// A path without suffix that nothing has yet; its last part serves as a window title.
[[nodiscard]] QString freshPath(Stage &stage);

void writeFile(const QString &path, const QByteArray &bytes);
[[nodiscard]] QByteArray readFile(const QString &path);

// Bytes for a message: what is not printable in its percent code, cut after some 300.
[[nodiscard]] QString shown(const QByteArray &bytes);
