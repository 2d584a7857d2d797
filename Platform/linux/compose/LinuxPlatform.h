#pragma once

#include "Platform/Platform.h"

// Sets what Qt must know before its application object is made: the X11 platform plug-in in a Wayland
// session, and that there is no session bus where it does not answer.
void prepareLinuxEnvironment();

// Makes sure of the display that the toolkit ends the process without; null, and why in `problem`, when it
// cannot be reached. To be held until there is a QApplication: some X servers start anew when nobody is
// connected any more.
[[nodiscard]] std::shared_ptr<const void> reachDisplay(QString &problem);

// The way to the running instance; needs a QCoreApplication.
[[nodiscard]] std::unique_ptr<ApplicationInstance> makeApplicationInstance();

// The services of a Linux desktop over X11; needs a QApplication on the xcb platform. Logs what is missing.
[[nodiscard]] std::unique_ptr<Platform> makeLinuxPlatform();

// SIGTERM, SIGINT and SIGHUP end the event loop; the same one again ends the process. Call once, after the
// application object exists.
void quitOnTerminationSignals();
