#include "tests/desktop/Child.h"

#include <QProcessEnvironment>
#include <csignal>
#include <sys/types.h>

Child::Child(const Setting &setting)
{
    auto environment = QProcessEnvironment::systemEnvironment();
    for (const auto &variable : setting.variables)
        environment.insert(variable.section(u'=', 0, 0), variable.section(u'=', 1));
    process.setProcessEnvironment(environment);
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(setting.log.isEmpty() ? QProcess::nullDevice() : setting.log,
                                  QIODevice::Append);
    process.start(setting.program, setting.arguments);
    if (process.waitForStarted())
        id = process.processId();
}

Child::~Child()
{
    if (!isRunning())
        return;
    signal(SIGCONT); // a stopped program takes no SIGTERM
    process.terminate();
    if (!process.waitForFinished(2000)) {
        process.kill();
        process.waitForFinished(2000);
    }
}

bool Child::isRunning()
{
    process.waitForFinished(0); // looks, without an event loop
    return process.state() != QProcess::NotRunning;
}

void Child::signal(int number) const
{
    if (id > 0)
        ::kill(static_cast<pid_t>(id), number);
}

std::optional<int> Child::awaitExit()
{
    if (!awaitEnd() || process.exitStatus() != QProcess::NormalExit || id == 0)
        return std::nullopt;
    return process.exitCode();
}

bool Child::awaitEnd()
{
    return !isRunning() || process.waitForFinished(static_cast<int>(Desktop::patience.count()));
}
