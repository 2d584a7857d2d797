// The longest time that the event loop is away while a program of the worst kind owns the clipboard or asks
// for it. Needs an X server of its own (tests/support/private-desktop).

#include "bench/SampleClips.h"

#include "Platform/DesktopEntries.h"
#include "Platform/linux/x11/X11Pasteboard.h"

#include <QApplication>
#include <QProcess>
#include <QTimer>

namespace {

constexpr double aim = 50;      // milliseconds
constexpr int watchedFor = 300; // milliseconds, after the fault has had its effect
constexpr qint64 faultPatience = 15000;

class NoEntries final : public DesktopEntries {
public:
    [[nodiscard]] FrontApplication application(const WindowIdentity &window) const override
    {
        return {window.className, window.instanceName};
    }
    [[nodiscard]] std::optional<QString> iconName(const QString &) const override { return std::nullopt; }
};

// Turns of the event loop of at most a millisecond, timed, until `over`.
double longestTurn(const std::function<bool()> &over)
{
    QTimer beat;
    beat.start(1);
    double longest = 0;
    while (!over())
        longest = std::max(
            longest, fastest(1, [] { QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents); }));
    return longest;
}

bool benchFault(const QString &program, const QString &role, const QString &name)
{
    const auto pasteboard = X11Pasteboard::create(std::make_shared<NoEntries>());
    if (!pasteboard)
        return false;
    pasteboard->write({{{{QString::fromUtf16(PasteboardType::plainText), "è" + QByteArray(600000, 'x')}}}});
    QProcess hostile;
    hostile.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    hostile.start(program, {role, name});
    QElapsedTimer patience;
    patience.start();
    double longest = longestTurn([&] { return hostile.canReadLine() || patience.elapsed() > faultPatience; });
    QElapsedTimer watch;
    watch.start();
    longest = std::max(longest, longestTurn([&] { return watch.elapsed() > watchedFor; }));
    hostile.kill();
    hostile.waitForFinished();
    return report(qPrintable(role + u' ' + name + u':'), longest, "ms", aim) &&
           patience.elapsed() <= faultPatience;
}

} // namespace

int main(int argc, char **argv)
{
    const QApplication application(argc, argv);
    const QString program = QCoreApplication::applicationDirPath() + u"/hostileNeighbour";
    bool met = true;
    for (const QString &role : {QStringLiteral("owner"), QStringLiteral("requestor")}) {
        QProcess list;
        list.start(program, {QStringLiteral("--%1s").arg(role)});
        list.waitForFinished();
        const QStringList names = QString::fromUtf8(list.readAll()).split(u'\n', Qt::SkipEmptyParts);
        met = met && !names.isEmpty();
        for (const QString &name : names)
            met &= benchFault(program, role, name);
    }
    return met ? 0 : 1;
}
