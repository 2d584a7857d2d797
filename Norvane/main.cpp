#include "Norvane/AppDelegate.h"
#include "Norvane/app/Preferences.h"
#include "Norvane/store/ClipStore.h"
#include "Platform/Log.h"
#include "Platform/linux/compose/LinuxPlatform.h"

#include <QApplication>
#include <QIcon>
#include <QTextStream>

namespace {

constexpr int failure = 1;

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

// True when a running instance took the request over.
bool handOver(int argc, char **argv)
{
    [[maybe_unused]] const QCoreApplication application(argc, argv);
    return makeApplicationInstance()->ask(QStringLiteral("show"));
}

int runApplication(QApplication &application)
{
    const auto instance = makeApplicationInstance();
    if (!instance->claim()) {
        if (instance->ask(QStringLiteral("show")))
            return 0;
        logLine(QStringLiteral("Norvane: another instance is running and does not answer"));
        return failure;
    }
    chooseIconTheme();
    const auto platform = makeLinuxPlatform();
    Preferences::setSharedDefaults(*platform->defaults);
    AppDelegate delegate(*platform, Preferences::shared(), ClipStore::defaultFolder());
    delegate.finishLaunching();
    instance->onAction = [&delegate](const QString &action) { delegate.perform(action); };
    quitOnTerminationSignals();
    return QApplication::exec();
}

} // namespace

int main(int argc, char **argv)
{
    prepareLinuxEnvironment();
    QCoreApplication::setApplicationName(QStringLiteral("norvane"));
    QCoreApplication::setApplicationVersion(QStringLiteral(NORVANE_VERSION));
    QGuiApplication::setDesktopFileName(QStringLiteral("com.norvane.app"));
    for (int i = 1; i < argc; ++i) {
        if (qstrcmp(argv[i], "--version") == 0) {
            QTextStream(stdout) << "norvane " << NORVANE_VERSION << '\n';
            return 0;
        }
    }
    if (handOver(argc, argv))
        return 0;
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    return runApplication(application);
}
