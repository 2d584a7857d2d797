#pragma once

#include "tests/support/Probe.h"
#include "tests/support/Variable.h"

#include <gtest/gtest.h>

// An X server of the test's own, which $DISPLAY names while it lives; Qt stays where it is.
class XServer : private Probe {
public:
    explicit XServer(const QStringList &withoutExtensions = {})
        : Probe("Xvfb", argumentsFor(withoutExtensions))
    {
        const QString number = nextLine();
        EXPECT_NE(number, "nothing");
        display.set((':' + number).toUtf8());
    }

    using Probe::kill;
    using Probe::signal;

private:
    static QStringList argumentsFor(const QStringList &withoutExtensions)
    {
        QStringList arguments{"-displayfd", "1", "-nolisten", "tcp", "-noreset"};
        for (const QString &extension : withoutExtensions)
            arguments << "-extension" << extension;
        return arguments;
    }

    const Variable display{"DISPLAY"};
};
