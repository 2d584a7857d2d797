#pragma once

#include "tests/desktop/Desktop.h"

#include <QProcess>
#include <QStringList>

// One program started by a test, with what it prints in a log file of its own. Destroying it ends the
// program, by id.
class Child {
public:
    struct Setting {
        QString program;
        QStringList arguments = {};
        QString log = {};           // path of a file; empty throws the output away
        QStringList variables = {}; // "NAME=value", added to our environment
    };

    // Starts it. A program that could not be started is one that is not running.
    explicit Child(const Setting &setting);
    ~Child();
    Child(const Child &) = delete;
    Child &operator=(const Child &) = delete;

    [[nodiscard]] bool isRunning();
    [[nodiscard]] qint64 pid() const { return id; }

    void signal(int number) const; // SIGTERM, SIGKILL, SIGSTOP, …

    // The exit status when it ended by itself in time; absent while it runs or when a signal ended it.
    [[nodiscard]] std::optional<int> awaitExit();
    bool awaitEnd(); // however that came

private:
    QProcess process;
    qint64 id = 0;
};
