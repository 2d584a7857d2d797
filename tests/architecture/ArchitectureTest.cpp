#include "tests/architecture/Arrows.h"

#include <QDirIterator>
#include <QFile>
#include <gtest/gtest.h>

namespace {

using namespace Qt::StringLiterals;

struct Planted {
    const char *path;
    const char *line;
    bool isFault;
};

class PlantedLine : public ::testing::TestWithParam<Planted> {};

TEST_P(PlantedLine, IsJudgedByItsRoom)
{
    const auto &[path, line, isFault] = GetParam();
    const QString text = u"#pragma once\n"_s + QString::fromUtf8(line) + u"\n"_s;
    const QStringList faults = faultsOf(QLatin1String(path), text);
    EXPECT_EQ(!faults.isEmpty(), isFault) << path << ": " << line << "\n" << faults.join(u'\n').toStdString();
    for (const QString &fault : faults)
        EXPECT_TRUE(fault.startsWith(QLatin1String(path) + u":2: ")) << fault.toStdString();
}

INSTANTIATE_TEST_SUITE_P(
    Arrows, PlantedLine,
    ::testing::Values(
        // down is allowed, up and sideways are not
        Planted{"Norvane/PopupPanel.cpp", "#include \"Norvane/store/Clip.h\"", false},
        Planted{"Norvane/paste/PasteService.cpp", "#include \"Norvane/capture/ClipboardMonitor.h\"", false},
        Planted{"Norvane/store/Clip.cpp", "#include \"Vesmo/Localisation.h\"", false},
        Planted{"Norvane/store/Clip.cpp", "#include \"Norvane/app/Preferences.h\"", true},
        Planted{"Norvane/app/Preferences.h", "#include \"Norvane/capture/Thumbnail.h\"", true},
        Planted{"Norvane/capture/Thumbnail.cpp", "#include \"Norvane/paste/PasteMode.h\"", true},
        Planted{"Norvane/app/Shortcut.cpp", "#include \"Norvane/PopupPanel.h\"", true},
        Planted{"Vesmo/Text.cpp", "#include \"Norvane/store/Clip.h\"", true},
        Planted{"Vesmo/Text.cpp", "  #  include <Norvane/store/Clip.h>", true},
        Planted{"Platform/Log.cpp", "#include \"Vesmo/Text.h\"", true},
        Planted{"Platform/linux/x11/X11Pasteboard.cpp", "#include \"Platform/Pasteboard.h\"", false},
        Planted{"Platform/linux/x11/X11Pasteboard.cpp", "#include \"Platform/linux/x11/XcbConnection.h\"",
                false},
        Planted{"Platform/linux/x11/X11Pasteboard.cpp", "#include \"Platform/linux/xdg/XdgDesktopEntries.h\"",
                true},
        Planted{"Platform/linux/xdg/XdgUserDefaults.cpp", "#include \"Platform/linux/dbus/DBusInstance.h\"",
                true},
        Planted{"Platform/linux/compose/LinuxPlatform.cpp", "#include \"Platform/linux/x11/X11HotKeys.h\"",
                false},
        Planted{"Platform/memory/MemoryPasteboard.h", "#include \"Platform/linux/x11/XcbConnection.h\"",
                true},
        Planted{"Platform/Pasteboard.h", "#include \"Platform/memory/MemoryPasteboard.h\"", true},
        Planted{"Norvane/store/ClipStore.cpp", "#include \"tests/support/Scratch.h\"", true},
        // one root, no computed names, no room without a place
        Planted{"Norvane/store/ClipStore.cpp", "#include \"Clip.h\"", true},
        Planted{"Norvane/store/ClipStore.cpp", "#include \"../store/Clip.h\"", true},
        Planted{"Norvane/store/ClipStore.cpp", "#include \"moc_ClipStore.cpp\"", false},
        Planted{"Norvane/store/ClipStore.cpp", "#include HEADER", true},
        Planted{"Norvane/store/ClipStore.cpp", "#include \"Norvane/utils/Things.h\"", true},
        // concrete platforms
        Planted{"Norvane/main.cpp", "#include \"Platform/linux/compose/LinuxPlatform.h\"", false},
        Planted{"Norvane/main.cpp", "const auto platform = makeLinuxPlatform();", false},
        Planted{"Norvane/main.cpp", "#include \"Platform/linux/x11/XcbConnection.h\"", true},
        Planted{"Norvane/AppDelegate.cpp", "#include \"Platform/linux/compose/LinuxPlatform.h\"", true},
        Planted{"Norvane/AppDelegate.cpp", "std::unique_ptr<Platform> makeLinuxPlatform();", true},
        Planted{"Norvane/AppDelegate.cpp", "#include \"Platform/memory/MemoryPlatform.h\"", true},
        Planted{"tests/store/ClipStoreTest.cpp", "#include \"Platform/memory/MemoryPlatform.h\"", false},
        Planted{"bench/PanelBench.cpp", "#include \"Platform/linux/compose/LinuxPlatform.h\"", false}));

INSTANTIATE_TEST_SUITE_P(
    Words, PlantedLine,
    ::testing::Values(
        Planted{"Norvane/main.cpp", "#include <QDBusConnection>", true},
        Planted{"Norvane/AppDelegate.h", "class QDBusInterface;", true},
        Planted{"Vesmo/Text.h", "#include <QtDBus/QDBusMessage>", true},
        Planted{"Platform/Workspace.h", "#include <xcb/xcb.h>", true},
        Planted{"Platform/HotKeys.h", "struct xcb_connection_t;", true},
        Planted{"Norvane/app/Shortcut.cpp", "#include <X11/keysym.h>", true},
        Planted{"Norvane/app/Shortcut.cpp", "#include <xkbcommon/xkbcommon.h>", true},
        Planted{"Norvane/PopupPanel.cpp",
                "auto *x11 = qApp->nativeInterface<QNativeInterface::QX11Application>();", true},
        Planted{"Vesmo/TextRecognizer.cpp", "#include <tesseract/baseapi.h>", true},
        Planted{"Vesmo/WritingAssistant.cpp", "#include <QNetworkAccessManager>", true},
        Planted{"Platform/linux/dbus/DBusInstance.cpp", "#include <QDBusConnection>", false},
        Planted{"Platform/linux/x11/XcbConnection.h", "#include <xcb/xcb.h>", false},
        Planted{"tests/desktop/Desktop.cpp", "#include <xcb/xtest.h>", false},
        Planted{"Vesmo/Localisation.h", "#include <QLocale>", false},
        Planted{"Norvane/SearchField.cpp", "#include <QClipboard>", true},
        Planted{"Platform/linux/x11/X11Pasteboard.cpp", "QGuiApplication::clipboard()->text();", true},
        Planted{"bench/StoreBench.cpp", "class QClipboard;", true},
        Planted{"tests/windows/SearchFieldTest.cpp", "#include <QClipboard>", false},
        // words in comments are only words; what looks like a comment in a literal hides nothing
        Planted{"Norvane/SearchField.cpp", "// never QClipboard: it waits for other programs", false},
        Planted{"Norvane/SearchField.cpp", "/* #include <QClipboard> */ int x;", false},
        Planted{"Norvane/SearchField.cpp", "auto a = \"http://\"; QClipboard *b;", true},
        Planted{"Norvane/SearchField.cpp", "auto a = 'x', b = '\"'; QClipboard *c; auto d = '\"';", true}));

TEST(Architecture, FileOutsideEveryRoomIsAFault)
{
    EXPECT_FALSE(faultsOf(u"Norvane/utils/Things.h"_s, u"#pragma once\n"_s).isEmpty());
    EXPECT_FALSE(faultsOf(u"Platform/linux/Shared.h"_s, u"#pragma once\n"_s).isEmpty());
    EXPECT_EQ(roomOf(u"Norvane/main.cpp"_s), u"Norvane/main.cpp"_s);
    EXPECT_EQ(roomOf(u"Norvane/AppDelegate.cpp"_s), u"Norvane"_s);
    EXPECT_EQ(roomOf(u"Platform/linux/x11/XcbConnection.h"_s), u"Platform/linux/x11"_s);
    EXPECT_EQ(roomOf(u"tests/store/support/Scratch.h"_s), u"tests"_s);
}

TEST(Architecture, CommentsAreBlankedAndLinesKept)
{
    EXPECT_EQ(withoutComments(u"a /* b\n c */ d // e\nR\"(//)\" 1'000 // f"_s),
              u"a     \n      d     \nR\"(//)\" 1'000     "_s);
}

TEST(Architecture, EveryFileKeepsToTheArrows)
{
    const QString root = QStringLiteral(NORVANE_SOURCE_FOLDER);
    QStringList seen;
    for (const char *folder : {"Norvane", "Vesmo", "Platform", "resources", "tests", "bench"}) {
        QDirIterator files(root + u'/' + QLatin1String(folder), {u"*.h"_s, u"*.cpp"_s}, QDir::Files,
                           QDirIterator::Subdirectories);
        while (files.hasNext()) {
            QFile file(files.next());
            ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << file.fileName().toStdString();
            const QString path = file.fileName().mid(root.size() + 1);
            seen << path;
            const QStringList faults = faultsOf(path, QString::fromUtf8(file.readAll()));
            EXPECT_TRUE(faults.isEmpty()) << faults.join(u'\n').toStdString();
        }
    }
    // The walk went where the sources are.
    for (const char *path : {"Norvane/store/Clip.h", "Vesmo/Text.h", "Platform/Pasteboard.h",
                             "tests/architecture/ArchitectureTest.cpp"})
        EXPECT_TRUE(seen.contains(QLatin1String(path))) << path;
}

} // namespace
