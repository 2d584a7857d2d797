#include "Norvane/app/Preferences.h"

#include "Platform/memory/MemoryUserDefaults.h"

#include <QSignalSpy>
#include <gtest/gtest.h>

namespace {

TEST(PreferencesTest, EverySettingComesBackFromTheStoreUncheckedButThatAShortcutIsRecorded)
{
    MemoryUserDefaults defaults;
    Preferences prefs(defaults);
    QSignalSpy changes(&prefs, &Preferences::recordingShortcutChanged);
    prefs.setRecordingShortcut(true);
    EXPECT_EQ(changes.count(), 1);
    EXPECT_EQ(defaults.writeCount(), 0);
    prefs.setShortcut({0, ModifierFlag::shift});
    prefs.setMaxItems(-7);
    prefs.setRetentionDays(Q_INT64_C(9007199254740993));
    prefs.setAutoPaste(false);
    prefs.setPosition(PopupPosition::center);
    prefs.setSaveImages(false);
    prefs.setRecognizeText(false);
    prefs.setSaveFiles(false);
    prefs.setMaxClipMB(0);
    prefs.setShowPreview(false);
    for (const QStringList &apps : {QStringList("org.example.One"), QStringList()}) {
        prefs.setIgnoredApps(apps);
        const Preferences next(defaults);
        EXPECT_EQ(next.shortcut(), (Shortcut{0, ModifierFlag::shift}));
        EXPECT_EQ(next.maxItems(), -7);
        EXPECT_EQ(next.retentionDays(), Q_INT64_C(9007199254740993));
        EXPECT_EQ(next.maxClipMB(), 0);
        EXPECT_EQ(next.position(), PopupPosition::center);
        EXPECT_FALSE(next.autoPaste() || next.saveImages() || next.recognizeText() || next.saveFiles() ||
                     next.showPreview());
        EXPECT_EQ(next.ignoredApps(), apps);
        EXPECT_FALSE(next.isRecordingShortcut());
    }
    EXPECT_EQ(defaults.string("position"), "center");
}

TEST(PreferencesTest, DamagedValuesFallBackAndAreOverwrittenByTheNextChange)
{
    MemoryUserDefaults defaults;
    defaults.setData("shortcut", "\x01 garbage");
    defaults.setString("position", "top");
    defaults.setString("ignoredApps", "com.example.one");
    defaults.setString("maxItems", "many");
    defaults.setInteger("autoPaste", 0);
    Preferences prefs(defaults);
    EXPECT_EQ(prefs.shortcut(), Shortcut());
    EXPECT_EQ(prefs.position(), PopupPosition::caret);
    EXPECT_EQ(prefs.ignoredApps(), QStringList());
    EXPECT_EQ(prefs.maxItems(), 500);
    EXPECT_TRUE(prefs.autoPaste());
    prefs.setShortcut({1, ModifierFlag::option});
    EXPECT_EQ(Preferences(defaults).shortcut(), (Shortcut{1, ModifierFlag::option}));
}

TEST(PreferencesTest, AChangeIsAnnouncedBeforeAndReportedAfterItIsMadeAndMayBeCorrected)
{
    MemoryUserDefaults defaults;
    Preferences prefs(defaults);
    QStringList order;
    QObject::connect(&prefs, &Preferences::willChange,
                     [&] { order.append(QString("before %1").arg(prefs.maxItems())); });
    QObject::connect(&prefs, &Preferences::maxItemsChanged, [&](qint64 value) {
        order.append(QString("after %1 %2 %3").arg(prefs.maxItems()).arg(value).arg(defaults.writeCount()));
        if (value > 1000)
            prefs.setMaxItems(1000);
    });
    prefs.setMaxItems(20);
    EXPECT_EQ(order, (QStringList{"before 500", "after 20 20 0"}));
    EXPECT_EQ(defaults.integer("maxItems"), 20);
    prefs.setMaxItems(5000);
    EXPECT_EQ(prefs.maxItems(), 1000);
    EXPECT_EQ(defaults.integer("maxItems"), 1000);
}

} // namespace
