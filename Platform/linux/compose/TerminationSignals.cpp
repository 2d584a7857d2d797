#include "Platform/Log.h"
#include "Platform/linux/compose/LinuxPlatform.h"

#include <QCoreApplication>
#include <QSocketNotifier>
#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace {

std::array<int, 2> signalPipe{-1, -1}; // read, write: a handler may do little more than write

void noteSignal(int /*number*/)
{
    const int before = errno;
    [[maybe_unused]] const auto written = ::write(signalPipe[1], "", 1);
    errno = before;
}

// Once: the same signal again ends the process at once, should the event loop hang.
void handleOnce(int number)
{
    struct sigaction action {};
    if (::sigaction(number, nullptr, &action) != 0 || action.sa_handler == SIG_IGN)
        return; // started with nohup, or in the background by a shell that keeps Ctrl+C to itself
    action = {};
    action.sa_handler = noteSignal;
    action.sa_flags = static_cast<int>(SA_RESTART | SA_RESETHAND);
    ::sigemptyset(&action.sa_mask);
    ::sigaction(number, &action, nullptr);
}

} // namespace

void quitOnTerminationSignals()
{
    if (signalPipe[0] >= 0 || ::pipe2(signalPipe.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
        logLine(QStringLiteral("Norvane: termination signals will not be handled"));
        return;
    }
    auto *notifier = new QSocketNotifier(signalPipe[0], QSocketNotifier::Read, QCoreApplication::instance());
    QObject::connect(notifier, &QSocketNotifier::activated, notifier, [notifier] {
        notifier->setEnabled(false);
        QCoreApplication::exit(0); // not quit(), which a window with unsaved text may refuse
    });
    for (const int number : {SIGTERM, SIGINT, SIGHUP})
        handleOnce(number);
    std::signal(SIGPIPE, SIG_IGN); // who reads our log or our clipboard may die
}
