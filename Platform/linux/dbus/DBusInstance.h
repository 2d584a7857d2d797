#pragma once

#include "Platform/ApplicationInstance.h"

#include <memory>

// One running program a user and display, found through the session bus; without a bus, through a socket that
// only the user can reach. Main thread; needs a QCoreApplication.
//
// On the bus the instance answers as org.freedesktop.Application at /com/norvane/app. A bus may serve several
// displays and a clipboard belongs to one: so each display has a name of its own, "com.norvane.app.display…",
// which decides who is the running instance there, and the first instance has "com.norvane.app" for the
// desktop's calls.
//
// No bus is ever started for this. A bus that does not answer within 1 s counts as none.
class DBusInstance : public ApplicationInstance {
public:
    DBusInstance();
    ~DBusInstance() override;

    [[nodiscard]] bool claim() override;
    [[nodiscard]] bool ask(const QString &action) override;

private:
    // The way to the other instance: InstanceBus or InstanceSocket.
    std::unique_ptr<ApplicationInstance> way;
};
