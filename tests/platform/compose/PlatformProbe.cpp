// platformProbe         makes the platform, says "ready", and runs until a signal ends it
// platformProbe hang    does not run its event loop

#include "Platform/linux/compose/LinuxPlatform.h"

#include <QApplication>
#include <QCloseEvent>
#include <QWidget>
#include <cstdio>
#include <unistd.h>

namespace {

// A window that refuses to be closed, as one with unsaved text does.
class Stubborn : public QWidget {
protected:
    void closeEvent(QCloseEvent *event) override { event->ignore(); }
};

} // namespace

int main(int argc, char **argv)
{
    prepareLinuxEnvironment();
    const QApplication application(argc, argv);
    const auto platform = makeLinuxPlatform();
    quitOnTerminationSignals();
    Stubborn window;
    window.show();
    std::puts("ready");
    std::fflush(stdout);
    if (argc > 1) {
        for (;;)
            ::pause();
    }
    const int result = QApplication::exec();
    std::puts("ended");
    return result;
}
