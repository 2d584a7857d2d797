#include "Platform/linux/x11/X11HotKeys.h"

#include "Platform/KeyCodes.h"
#include "Platform/Log.h"
#include "Platform/linux/x11/KeyGrab.h"

#include <QObject>

namespace {

constexpr quint32 serverOffset = 8; // an X key code is the evdev code + 8

} // namespace

// Lives on the main thread; presses that are still on their way to it end with it.
class X11HotKeys::Receiver : public QObject {};

std::unique_ptr<X11HotKeys> X11HotKeys::create()
{
    return std::unique_ptr<X11HotKeys>(new X11HotKeys);
}

X11HotKeys::X11HotKeys() : receiver(std::make_unique<Receiver>())
{
    auto connection = XcbConnection::open();
    if (!connection) {
        logLine(QStringLiteral("Norvane: no X server for the hot key"));
        return;
    }
    const auto deliver = [this] {
        if (registered && onPress)
            onPress();
    };
    grab = std::make_unique<KeyGrab>(std::move(connection), [object = receiver.get(), deliver] {
        QMetaObject::invokeMethod(object, deliver, Qt::QueuedConnection);
    });
}

X11HotKeys::~X11HotKeys()
{
    grab.reset(); // first the thread, then what it posts to
}

int X11HotKeys::registerHotKey(quint32 keyCode, quint64 modifiers)
{
    registered = false;
    const quint32 evdev = evdevCode(keyCode);
    if (!grab)
        return -1;
    if (evdev == 0) {
        grab->drop();
        return -1;
    }
    const int status = grab->take(evdev + serverOffset, modifiers);
    registered = status == 0;
    return status;
}

void X11HotKeys::unregisterHotKey()
{
    registered = false;
    if (grab)
        grab->drop();
}

std::optional<quint32> X11HotKeys::lastPressTime() const
{
    return grab ? grab->unansweredPress() : std::nullopt;
}

void X11HotKeys::releaseKeyboard()
{
    if (grab)
        grab->release();
}

void X11HotKeys::endGrab()
{
    if (grab)
        grab->end();
}

bool X11HotKeys::isHotKey(quint32 serverKeyCode, quint32 state) const
{
    return registered && onPress && grab->isOn(serverKeyCode, state);
}
