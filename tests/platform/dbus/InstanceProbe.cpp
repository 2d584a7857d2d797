// instanceProbe claim       claims, says "claimed" or "refused"; a running instance says each action asked of
// it instanceProbe ask ACTION  asks the running instance, says "answered" or "unanswered"

#include "Platform/linux/dbus/DBusInstance.h"

#include <QCoreApplication>
#include <cstdio>

namespace {

void say(const QString &line)
{
    std::puts(qUtf8Printable(line));
    std::fflush(stdout);
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    DBusInstance instance;
    if (arguments.value(1) == u"ask") {
        say(instance.ask(arguments.value(2)) ? "answered" : "unanswered");
        return 0;
    }
    instance.onAction = [](const QString &action) { say(action); };
    const bool claimed = instance.claim() && instance.claim(); // twice is as good as once
    say(claimed ? "claimed" : "refused");
    return claimed ? QCoreApplication::exec() : 0;
}
