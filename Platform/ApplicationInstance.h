#pragma once

#include <QString>
#include <functional>

// One running program a user and desktop. Main thread; needs a QCoreApplication.
class ApplicationInstance {
public:
    virtual ~ApplicationInstance() = default;

    // Becomes the running instance. False when another one is it already (it may still be asked).
    [[nodiscard]] virtual bool claim() = 0;

    // Asks the running instance to do `action` ("show", "toggle", "hide", "pause", "quit"). False when none
    // runs or it did not answer within 1 s.
    [[nodiscard]] virtual bool ask(const QString &action) = 0;

    // The running instance was asked, by a second start or by the desktop.
    std::function<void(const QString &action)> onAction;
};
