#pragma once

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QTest>
#include <QTimer>
#include <QWidget>
#include <cstdio>
#include <functional>
#include <optional>
#include <xcb/xtest.h>

// How long a window takes from the press of the hot key to its first painted frame.

// X key codes.
inline constexpr uint8_t controlKey = 37, altKey = 64, vKey = 55;

// Types keys as a person's keyboard would, from a connection of its own.
class Typist {
public:
    Typist() : connection(xcb_connect(nullptr, nullptr)) {}
    ~Typist() { xcb_disconnect(connection); }
    Typist(const Typist &) = delete;
    Typist &operator=(const Typist &) = delete;

    void send(uint8_t type, uint8_t key)
    {
        xcb_test_fake_input(connection, type, key, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
        xcb_flush(connection);
    }
    void tap(uint8_t key)
    {
        send(XCB_KEY_PRESS, key);
        send(XCB_KEY_RELEASE, key);
    }
    void holdModifiers()
    {
        send(XCB_KEY_PRESS, controlKey);
        send(XCB_KEY_PRESS, altKey);
    }
    void letModifiersGo()
    {
        send(XCB_KEY_RELEASE, altKey);
        send(XCB_KEY_RELEASE, controlKey);
    }

private:
    xcb_connection_t *connection;
};

// Notes when a widget has painted its first frame after `arm`.
class FrameWatch : public QObject {
public:
    explicit FrameWatch(QWidget *widget) : watched(widget)
    {
        qApp->installEventFilter(this); // comes before every filter of the widget's own
        deadline.setSingleShot(true);
        connect(&deadline, &QTimer::timeout, &loop, &QEventLoop::quit);
    }

    void arm()
    {
        painted = false;
        clock.start();
    }
    [[nodiscard]] double milliseconds() const { return static_cast<double>(elapsed) / 1e6; }

    // In an event loop of its own, which sleeps until there is something to do: polling would measure the
    // polling.
    [[nodiscard]] bool awaitFrame()
    {
        deadline.start(3000);
        if (!painted)
            loop.exec();
        deadline.stop();
        return painted;
    }

protected:
    bool eventFilter(QObject *receiver, QEvent *event) override
    {
        if (receiver == watched && event->type() == QEvent::Paint && !painted && clock.isValid())
            QTimer::singleShot(0, this, [this] { finish(); });
        return false;
    }

private:
    void finish()
    {
        if (painted)
            return;
        QGuiApplication::sync();
        elapsed = clock.nsecsElapsed();
        painted = true;
        loop.quit();
    }

    QWidget *watched;
    QEventLoop loop;
    QTimer deadline;
    QElapsedTimer clock;
    qint64 elapsed = 0;
    bool painted = false;
};

inline void toggle(Typist &typist)
{
    typist.holdModifiers();
    typist.tap(vKey);
    typist.letModifiersGo();
}

inline void close(const std::function<bool()> &isHidden, Typist &typist)
{
    toggle(typist);
    if (!QTest::qWaitFor(isHidden, 3000))
        std::fprintf(stderr, "the window did not close\n");
    QTest::qWait(250);
}

// Milliseconds of one opening; absent when there was none.
inline std::optional<double> open(FrameWatch &watch, Typist &typist)
{
    typist.holdModifiers();
    watch.arm();
    typist.send(XCB_KEY_PRESS, vKey);
    const bool opened = watch.awaitFrame();
    typist.send(XCB_KEY_RELEASE, vKey);
    typist.letModifiersGo();
    QTest::qWait(60); // an open panel at rest
    return opened ? std::optional(watch.milliseconds()) : std::nullopt;
}
