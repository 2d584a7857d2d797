// Hot key press to first painted frame, and keystroke to painted results: the history panel with many clips
// against a bare window of the same toolkit, shown the same way in the same run. Needs an X server of its own
// (tests/support/private-desktop).

#include "bench/HotKeyTiming.h"
#include "bench/SampleClips.h"

#include "Norvane/AppDelegate.h"
#include "Norvane/ClipViews.h"
#include "Norvane/PopupPanel.h"
#include "Norvane/SearchField.h"
#include "Norvane/app/Preferences.h"
#include "Platform/linux/compose/LinuxPlatform.h"

#include <QApplication>
#include <QLineEdit>
#include <QTemporaryDir>
#include <QTest>
#include <array>
#include <cstdio>
#include <map>
#include <xcb/xtest.h>

namespace {

constexpr int openings = 40;
constexpr int bareOpeningsFirst = 5; // thrown away: the first show of a process pays for fonts and caches
constexpr int wordsTyped = 12;
constexpr double openingAim = 1.5; // times the bare window
constexpr double frame = 16.7;     // milliseconds, of 60 a second

// X key codes.
constexpr uint8_t backspaceKey = 22;
constexpr struct {
    const char *word;
    std::array<uint8_t, 6> keys; // 0: none
} words[] = {{"perche", {33, 26, 27, 54, 43, 26}},
             {"zzyzx", {52, 52, 29, 52, 53, 0}},
             {"e no", {26, 65, 57, 32, 0, 0}}};

double median(std::vector<double> times)
{
    std::sort(times.begin(), times.end());
    return times.empty() ? 0 : times[times.size() / 2];
}

// A window with a field to type into, and where what was typed shows.
struct Subject {
    QWidget *window;
    QLineEdit *field;
    QWidget *results;
    std::function<bool()> isHidden;
};

double measureOpening(const Subject &subject, Typist &typist)
{
    FrameWatch watch(subject.window);
    std::vector<double> times;
    for (int i = 0; i < openings + bareOpeningsFirst; ++i) {
        const auto time = open(watch, typist);
        if (time && i >= bareOpeningsFirst)
            times.push_back(*time);
        close(subject.isHidden, typist);
    }
    return median(times);
}

// Milliseconds from each keystroke to its painted results: the median of all, and of the dearest letter.
struct Typing {
    double median = 0;
    double worst = 0;
    QString worstQuery;
};

Typing measureTyping(const Subject &subject, Typist &typist)
{
    FrameWatch opening(subject.window);
    if (!open(opening, typist))
        return {};
    FrameWatch watch(subject.results);
    std::map<QString, std::vector<double>> byQuery;
    std::vector<double> all;
    for (int round = 0; round < wordsTyped; ++round) {
        const auto &[word, keys] = words[static_cast<size_t>(round) % std::size(words)];
        for (size_t i = 0; i < keys.size() && keys[i] != 0; ++i) {
            watch.arm();
            typist.tap(keys[i]);
            if (watch.awaitFrame()) {
                all.push_back(watch.milliseconds());
                byQuery[QString::fromLatin1(word).left(static_cast<qsizetype>(i) + 1)].push_back(all.back());
            }
            QTest::qWait(40);
        }
        while (!subject.field->text().isEmpty()) {
            typist.tap(backspaceKey);
            QTest::qWait(40);
        }
    }
    close(subject.isHidden, typist);
    Typing typing{median(all), 0, {}};
    for (const auto &[query, times] : byQuery) {
        if (median(times) > typing.worst) {
            typing.worst = median(times);
            typing.worstQuery = query;
        }
    }
    return typing;
}

struct Figures {
    double opening = 0;
    Typing typing;
};

Figures measure(const Subject &subject, Typist &typist)
{
    const double opening = measureOpening(subject, typist);
    return {opening, measureTyping(subject, typist)};
}

Figures bareWindow(Typist &typist)
{
    const auto platform = makeLinuxPlatform();
    QWidget window;
    window.setObjectName(QStringLiteral("bare"));
    QLineEdit field(&window);
    window.resize(780, 470);
    PanelSurface &surface = *platform->panelSurface;
    surface.adopt(&window);
    platform->hotKeys->onPress = [&] {
        if (surface.isPresented())
            surface.dismiss();
        else
            surface.present({200, 200, 780, 470});
    };
    if (platform->hotKeys->registerHotKey(KeyCode::v, ModifierFlag::option | ModifierFlag::command) != 0)
        return {};
    field.setFocus();
    return measure({&window, &field, &field, [&surface] { return !surface.isPresented(); }}, typist);
}

Figures panel(Typist &typist, int clips)
{
    const QTemporaryDir folder;
    fillHistory(folder.path(), clips);
    const auto platform = makeLinuxPlatform();
    Preferences prefs(*platform->defaults);
    prefs.setMaxItems(clips);
    AppDelegate delegate(*platform, prefs, folder.path());
    delegate.finishLaunching();
    PopupPanel *window = nullptr;
    for (QWidget *widget : QApplication::topLevelWidgets()) {
        if (auto *found = qobject_cast<PopupPanel *>(widget))
            window = found;
    }
    PanelSurface &surface = *platform->panelSurface;
    return measure({window, window->searchField, window->tableView->viewport(),
                    [&surface] { return !surface.isPresented(); }},
                   typist);
}

} // namespace

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    Typist typist;
    const Figures bare = bareWindow(typist);
    std::printf("bare window: opening %.2f ms (median of %d), keystroke %.2f ms\n", bare.opening, openings,
                bare.typing.median);
    bool met = bare.opening > 0 && bare.typing.median > 0;
    for (const int clips : {500, 100000}) {
        const Figures own = panel(typist, clips);
        std::printf(
            "panel with %d clips: opening %.2f ms, keystroke %.2f ms, of the dearest (\"%s\") %.2f ms\n",
            clips, own.opening, own.typing.median, qUtf8Printable(own.typing.worstQuery), own.typing.worst);
        const QByteArray number = QByteArray::number(clips);
        met &= report("opening, " + number + ":", own.opening / bare.opening, "bare window", openingAim);
        met &= report("keystroke, " + number + ":", own.typing.median / frame, "60 Hz frame", 1);
        std::printf("keystroke, %d: %.2f x bare window\n", clips, own.typing.median / bare.typing.median);
    }
    return met ? 0 : 1;
}
