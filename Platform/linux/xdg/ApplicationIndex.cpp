#include "Platform/linux/xdg/ApplicationIndex.h"

#include "Platform/linux/xdg/DesktopEntryFile.h"

#include <QRegularExpression>
#include <algorithm>
#include <array>
#include <fstream>
#include <set>

namespace fs = std::filesystem;

namespace {

constexpr std::uintmax_t largestEntry = 256ULL * 1024; // bytes; the largest of a full desktop have 40 KiB
constexpr int deepestFolder = 8;
constexpr qsizetype mostApplications = 20000;

constexpr char16_t keychain[] = u"com.apple.keychainaccess", passwords[] = u"com.apple.Passwords";

// Password stores: the identifiers of their desktop entries (distributions, Flatpak, Snap), and window
// classes where programs without an entry have them. In lower case.
constexpr std::array<std::pair<const char16_t *, const char16_t *>, 18> wellKnown{{
    {u"org.gnome.seahorse.application", keychain},
    {u"org.gnome.seahorse", keychain},
    {u"seahorse", keychain},
    {u"org.kde.kwalletmanager5", keychain},
    {u"org.kde.kwalletmanager", keychain},
    {u"kwalletmanager5", keychain},
    {u"kwalletmanager", keychain},
    {u"org.keepassxc.keepassxc", passwords},
    {u"keepassxc_keepassxc", passwords},
    {u"keepassxc", passwords},
    {u"org.gnome.world.secrets", passwords},
    {u"org.gnome.passwordsafe", passwords},
    {u"bitwarden", passwords},
    {u"bitwarden_bitwarden", passwords},
    {u"com.bitwarden.desktop", passwords},
    {u"1password", passwords},
    {u"com.onepassword.onepassword", passwords},
    {u"1password_1password", passwords},
}};

// Programs that run other programs: their file name says nothing of the application.
bool isInterpreter(const QString &executable)
{
    static const QRegularExpression interpreters(
        QStringLiteral(
            "^(python|pypy|node|nodejs|java|sh|bash|dash|zsh|fish|perl|ruby|lua|php|mono|wine|wineloader|"
            "electron|gjs|gjs-console|qml|env|flatpak|bwrap|snap|pkexec|sudo|xdg-open)[0-9.-]*(-preloader)?"
            "$"),
        QRegularExpression::CaseInsensitiveOption);
    return interpreters.match(executable).hasMatch();
}

std::optional<std::string> contents(const fs::path &file)
{
    std::error_code error;
    if (!fs::is_regular_file(file, error) || fs::file_size(file, error) > largestEntry || error)
        return std::nullopt; // not even opened: a pipe would never end
    std::ifstream stream(file, std::ios::binary);
    std::string text(largestEntry, '\0');
    stream.read(text.data(), static_cast<std::streamsize>(text.size()));
    text.resize(static_cast<size_t>(stream.gcount()));
    return text;
}

fs::file_time_type changeTime(const fs::path &folder)
{
    std::error_code error;
    const auto time = fs::last_write_time(folder, error);
    return error ? fs::file_time_type::min() : time;
}

// Goes through a folder and those in it. `visit` gets each file; `enter` each folder before its files.
template <typename Enter, typename Visit>
void walk(const fs::path &folder, int depth, std::set<fs::path> &seen, const Enter &enter, const Visit &visit)
{
    std::error_code error;
    enter(folder);
    const auto canonical = fs::canonical(folder, error);
    if (error || depth > deepestFolder || !seen.insert(canonical).second)
        return;
    std::vector<fs::path> entries;
    for (fs::directory_iterator each(folder, error), end; !error && each != end; each.increment(error))
        entries.push_back(each->path());
    std::ranges::sort(entries); // so that ties do not depend on the file system
    for (const auto &entry : entries) {
        if (fs::is_directory(entry, error))
            walk(entry, depth + 1, seen, enter, visit);
        else if (entry.extension() == ".desktop")
            visit(entry);
    }
}

} // namespace

