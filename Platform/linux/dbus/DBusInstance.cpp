#include "Platform/linux/dbus/DBusInstance.h"

#include "Platform/linux/dbus/InstanceBus.h"
#include "Platform/linux/dbus/InstanceSocket.h"

#include <QByteArray>

namespace {

// The display as letters and digits: ":0", ":0.1" and "unix:0" are the same one.
QString displayName()
{
    QByteArray display = qgetenv("DISPLAY");
    if (display.isEmpty())
        display = qgetenv("WAYLAND_DISPLAY");
    const auto colon = display.lastIndexOf(':');
    if (const auto screen = display.indexOf('.', colon); colon >= 0 && screen > colon)
        display.truncate(screen);
    if (display.startsWith("unix:"))
        display.remove(0, 4);
    QString name;
    for (const char character : display) {
        const bool isPlain = (character >= '0' && character <= '9') ||
                             (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
        if (isPlain)
            name += QLatin1Char(character);
        else if (character != ':' || !name.isEmpty())
            name += u'_' + QString::number(static_cast<unsigned char>(character), 16);
    }
    return name.left(100);
}

} // namespace

DBusInstance::DBusInstance()
{
    const QString display = displayName();
    way = InstanceBus::connect(display);
    if (!way)
        way = std::make_unique<InstanceSocket>(display);
    way->onAction = [this](const QString &action) {
        if (onAction)
            onAction(action);
    };
}

DBusInstance::~DBusInstance() = default;

bool DBusInstance::claim()
{
    return way->claim();
}

bool DBusInstance::ask(const QString &action)
{
    return way->ask(action);
}
