#pragma once

#include "Platform/ClosureMenuItem.h"
#include "Platform/linux/tray/TrayStatusItem.h"

#include <QTest>
#include <gtest/gtest.h>

// A status item whose menu's rows note which of them was chosen.
class TrayStage : public ::testing::Test {
protected:
    static constexpr int patience = 10000; // milliseconds

    TrayStage()
    {
        item.menuContents = [this] { return rows; };
        item.onAvailabilityChange = [this] { ++changes; };
        item.onActivate = [this] { ++activations; };
    }

    ClosureMenuItem row(const QString &title, const QString &key = {})
    {
        ClosureMenuItem made;
        made.title = title;
        made.key = key;
        made.handler = [this, title] { chosen << title; };
        return made;
    }

    static ClosureMenuItem separator()
    {
        ClosureMenuItem made;
        made.separator = true;
        return made;
    }

    bool becomesAvailable(bool available = true)
    {
        return QTest::qWaitFor([&] { return item.isAvailable() == available; }, patience);
    }

    TrayStatusItem item{[](const QString &name) {
        return std::optional(QDBusConnection::connectToBus(QDBusConnection::SessionBus, name));
    }};
    std::vector<ClosureMenuItem> rows;
    QStringList chosen;
    int changes = 0;
    int activations = 0;
};
