#include "Norvane/AppDelegate.h"
#include "Norvane/CommandLine.h"
#include "Norvane/app/Preferences.h"
#include "Norvane/store/ClipStore.h"
#include "Platform/Log.h"
#include "Platform/linux/compose/LinuxPlatform.h"

#include <QApplication>
#include <QIcon>
#include <QTextStream>

namespace {

constexpr int failure = 1;
constexpr int wrongUsage = 2;

// Desktops without an icon theme of their own still get icons.
void chooseIconTheme()
{
    const auto hasIcons = [] { return QIcon::hasThemeIcon(QStringLiteral("text-x-generic")); };
    for (const auto &name : {QStringLiteral("Adwaita"), QStringLiteral("breeze")}) {
        if (hasIcons())
            return;
        QIcon::setFallbackThemeName(name);
    }
}

// The exit code of a command line that needs no instance.
std::optional<int> answerAtOnce(const CommandLine &commandLine)
{
    switch (commandLine.kind) {
    case CommandLine::Kind::help:
        QTextStream(stdout) << commandLineHelp();
        return 0;
    case CommandLine::Kind::version:
        QTextStream(stdout) << "norvane " << NORVANE_VERSION << '\n';
        return 0;
    case CommandLine::Kind::unknown:
        QTextStream(stderr) << "norvane: there is no option " << commandLine.action << "\n\n"
                            << commandLineHelp();
        return wrongUsage;
    case CommandLine::Kind::run:
    case CommandLine::Kind::ask:
        break;
    }
    return std::nullopt;
}

// True when a running instance took the request over.
bool handOver(int argc, char **argv, const QString &action)
{
    const QCoreApplication application(argc, argv);
    return makeApplicationInstance()->ask(action);
}

int runApplication(const CommandLine &commandLine)
{
    const auto instance = makeApplicationInstance();
    if (!instance->claim()) {
        if (instance->ask(commandLine.action))
            return 0;
        logLine(QStringLiteral("Norvane: another instance is running and does not answer"));
        return failure;
    }
    chooseIconTheme();
    QGuiApplication::setWindowIcon(QIcon::fromTheme(QStringLiteral("com.norvane.app"),
                                                    QIcon(QStringLiteral(":/icons/com.norvane.app.svg"))));
    const auto platform = makeLinuxPlatform();
    Preferences::setSharedDefaults(*platform->defaults);
    AppDelegate delegate(*platform, Preferences::shared(), ClipStore::defaultFolder());
    delegate.finishLaunching();
    instance->onAction = [&delegate](const QString &action) { delegate.perform(action); };
    quitOnTerminationSignals();
    if (commandLine.actsAtStart)
        QTimer::singleShot(0, &delegate, [&] { delegate.perform(commandLine.action); });
    return QApplication::exec();
}

} // namespace

int main(int argc, char **argv)
{
    prepareLinuxEnvironment();
    QCoreApplication::setApplicationName(QStringLiteral("norvane"));
    QCoreApplication::setApplicationVersion(QStringLiteral(NORVANE_VERSION));
    QGuiApplication::setDesktopFileName(QStringLiteral("com.norvane.app"));
    const CommandLine commandLine = parseCommandLine(QStringList(argv + 1, argv + argc));
    if (const auto code = answerAtOnce(commandLine))
        return *code;
    if (handOver(argc, argv, commandLine.action))
        return 0;
    if (commandLine.kind == CommandLine::Kind::ask) {
        QTextStream(stdout) << "No running Norvane answered.\n";
        return 0;
    }
    QString problem;
    auto display = reachDisplay(problem);
    if (!display) {
        QTextStream(stderr) << "norvane: " << problem << '\n';
        return failure;
    }
    const QApplication application(argc, argv);
    display.reset(); // the toolkit has a connection of its own
    QApplication::setQuitOnLastWindowClosed(false);
    return runApplication(commandLine);
}