ApplicationIndex::ApplicationIndex(const std::vector<fs::path> &folders,
                                   const std::vector<std::string> &locales)
{
    for (const auto &folder : folders)
        readFolder(folder, locales);
}

bool ApplicationIndex::isOutdated() const
{
    return std::ranges::any_of(folderTimes,
                               [](const auto &each) { return changeTime(each.first) != each.second; });
}

void ApplicationIndex::readFolder(const fs::path &root, const std::vector<std::string> &locales)
{
    std::set<fs::path> seen;
    const auto enter = [this](const fs::path &folder) {
        folderTimes.emplace_back(folder, changeTime(folder));
    };
    const auto visit = [&](const fs::path &file) {
        QString identifier = QString::fromStdString(file.lexically_relative(root).string());
        identifier.replace(u'/', u'-').chop(static_cast<qsizetype>(std::string_view(".desktop").size()));
        if (!identifier.isEmpty() && !applications.contains(identifier) &&
            applications.size() < mostApplications)
            add(identifier, file, locales);
    };
    walk(root, 0, seen, enter, visit);
}

void ApplicationIndex::add(const QString &identifier, const fs::path &file,
                           const std::vector<std::string> &locales)
{
    const auto text = contents(file);
    const auto entry = text ? parseDesktopEntry(*text, locales) : std::nullopt;
    if (!entry)
        return;
    if (entry->hidden) {
        applications.insert(identifier, nullptr);
        return;
    }
    const auto application = std::make_shared<const Application>(
        Application{identifier, QString::fromStdString(entry->name), QString::fromStdString(entry->icon),
                    entry->noDisplay});
    applications.insert(identifier, application);
    addKey(byWindowClass, QString::fromStdString(entry->startupWMClass), *application);
    addKey(byIdentifier, identifier, *application);
    addKey(byLastPart, identifier.section(u'.', -1), *application);
    const QString executable = QString::fromStdString(entry->executable);
    if (!isInterpreter(executable))
        addKey(byExecutable, executable, *application);
}

void ApplicationIndex::addKey(Keys &keys, const QString &key, const Application &application)
{
    if (key.isEmpty())
        return;
    const Application *&place = keys[key.toLower()];
    if (!place || (place->noDisplay && !application.noDisplay))
        place = &application;
}

// What an author declared beats what names happen to be alike.
const ApplicationIndex::Application *ApplicationIndex::find(const WindowIdentity &window) const
{
    const QString className = window.className.toLower();
    const std::pair<const Keys &, QString> attempts[] = {
        {byWindowClass, className},
        {byWindowClass, window.instanceName.toLower()},
        {byIdentifier, window.gtkApplicationID.toLower()},
        {byIdentifier, className},
        {byLastPart, className},
        {byExecutable, isInterpreter(window.executable) ? QString() : window.executable.toLower()},
    };
    for (const auto &[keys, key] : attempts) {
        if (const auto *application = key.isEmpty() ? nullptr : keys.value(key))
            return application;
    }
    return nullptr;
}

FrontApplication ApplicationIndex::application(const WindowIdentity &window) const
{
    if (const auto *application = find(window))
        return {wellKnownIdentifier(application->identifier), application->name};
    return {};
}

std::optional<QString> ApplicationIndex::iconName(const QString &identifier) const
{
    for (const QString &each : entryIdentifiers(identifier)) {
        const auto *application = byIdentifier.value(each.toLower());
        if (application && !application->icon.isEmpty())
            return application->icon;
    }
    return std::nullopt;
}

QString wellKnownIdentifier(const QString &identifier)
{
    for (const auto &[entry, known] : wellKnown) {
        if (identifier.compare(QStringView(entry), Qt::CaseInsensitive) == 0)
            return QString::fromUtf16(known);
    }
    return identifier;
}

QStringList entryIdentifiers(const QString &identifier)
{
    QStringList identifiers{identifier};
    for (const auto &[entry, known] : wellKnown) {
        if (identifier == QStringView(known))
            identifiers.append(QString::fromUtf16(entry));
    }
    return identifiers;
}
