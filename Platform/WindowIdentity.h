#pragma once

#include <QString>

// What a window says of the program that owns it. Empty strings and zero mean that it says nothing.
struct WindowIdentity {
    quint32 window = 0;
    QString instanceName;     // first string of WM_CLASS
    QString className;        // second string of WM_CLASS
    QString gtkApplicationID; // _GTK_APPLICATION_ID; not always a desktop entry's name
    qint64 pid = 0;           // _NET_WM_PID; meaningless for sandboxed programs
    QString executable;       // file name of /proc/PID/exe

    bool operator==(const WindowIdentity &) const = default;
};
