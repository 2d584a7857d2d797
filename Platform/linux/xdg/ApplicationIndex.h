#pragma once

#include "Platform/FrontApplication.h"
#include "Platform/WindowIdentity.h"

#include <QHash>
#include <QStringList>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

// The applications that a set of folders describes, as they were at one moment. Immutable once built; any
// thread.
class ApplicationIndex {
public:
    // `folders` in order of precedence: an entry in an earlier one replaces those of the same identifier
    // behind it.
    ApplicationIndex(const std::vector<std::filesystem::path> &folders,
                     const std::vector<std::string> &locales);

    // An entry was added, replaced or removed in the folders since this was built.
    [[nodiscard]] bool isOutdated() const;

    // Absent parts where no entry matches.
    [[nodiscard]] FrontApplication application(const WindowIdentity &window) const;
    [[nodiscard]] std::optional<QString> iconName(const QString &identifier) const;

private:
    struct Application {
        QString identifier;
        QString name;
        QString icon;
        bool noDisplay = false;
    };
    // Keys in lower case. Where several applications share one, those that menus show come before the others.
    using Keys = QHash<QString, const Application *>;
    using FolderTimes = std::vector<std::pair<std::filesystem::path, std::filesystem::file_time_type>>;

    void readFolder(const std::filesystem::path &root, const std::vector<std::string> &locales);
    void add(const QString &identifier, const std::filesystem::path &file,
             const std::vector<std::string> &locales);
    void addKey(Keys &keys, const QString &key, const Application &application);
    [[nodiscard]] const Application *find(const WindowIdentity &window) const;

    FolderTimes folderTimes; // of every folder that was read, and of those that were not there
    QHash<QString, std::shared_ptr<const Application>>
        applications; // by identifier; null where one is hidden
    Keys byWindowClass, byIdentifier, byLastPart, byExecutable;
};

// The identifier under which an application is known across desktops; its own where it has none.
[[nodiscard]] QString wellKnownIdentifier(const QString &identifier);

// The identifiers of the desktop entries that may stand behind an identifier, itself among them.
[[nodiscard]] QStringList entryIdentifiers(const QString &identifier);
