// Hot key press to first painted frame while screenshots of 3840 × 2160 are being read, against the same
// panel with the reading held, one opening so and one so, that other work on the machine falls on both. Needs
// an X server of its own (tests/support/private-desktop).

#include "Norvane/AppDelegate.h"
#include "Norvane/app/Preferences.h"
#include "Norvane/store/ClipStore.h"
#include "Platform/linux/compose/LinuxPlatform.h"
#include "bench/HotKeyTiming.h"
#include "bench/SampleClips.h"

#include <QApplication>
#include <QBuffer>
#include <QDir>
#include <QPainter>
#include <QTemporaryDir>
#include <csignal>
#include <unistd.h>

namespace {

constexpr int openings = 30;
constexpr int openingsFirst = 5; // thrown away: fonts and caches
constexpr int screenshots = 20, texts = 500;
constexpr double aim = 1.3;

// A full screen of windows with text.
QByteArray screenshot(QRandomGenerator &random)
{
    QImage image(3840, 2160, QImage::Format_RGB32);
    image.fill(0xff336699);
    QPainter painter(&image);
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPixelSize(15);
    painter.setFont(font);
    for (int column = 0; column < 4; ++column) {
        const QRect window(40 + 950 * column, 40, 900, 2080);
        painter.fillRect(window, column % 2 ? QColor(0x22, 0x22, 0x26) : QColor(Qt::white));
        painter.setPen(column % 2 ? QColor(0xdd, 0xdd, 0xdd) : QColor(Qt::black));
        QString text;
        while (text.size() < 9000)
            text += sampleText(random) + QLatin1Char('\n');
        painter.drawText(window.adjusted(12, 12, -12, -12), Qt::TextWordWrap, text.left(9000));
    }
    painter.end();
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes;
}

// The screenshots below the texts, so that the panel shows the same rows whether they are read or not.
void fill(const QString &folder)
{
    ClipStore store(folder);
    QRandomGenerator random(7);
    for (int i = 0; i < screenshots + texts; ++i) {
        CapturedClip capture;
        if (i < screenshots) {
            capture.kind = ClipKind::image;
            capture.pixelSize = QSizeF(3840, 2160);
            capture.formats = {{0, QStringLiteral("public.png"), screenshot(random)}};
        } else {
            capture.text = sampleText(random);
            capture.formats = {{0, QStringLiteral("public.utf8-plain-text"), capture.text.toUtf8()}};
        }
        capture.hash = contentHash(capture.formats.front().data);
        store.add(capture);
    }
}

qsizetype readImages(const QString &folder)
{
    const ClipStore store(folder);
    return std::ranges::count_if(store.clips(),
                                 [](const ClipPointer &clip) { return clip->recognizedText.has_value(); });
}

double quantile(std::vector<double> values, double part)
{
    if (values.empty())
        return 0;
    std::ranges::sort(values);
    return values[static_cast<size_t>(part * static_cast<double>(values.size() - 1))];
}

QWidget *historyPanel()
{
    for (QWidget *widget : QApplication::topLevelWidgets()) {
        if (widget->objectName() == QStringLiteral("history"))
            return widget;
    }
    return nullptr;
}

// The recognition process that reads for this one; 0 while there is none.
pid_t readingProcess()
{
    for (const auto &entry : QDir(QStringLiteral("/proc")).entryList(QDir::Dirs)) {
        QFile file(QStringLiteral("/proc/%1/stat").arg(entry));
        if (!entry.front().isDigit() || !file.open(QIODevice::ReadOnly))
            continue;
        const QByteArray line = file.readAll();
        const auto fields = line.mid(line.lastIndexOf(')') + 2).split(' ');
        if (line.contains("(norvane-recogn") && fields.value(1).toInt() == ::getpid())
            return entry.toInt();
    }
    return 0;
}

bool hold(bool isHeld)
{
    const pid_t process = readingProcess();
    return process > 0 && ::kill(process, isHeld ? SIGSTOP : SIGCONT) == 0;
}

struct Times {
    std::vector<double> atRest;
    std::vector<double> whileReading;
};

Times measured(QWidget *panel, const PanelSurface &surface)
{
    FrameWatch watch(panel);
    Typist typist;
    Times times;
    for (int i = -2 * openingsFirst; i < 2 * openings; ++i) {
        const bool isHeld = i % 2 != 0;
        if (!hold(isHeld))
            break;
        const auto time = open(watch, typist);
        close([&surface] { return !surface.isPresented(); }, typist);
        if (time && i >= 0)
            (isHeld ? times.atRest : times.whileReading).push_back(*time);
    }
    hold(false);
    return times;
}

void print(const char *name, const std::vector<double> &times)
{
    std::printf("%-14s %6.2f ms (median of %zu), %6.2f ms (95 of 100)\n", name, quantile(times, 0.5),
                times.size(), quantile(times, 0.95));
}

} // namespace

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    const QTemporaryDir folder;
    fill(folder.path());
    const auto platform = makeLinuxPlatform();
    Preferences prefs(*platform->defaults);
    prefs.setMaxItems(screenshots + texts);
    AppDelegate delegate(*platform, prefs, folder.path());
    delegate.finishLaunching();
    QWidget *panel = historyPanel();
    if (!panel || !QTest::qWaitFor([] { return readingProcess() > 0; }, 30000)) {
        std::fprintf(stderr, "no image is being read\n");
        return 1;
    }
    const Times times = measured(panel, *platform->panelSurface);
    print("reading held:", times.atRest);
    print("while reading:", times.whileReading);
    std::printf("%d of %d images were read meanwhile\n", static_cast<int>(readImages(folder.path())),
                screenshots);
    if (times.whileReading.size() < openings / 2 || times.atRest.empty()) {
        std::fprintf(stderr, "the panel did not open, or the images were read too soon\n");
        return 1;
    }
    return report("hot key to panel while reading",
                  quantile(times.whileReading, 0.5) / quantile(times.atRest, 0.5), "with the reading held",
                  aim)
               ? 0
               : 1;
}
