// A copy on its way from owner to reader: ours from ours, ours from xclip and xclip from ours, against xclip
// from xclip in the same run. All take turns, and of each the fastest run counts. Needs an X server of
// its own (tests/support/private-desktop).

#include "bench/SampleClips.h"

#include "Platform/DesktopEntries.h"
#include "Platform/linux/x11/X11Pasteboard.h"

#include <QApplication>
#include <QProcess>
#include <QTemporaryFile>
#include <QTimer>

namespace {

constexpr qsizetype kibibyte = 1024, mebibyte = 1024 * kibibyte;

class NoEntries final : public DesktopEntries {
public:
    [[nodiscard]] FrontApplication application(const WindowIdentity &window) const override
    {
        return {window.className, window.instanceName};
    }
    [[nodiscard]] std::optional<QString> iconName(const QString &) const override { return std::nullopt; }
};

[[noreturn]] void fail(const char *what)
{
    std::fprintf(stderr, "%s\n", what);
    std::exit(2);
}

// Returns when what was written is claimed, and what was copied is read.
void settle(X11Pasteboard &pasteboard)
{
    bool settled = false;
    pasteboard.whenSettled([&] { settled = true; });
    while (!settled)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

std::unique_ptr<X11Pasteboard> settledPasteboard()
{
    auto pasteboard = X11Pasteboard::create(std::make_shared<NoEntries>());
    if (!pasteboard)
        fail("no X server");
    PasteboardPolicy policy;
    policy.byteBudget = 512 * mebibyte;
    pasteboard->setPolicy(policy);
    settle(*pasteboard);
    return pasteboard;
}

QByteArray textOf(const X11Pasteboard &pasteboard)
{
    const auto snapshot = pasteboard.snapshot();
    return snapshot->items.empty()
               ? QByteArray()
               : snapshot->items.front().data(PasteboardType::plainText).value_or(QByteArray());
}

void awaitText(const X11Pasteboard &reader, qsizetype size)
{
    QElapsedTimer patience;
    patience.start();
    QTimer tick; // wakes the loop where nothing comes
    tick.start(1000);
    while (textOf(reader).size() != size) {
        if (patience.elapsed() > 20000)
            fail("our reader did not get the text");
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
}

bool runXclip(const QStringList &arguments)
{
    QProcess xclip;
    xclip.setStandardOutputFile(QProcess::nullDevice());
    xclip.setStandardErrorFile(QProcess::nullDevice());
    xclip.start(QStringLiteral("xclip"), QStringList{"-selection", "clipboard"} + arguments);
    if (!xclip.waitForFinished(30000))
        fail("xclip hangs");
    return xclip.exitCode() == 0;
}

// As owner it goes to the background, and owns the clipboard a moment later.
void copyWithXclip(const QString &file)
{
    if (!runXclip({"-i", file}))
        fail("xclip does not copy");
}

// As reader it ends with the last byte, or at once where nobody owns the clipboard yet.
void readWithXclip()
{
    for (int tries = 0; !runXclip({"-o"}); ++tries) {
        if (tries == 100)
            fail("xclip does not read");
    }
}

struct Times {
    double ours = std::numeric_limits<double>::max();
    double fromXclip = ours, xclip = ours;
    double xclipReading = ours, xclipReadingOurs = ours, oursReading = ours; // of what was claimed before
};

void keepLeast(double &best, const std::function<void()> &work)
{
    best = std::min(best, fastest(1, work));
}

std::vector<PasteboardItem> items(const QByteArray &text)
{
    return {{{{QString::fromUtf16(PasteboardType::plainText), text}}}};
}

// One round of each. While xclip reads xclip, nobody else does.
void measure(const QByteArray &text, const QString &file, Times &best)
{
    keepLeast(best.xclip, [&] {
        copyWithXclip(file);
        keepLeast(best.xclipReading, readWithXclip);
    });
    std::unique_ptr<X11Pasteboard> reader;
    keepLeast(best.oursReading, [&] { reader = settledPasteboard(); });
    if (textOf(*reader).size() != text.size())
        fail("our reader did not get xclip's text");
    {
        const auto owner = settledPasteboard();
        owner->write(items("-"));
        awaitText(*reader, 1);
        keepLeast(best.ours, [&] {
            owner->write(items(text));
            awaitText(*reader, text.size());
        });
        keepLeast(best.xclipReadingOurs, readWithXclip);
    }
    reader->write(items("-"));
    settle(*reader);
    keepLeast(best.fromXclip, [&] {
        copyWithXclip(file);
        awaitText(*reader, text.size());
    });
}

bool benchSize(const char *name, qsizetype size, int rounds, double aim)
{
    QTemporaryFile file;
    const QByteArray text(size, 'x');
    if (!file.open() || file.write(text) != size || !file.flush())
        fail("no room for the text");
    // A read that is faster than xclip's claim gets the text before it, which must not be one of another
    // size.
    copyWithXclip(file.fileName());
    awaitText(*settledPasteboard(), size);
    Times best;
    for (int round = 0; round < rounds; ++round)
        measure(text, file.fileName(), best);
    std::printf(
        "%s: copied and read, ours %.2f ms, xclip %.2f ms, ours from xclip %.2f ms; read alone, xclip "
        "from xclip %.2f ms, ours from xclip %.2f ms, xclip from ours %.2f ms\n",
        name, best.ours, best.xclip, best.fromXclip, best.xclipReading, best.oursReading,
        best.xclipReadingOurs);
    const auto line = [name](const char *what) { return QByteArray(QByteArray(name) + ", " + what); };
    bool met = report(line("ours from ours:").constData(), best.ours / best.xclip, "xclip from xclip", aim);
    met &= report(line("ours from xclip:").constData(), best.oursReading / best.xclipReading,
                  "xclip from xclip", 1);
    met &= report(line("xclip from ours:").constData(), best.xclipReadingOurs / best.xclipReading,
                  "xclip from xclip", 1.1);
    return met;
}

} // namespace

int main(int argc, char **argv)
{
    const QApplication application(argc, argv);
    bool met = benchSize("1 KiB", kibibyte, 20, 1);
    met &= benchSize("1 MiB", mebibyte, 20, 1);
    met &= benchSize("32 MiB", 32 * mebibyte, 12, 1.0 / 3);
    met &= benchSize("200 MiB", 200 * mebibyte, 6, 1);
    return met ? 0 : 1;
}
