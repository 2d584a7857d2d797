// Hot key press to first painted frame: the history panel with many clips against a bare window of the same
// toolkit, shown the same way in the same run. Needs an X server of its own (tests/support/private-desktop).

#include "Norvane/AppDelegate.h"
#include "Norvane/app/Preferences.h"
#include "Norvane/store/ClipStore.h"
#include "Platform/linux/compose/LinuxPlatform.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QLineEdit>
#include <QTemporaryDir>
#include <QTest>
#include <cstdio>
#include <xcb/xtest.h>

namespace {

constexpr int openings = 40;
constexpr int bareOpeningsFirst = 5; // thrown away: the first show of a process pays for fonts and caches
constexpr uint8_t controlKey = 37, altKey = 64, vKey = 55; // X key codes

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

// Notes when a window has painted its first frame after `arm`.
class FrameWatch : public QObject {
public:
    explicit FrameWatch(QWidget *watched)
    {
        watched->installEventFilter(this);
        deadline.setSingleShot(true);
        connect(&deadline, &QTimer::timeout, &loop, &QEventLoop::quit);
    }

    void arm()
    {
        painted = false;
        clock.start();
    }
    [[nodiscard]] double microseconds() const { return static_cast<double>(elapsed) / 1000; }

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
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::Paint && !painted && clock.isValid())
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

    QEventLoop loop;
    QTimer deadline;
    QElapsedTimer clock;
    qint64 elapsed = 0;
    bool painted = false;
};

std::vector<double> measure(QWidget *window, Typist &typist, const std::function<bool()> &isHidden)
{
    FrameWatch watch(window);
    std::vector<double> times;
    for (int i = 0; i < openings + bareOpeningsFirst; ++i) {
        typist.holdModifiers();
        watch.arm();
        typist.send(XCB_KEY_PRESS, vKey);
        const bool opened = watch.awaitFrame();
        typist.send(XCB_KEY_RELEASE, vKey);
        typist.letModifiersGo();
        if (!opened)
            continue;
        if (i >= bareOpeningsFirst)
            times.push_back(watch.microseconds());
        QTest::qWait(60); // an open panel at rest
        typist.holdModifiers();
        typist.send(XCB_KEY_PRESS, vKey);
        typist.send(XCB_KEY_RELEASE, vKey);
        typist.letModifiersGo();
        if (!QTest::qWaitFor(isHidden, 3000))
            std::fprintf(stderr, "the window did not close\n");
        QTest::qWait(250);
    }
    std::sort(times.begin(), times.end());
    return times;
}

double median(const std::vector<double> &sorted)
{
    return sorted.empty() ? 0 : sorted[sorted.size() / 2];
}

double bareWindow(Typist &typist)
{
    const auto platform = makeLinuxPlatform();
    QWidget window;
    window.setObjectName(QStringLiteral("bare"));
    QLineEdit field(&window);
    window.resize(780, 470);
    platform->panelSurface->adopt(&window);
    platform->hotKeys->onPress = [&] {
        if (platform->panelSurface->isPresented())
            platform->panelSurface->dismiss();
        else
            platform->panelSurface->present({200, 200, 780, 470});
    };
    if (platform->hotKeys->registerHotKey(KeyCode::v, ModifierFlag::option | ModifierFlag::command) != 0)
        return 0;
    return median(measure(&window, typist, [&platform] { return !platform->panelSurface->isPresented(); }));
}

void fill(const QString &folder, int clips)
{
    ClipStore store(folder);
    for (int i = 0; i < clips; ++i) {
        CapturedClip capture;
        capture.text = QStringLiteral("Appunto numero %1: perché il caffè è buono e la riga è lunga").arg(i);
        capture.hash = contentHash(QStringLiteral("text\n") + capture.text);
        capture.appName = QStringLiteral("Editor");
        capture.formats = {{0, QStringLiteral("public.utf8-plain-text"), capture.text.toUtf8()}};
        store.add(capture);
    }
}

double panel(Typist &typist, int clips)
{
    const QTemporaryDir folder;
    fill(folder.path(), clips);
    const auto platform = makeLinuxPlatform();
    Preferences prefs(*platform->defaults);
    prefs.setMaxItems(clips);
    AppDelegate delegate(*platform, prefs, folder.path());
    delegate.finishLaunching();
    QWidget *window = nullptr;
    for (QWidget *widget : QApplication::topLevelWidgets()) {
        if (widget->objectName() == QStringLiteral("history"))
            window = widget;
    }
    return median(measure(window, typist, [&platform] { return !platform->panelSurface->isPresented(); }));
}

} // namespace

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    Typist typist;
    const double bare = bareWindow(typist);
    std::printf("bare window: %.2f ms (median of %d)\n", bare / 1000, openings);
    for (const int clips : {500, 5000}) {
        const double own = panel(typist, clips);
        std::printf("panel with %d clips: %.2f ms, %.2f x the bare window (aim 1.5)\n", clips, own / 1000,
                    own / bare);
    }
    return bare > 0 ? 0 : 1;
}
