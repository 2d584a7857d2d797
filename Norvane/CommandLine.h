#pragma once

#include <QString>
#include <QStringList>

// What the command line asks for.
struct CommandLine {
    enum class Kind {
        run, // start, or ask the running instance for `action`
        ask, // ask the running instance for `action`; nothing to do where none runs
        help,
        version,
        unknown, // `action` is the argument that nobody knows
    };

    Kind kind = Kind::run;
    QString action;           // "show", "hide", "toggle", "pause", "quit"
    bool actsAtStart = false; // a start of our own does `action` too

    bool operator==(const CommandLine &) const = default;
};

// `arguments` without the program's name. Of several requests the last counts; help, version and an unknown
// argument come before any.
[[nodiscard]] CommandLine parseCommandLine(const QStringList &arguments);

[[nodiscard]] QString commandLineHelp();
