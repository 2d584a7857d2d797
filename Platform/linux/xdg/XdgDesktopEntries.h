#pragma once

#include "Platform/DesktopEntries.h"

#include <QStringList>
#include <chrono>
#include <memory>

class ApplicationIndex;

// The applications in $XDG_DATA_HOME and $XDG_DATA_DIRS, with names in the user's language. Any thread.
//
// All files are read on a thread of its own: the first question waits for it (some tens of milliseconds for a
// few hundred entries, none after `prewarm`), later ones never do. What is installed meanwhile is noticed by
// the first question after a few seconds and known soon after it.
class XdgDesktopEntries : public DesktopEntries {
public:
    static constexpr std::chrono::milliseconds checkInterval{3000};

    XdgDesktopEntries();

    // `folders` hold desktop entries, in order of precedence; `locales` as in LANGUAGE.
    XdgDesktopEntries(const QStringList &folders, const QString &locales,
                      std::chrono::milliseconds interval = checkInterval);
    ~XdgDesktopEntries() override;

    // Begins to read the entries, without waiting for them.
    void prewarm();

    [[nodiscard]] FrontApplication application(const WindowIdentity &window) const override;
    [[nodiscard]] std::optional<QString> iconName(const QString &bundleIdentifier) const override;

private:
    class Reader;
    std::unique_ptr<Reader> reader;
};
