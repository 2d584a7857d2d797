#pragma once

#include "Platform/ApplicationInstance.h"

#include <QLocalServer>
#include <QString>

// The instance behind a socket in a folder of the user's own, for sessions without a bus. Main thread.
//
// A lock, which the system takes back when its process dies, says who runs; the socket only carries the
// questions.
class InstanceSocket : public ApplicationInstance {
public:
    explicit InstanceSocket(const QString &displayName);
    ~InstanceSocket() override;

    [[nodiscard]] bool claim() override;
    [[nodiscard]] bool ask(const QString &action) override;

private:
    void serve();

    QString path; // of the socket; empty when no safe place was found
    int lock = -1;
    QLocalServer server;
};
