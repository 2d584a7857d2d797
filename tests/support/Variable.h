#pragma once

#include <QByteArray>
#include <QtGlobal>

// Sets an environment variable, or takes it away where the value is null, and puts it back at the end.
class Variable {
public:
    explicit Variable(const char *which) : name(which), before(qgetenv(which)) {}
    Variable(const char *which, const QByteArray &value) : Variable(which) { set(value); }
    ~Variable() { set(before); }
    Variable(const Variable &) = delete;
    Variable &operator=(const Variable &) = delete;

    void set(const QByteArray &value) const { value.isNull() ? qunsetenv(name) : qputenv(name, value); }

private:
    const char *name;
    const QByteArray before;
};
