#pragma once

#include "tests/support/Variable.h"

#include <QProcess>
#include <QTest>
#include <csignal>
#include <gtest/gtest.h>

// An X server of the test's own, which $DISPLAY names while it lives; Qt stays where it is.
class XServer {
public:
    explicit XServer(const QStringList &withoutExtensions = {})
    {
        QStringList arguments{"-displayfd", "1", "-nolisten", "tcp", "-noreset"};
        for (const QString &extension : withoutExtensions)
            arguments << "-extension" << extension;
        process.start("Xvfb", arguments);
        EXPECT_TRUE(QTest::qWaitFor([this] { return process.canReadLine(); }, 20000));
        display.set(':' + process.readLine().trimmed());
    }
    ~XServer()
    {
        signal(SIGCONT);
        kill();
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

private:
    const Variable display{"DISPLAY"};
    QProcess process;
};
