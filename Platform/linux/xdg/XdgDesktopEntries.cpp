#include "Platform/linux/xdg/XdgDesktopEntries.h"

#include "Platform/linux/xdg/ApplicationIndex.h"
#include "Platform/linux/xdg/DesktopEntryFile.h"

#include <QDir>
#include <QFile>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace {

QStringList applicationFolders()
{
    QString own = qEnvironmentVariable("XDG_DATA_HOME");
    if (own.isEmpty())
        own = QDir::homePath() + QStringLiteral("/.local/share");
    QStringList roots{own};
    QString system = qEnvironmentVariable("XDG_DATA_DIRS");
    if (system.isEmpty())
        system = QStringLiteral("/usr/local/share:/usr/share");
    roots.append(system.split(u':', Qt::SkipEmptyParts));
    QStringList folders;
    for (const QString &root : std::as_const(roots)) {
        const QString folder = QDir::cleanPath(root + QStringLiteral("/applications"));
        if (QDir::isAbsolutePath(root) && !folders.contains(folder)) // relative ones are to be ignored
            folders.append(folder);
    }
    return folders;
}

// The languages of messages, as the desktop's own menus choose them.
QString messageLocales()
{
    for (const char *variable : {"LANGUAGE", "LC_ALL", "LC_MESSAGES", "LANG"}) {
        if (const QString value = qEnvironmentVariable(variable); !value.isEmpty())
            return value;
    }
    return {};
}

} // namespace

// Builds the index on its thread, and builds it anew when the folders changed.
class XdgDesktopEntries::Reader {
public:
    Reader(const QStringList &folderNames, const QString &localeNames, std::chrono::milliseconds interval)
        : locales(localeVariants(localeNames.toStdString())), checkInterval(interval)
    {
        for (const QString &folder : folderNames)
            folders.emplace_back(QFile::encodeName(folder).toStdString());
    }

    void begin()
    {
        const std::lock_guard lock(mutex);
        beginLocked();
    }

    std::shared_ptr<const ApplicationIndex> index()
    {
        std::unique_lock lock(mutex);
        if (!current || std::chrono::steady_clock::now() >= nextCheck)
            beginLocked();
        changed.wait(lock, [this] { return current != nullptr; });
        return current;
    }

private:
    void beginLocked()
    {
        if (isReading)
            return;
        isReading = true;
        // The thread before has nothing left to do but end: assigning joins it.
        thread = std::jthread([this, before = current] { read(before); });
    }

    void read(const std::shared_ptr<const ApplicationIndex> &before)
    {
        auto index = before && !before->isOutdated()
                         ? before
                         : std::make_shared<const ApplicationIndex>(folders, locales);
        const std::lock_guard lock(mutex);
        current = std::move(index);
        nextCheck = std::chrono::steady_clock::now() + checkInterval;
        isReading = false;
        changed.notify_all();
    }

    std::vector<std::filesystem::path> folders;
    std::vector<std::string> locales;
    std::chrono::milliseconds checkInterval;

    std::mutex mutex;
    std::condition_variable changed;
    std::shared_ptr<const ApplicationIndex> current; // guarded, as the rest of these
    std::chrono::steady_clock::time_point nextCheck;
    bool isReading = false;
    std::jthread thread; // last: it ends before what it uses
};

XdgDesktopEntries::XdgDesktopEntries() : XdgDesktopEntries(applicationFolders(), messageLocales()) {}

XdgDesktopEntries::XdgDesktopEntries(const QStringList &folders, const QString &locales,
                                     std::chrono::milliseconds interval)
    : reader(std::make_unique<Reader>(folders, locales, interval))
{
}

XdgDesktopEntries::~XdgDesktopEntries() = default;

void XdgDesktopEntries::prewarm()
{
    reader->begin();
}

FrontApplication XdgDesktopEntries::application(const WindowIdentity &window) const
{
    auto application = reader->index()->application(window);
    if (application.bundleIdentifier)
        return application;
    const QString &said = window.className.isEmpty() ? window.instanceName : window.className;
    if (said.isEmpty())
        return {};
    return {wellKnownIdentifier(said), said};
}

std::optional<QString> XdgDesktopEntries::iconName(const QString &bundleIdentifier) const
{
    return reader->index()->iconName(bundleIdentifier);
}
