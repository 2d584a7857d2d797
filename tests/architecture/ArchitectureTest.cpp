#include "tests/architecture/Arrows.h"

#include <QDirIterator>
#include <QFile>
#include <gtest/gtest.h>

namespace {

using namespace Qt::StringLiterals;

// A line of a file, and whether it breaks a rule.
struct Planted {
    const char *path;
    const char *line;
};

constexpr Planted forbidden[] = {
    // up and sideways
    {"Norvane/store/Clip.cpp", "#include \"Norvane/app/Preferences.h\""},
    {"Norvane/app/Preferences.h", "#include \"Norvane/capture/Thumbnail.h\""},
    {"Norvane/capture/Thumbnail.cpp", "#include \"Norvane/paste/PasteMode.h\""},
    {"Norvane/app/Shortcut.cpp", "#include \"Norvane/PopupPanel.h\""},
    {"Vesmo/Text.cpp", "#include \"Norvane/store/Clip.h\""},
    {"Platform/Log.cpp", "#include \"Vesmo/Text.h\""},
    {"Platform/linux/x11/X11Pasteboard.cpp", "#include \"Platform/linux/xdg/XdgDesktopEntries.h\""},
    {"Platform/memory/MemoryPasteboard.h", "#include \"Platform/linux/x11/XcbConnection.h\""},
    {"Platform/Pasteboard.h", "#include \"Platform/memory/MemoryPasteboard.h\""},
    {"Norvane/store/ClipStore.cpp", "#include \"tests/support/Scratch.h\""},
    // one root, no computed names, no room without a place
    {"Norvane/store/ClipStore.cpp", "#include \"Clip.h\""},
    {"Norvane/store/ClipStore.cpp", "#include \"../store/Clip.h\""},
    {"Norvane/store/ClipStore.cpp", "#include HEADER"},
    {"Norvane/store/ClipStore.cpp", "#include \"Norvane/utils/Things.h\""},
    // concrete platforms
    {"Norvane/main.cpp", "#include \"Platform/linux/x11/XcbConnection.h\""},
    {"Norvane/AppDelegate.cpp", "std::unique_ptr<Platform> makeLinuxPlatform();"},
    {"Norvane/AppDelegate.cpp", "#include \"Platform/memory/MemoryPlatform.h\""},
    // words of a desktop
    {"Norvane/AppDelegate.h", "class QDBusInterface;"},
    {"Vesmo/Text.h", "#include <QtDBus/QDBusMessage>"},
    {"Platform/Workspace.h", "#include <xcb/xcb.h>"},
    {"Platform/HotKeys.h", "struct xcb_connection_t;"},
    {"Norvane/app/Shortcut.cpp", "#include <xkbcommon/xkbcommon.h>"},
    {"Norvane/PopupPanel.cpp", "auto *x11 = qApp->nativeInterface<QNativeInterface::QX11Application>();"},
    {"Vesmo/TextRecognizer.cpp", "#include <tesseract/baseapi.h>"},
    {"Vesmo/WritingAssistant.cpp", "#include <QNetworkAccessManager>"},
    {"Norvane/SearchField.cpp", "#include <QClipboard>"},
    {"Platform/linux/x11/X11Pasteboard.cpp", "QGuiApplication::clipboard()->text();"},
    // what looks like a comment in a literal hides nothing
    {"Norvane/SearchField.cpp", "auto a = \"http://\"; QClipboard *b;"},
    {"Norvane/SearchField.cpp", "int a = 1'000; QClipboard *b; char c = 'x';"},
    {"Norvane/SearchField.cpp", "auto a = 'x', b = '\"'; QClipboard *c; auto d = '\"';"},
};

constexpr Planted allowed[] = {
    {"Norvane/PopupPanel.cpp", "#include \"Norvane/store/Clip.h\""},
    {"Norvane/store/Clip.cpp", "#include \"Vesmo/Localisation.h\""},
    {"Norvane/store/ClipStore.cpp", "#include \"moc_ClipStore.cpp\""},
    {"Norvane/main.cpp", "#include \"Platform/linux/compose/LinuxPlatform.h\""},
    {"Norvane/main.cpp", "const auto platform = makeLinuxPlatform();"},
    {"Platform/linux/x11/X11Pasteboard.cpp", "#include \"Platform/linux/x11/XcbConnection.h\""},
    {"Platform/linux/compose/LinuxPlatform.cpp", "#include \"Platform/linux/x11/X11HotKeys.h\""},
    {"Platform/linux/dbus/DBusInstance.cpp", "#include <QDBusConnection>"},
    {"tests/store/ClipStoreTest.cpp", "#include \"Platform/memory/MemoryPlatform.h\""},
    {"tests/desktop/Desktop.cpp", "#include <xcb/xtest.h>"},
    {"tests/windows/SearchFieldTest.cpp", "#include <QClipboard>"},
    {"Vesmo/Localisation.h", "#include <QLocale>"},
    {"Norvane/SearchField.cpp", "// never QClipboard: it waits for other programs"},
    {"Norvane/SearchField.cpp", "/* #include <QClipboard> */ int x;"},
};

QStringList judged(const Planted &planted)
{
    return faultsOf(QLatin1String(planted.path), u"/* QClipboard\n */\n"_s + QString::fromUtf8(planted.line));
}

TEST(Architecture, EveryLineIsJudgedByItsRoom)
{
    for (const Planted &each : forbidden) {
        const QStringList found = judged(each);
        EXPECT_FALSE(found.isEmpty()) << each.path << ": " << each.line;
        for (const QString &fault : found)
            EXPECT_TRUE(fault.startsWith(QLatin1String(each.path) + u":3: ")) << fault.toStdString();
    }
    for (const Planted &each : allowed)
        EXPECT_TRUE(judged(each).isEmpty()) << each.path << ": " << each.line;
}

TEST(Architecture, FileOutsideEveryRoomIsAFault)
{
    EXPECT_FALSE(judged({"Norvane/utils/Things.h", ""}).isEmpty());
    EXPECT_FALSE(judged({"Platform/linux/Shared.h", ""}).isEmpty());
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
