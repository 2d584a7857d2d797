#pragma once

#include <QProcess>
#include <QTest>
#include <csignal>

// A process of the test's own that speaks in lines; ended with this.
class Probe {
public:
    explicit Probe(const QString &program, const QStringList &arguments = {},
                   const QProcessEnvironment &environment = QProcessEnvironment::systemEnvironment())
    {
        process.setProcessEnvironment(environment);
        process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        process.start(program, arguments);
    }
    ~Probe()
    {
        if (process.state() != QProcess::NotRunning)
            kill();
    }

    // "nothing" when none came.
    [[nodiscard]] QString nextLine()
    {
        const bool came = QTest::qWaitFor([this] { return process.canReadLine(); }, 15000);
        return came ? QString::fromUtf8(process.readLine()).trimmed() : QStringLiteral("nothing");
    }
    [[nodiscard]] bool awaitEnd()
    {
        return QTest::qWaitFor([this] { return process.state() == QProcess::NotRunning; }, 15000);
    }
    void signal(int number) const
    {
        if (const auto id = static_cast<pid_t>(process.processId()); id > 0) // 0 would be all of us
            ::kill(id, number);
    }
    void kill()
    {
        process.kill();
        process.waitForFinished();
    }

    QProcess process;
};
