#include "Platform/linux/xdg/XdgDesktopEntries.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest/QTest>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <thread>
#include <vector>

namespace {

class XdgDesktopEntriesTest : public ::testing::Test {
protected:
    void install(const QString &file, const QByteArray &keys) const
    {
        const QString path = root.filePath(file);
        QDir().mkpath(QFileInfo(path).absolutePath());
        QFile entry(path);
        ASSERT_TRUE(entry.open(QIODevice::WriteOnly));
        entry.write("[Desktop Entry]\nType=Application\n" + keys);
    }

    [[nodiscard]] XdgDesktopEntries entries(const QString &locales = "it_IT.UTF-8") const
    {
        return XdgDesktopEntries({root.filePath("user"), root.filePath("system")}, locales,
                                 std::chrono::milliseconds(0));
    }

    QTemporaryDir root;
};

FrontApplication app(const QString &identifier, const QString &name)
{
    return {identifier, name};
}

TEST_F(XdgDesktopEntriesTest, AWindowFindsItsEntryByTheMostReliableSign)
{
    install("system/debian-xterm.desktop", "Name=XTerm\nStartupWMClass=XTerm\nExec=xterm\n");
    install("system/chromium.desktop", "Name=Chromium\nStartupWMClass=chromium\nExec=/usr/bin/chromium %U\n");
    install("system/org.xfce.mousepad.desktop",
            "Name=Mousepad\nName[it]=Editor di testo\nExec=mousepad %F\n");
    install("system/xfce4-terminal.desktop", "Name=Terminal\nExec=xfce4-terminal\n");
    install("system/org.kde.konsole.desktop", "Name=Konsole\nExec=konsole\n");
    install("system/gimp.desktop", "Name=GIMP\nExec=gimp-2.10 %U\n");
    install("system/script.desktop", "Name=Script\nExec=python3 /usr/share/script/main.py\n");
    install("system/vendor/tools/one.desktop", "Name=Nested\nExec=nested\n");
    const auto desktop = entries();
    const std::pair<WindowIdentity, FrontApplication> cases[] = {
        {{1, "xterm", "XTerm", "", 5, "xterm"}, app("debian-xterm", "XTerm")},
        {{1, "mail.example.org__inbox", "Chromium", "", 5, "chromium"}, app("chromium", "Chromium")},
        {{1, "XTERM", "custom", "", 5, ""}, app("debian-xterm", "XTerm")},
        {{1, "mousepad", "Mousepad", "org.xfce.mousepad", 5, "mousepad"},
         app("org.xfce.mousepad", "Editor di testo")},
        {{1, "w", "W", "org.xfce.mousepad", 5, ""}, app("org.xfce.mousepad", "Editor di testo")},
        {{1, "xfce4-terminal", "Xfce4-terminal", "", 5, ""}, app("xfce4-terminal", "Terminal")},
        {{1, "konsole", "konsole", "", 5, ""}, app("org.kde.konsole", "Konsole")},
        {{1, "gimp", "Gimp-2.10", "", 5, "gimp-2.10"}, app("gimp", "GIMP")},
        {{1, "", "vendor-tools-one", "", 5, ""}, app("vendor-tools-one", "Nested")},
        {{1, "main.py", "Main.py", "", 5, "python3"}, app("Main.py", "Main.py")},
        {{1, "only-instance", "", "", 0, ""}, app("only-instance", "only-instance")},
        {{1, "", "", "org.unknown", 5, "unknown"}, {}},
        {{}, {}},
    };
    for (const auto &[window, application] : cases)
        EXPECT_EQ(desktop.application(window), application) << window.className.toStdString();
}

TEST_F(XdgDesktopEntriesTest, TheUsersOwnEntryReplacesOrHidesTheSystems)
{
    install("system/a.desktop", "Name=System A\nStartupWMClass=a\nIcon=system-a\n");
    install("user/a.desktop", "Name=User A\nStartupWMClass=a\nIcon=user-a\n");
    install("system/b.desktop", "Name=System B\nStartupWMClass=b\nIcon=b\n");
    install("user/b.desktop", "Hidden=true\n");
    install("user/c.desktop", "Name=Helper\nStartupWMClass=c\nNoDisplay=true\n");
    install("system/c-main.desktop", "Name=Main\nStartupWMClass=c\n");
    install("system/d.desktop", "Name=Unlisted\nStartupWMClass=d\nNoDisplay=true\n");
    const auto desktop = entries();
    const auto named = [&](const char *className) {
        return desktop.application({1, "", QString::fromLatin1(className), "", 0, ""}).localizedName;
    };
    EXPECT_EQ(named("a"), "User A");
    EXPECT_EQ(desktop.iconName("a"), "user-a");
    EXPECT_EQ(named("b"), "b");
    EXPECT_EQ(desktop.iconName("b"), std::nullopt);
    EXPECT_EQ(named("c"), "Main");
    EXPECT_EQ(named("d"), "Unlisted");
}

TEST_F(XdgDesktopEntriesTest, PasswordStoresCarryTheirWellKnownIdentifiers)
{
    install("system/org.keepassxc.KeePassXC.desktop",
            "Name=KeePassXC\nStartupWMClass=keepassxc\nIcon=keepassxc\n");
    install("system/org.gnome.seahorse.Application.desktop",
            "Name=Passwords and Keys\nExec=seahorse\nIcon=sea\n");
    const auto desktop = entries();
    EXPECT_EQ(desktop.application({1, "keepassxc", "KeePassXC", "", 5, ""}),
              app("com.apple.Passwords", "KeePassXC"));
    EXPECT_EQ(desktop.application({1, "seahorse", "Seahorse", "", 5, "seahorse"}),
              app("com.apple.keychainaccess", "Passwords and Keys"));
    // Started from somewhere else, without an entry, it is a password store all the same.
    EXPECT_EQ(desktop.application({1, "bitwarden", "Bitwarden", "", 5, ""}),
              app("com.apple.Passwords", "Bitwarden"));
    EXPECT_EQ(desktop.iconName("com.apple.Passwords"), "keepassxc");
    EXPECT_EQ(desktop.iconName("com.apple.keychainaccess"), "sea");
    EXPECT_EQ(desktop.iconName("org.keepassxc.KeePassXC"), "keepassxc");
}

TEST_F(XdgDesktopEntriesTest, DamagedHugeAndHostileEntriesAreSkipped)
{
    install("user/good.desktop", "Name=Good\n");
    install("user/huge.desktop", "Name=Huge\nComment=" + QByteArray(qsizetype{300} * 1024, 'x'));
    install("user/binary.desktop", QByteArray("Name=Bin\0ary\n", 13));
    QFile::link(root.filePath("nowhere"), root.filePath("user/dangling.desktop"));
    QFile::link(root.filePath("user"), root.filePath("user/loop"));
    ASSERT_EQ(::mkfifo(QFile::encodeName(root.filePath("user/pipe.desktop")).constData(), 0600), 0);
    const auto desktop = entries();
    for (const char *name : {"huge", "binary", "dangling", "pipe", "loop-good"}) {
        const QString className = QString::fromLatin1(name);
        EXPECT_EQ(desktop.application({1, "", className, "", 0, ""}), app(className, className));
    }
    EXPECT_EQ(desktop.application({1, "", "GOOD", "", 0, ""}), app("good", "Good"));
}

TEST_F(XdgDesktopEntriesTest, WhatIsInstalledOrRemovedMeanwhileIsNoticed)
{
    install("system/old.desktop", "Name=Old\n");
    const auto desktop = entries();
    const WindowIdentity added{1, "", "added", "", 0, ""}, removed{1, "", "old", "", 0, ""};
    EXPECT_EQ(desktop.application(removed), app("old", "Old"));
    install("user/added.desktop", "Name=Added\n"); // even a folder that was not there
    EXPECT_TRUE(QTest::qWaitFor([&] { return desktop.application(added) == app("added", "Added"); }));
    QFile::remove(root.filePath("system/old.desktop"));
    EXPECT_TRUE(QTest::qWaitFor([&] { return desktop.application(removed) == app("old", "old"); }));
}

TEST_F(XdgDesktopEntriesTest, ManyThreadsAskWhileItIsReadAndReadAnew)
{
    install("user/a.desktop", "Name=A\nIcon=icon\n");
    XdgDesktopEntries desktop = entries();
    desktop.prewarm();
    std::atomic<int> wrong = 0;
    std::vector<std::jthread> threads;
    threads.reserve(4);
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([&] {
            for (int round = 0; round < 200; ++round)
                wrong +=
                    desktop.application({1, "", "a", "", 0, ""}) != app("a", "A") || !desktop.iconName("a");
        });
    }
    for (int round = 0; round < 20; ++round)
        install(QStringLiteral("user/more%1.desktop").arg(round), "Name=More\n");
    threads.clear();
    EXPECT_EQ(wrong, 0);
}

TEST_F(XdgDesktopEntriesTest, OurOwnEntryIsFoundInTheBuildFoldersShare)
{
    const XdgDesktopEntries desktop({QStringLiteral(SHARE_FOLDER "/applications")}, "it");
    EXPECT_EQ(desktop.application({1, "norvane", "norvane", "", 0, ""}), app("com.norvane.app", "Norvane"));
    EXPECT_EQ(desktop.iconName("com.norvane.app"), "com.norvane.app");
    EXPECT_TRUE(QFile::exists(SHARE_FOLDER "/icons/hicolor/scalable/apps/com.norvane.app.svg"));
    EXPECT_TRUE(QFile::exists(SHARE_FOLDER "/icons/hicolor/symbolic/apps/com.norvane.app-symbolic.svg"));
}

} // namespace
