#pragma once

#include "Platform/Platform.h"

// Sets what Qt must know before its application object is made: the X11 platform plug-in in a Wayland
// session, and that there is no session bus where it does not answer.
void prepareLinuxEnvironment();

// The way to the running instance; needs a QCoreApplication.
[[nodiscard]] std::unique_ptr<ApplicationInstance> makeApplicationInstance();

// The services of a Linux desktop over X11; needs a QApplication on the xcb platform. Logs what is missing.
[[nodiscard]] std::unique_ptr<Platform> makeLinuxPlatform();

// SIGTERM, SIGINT and SIGHUP end the event loop; the same one again ends the process. Call once, after the
// application object exists.
void quitOnTerminationSignals();
