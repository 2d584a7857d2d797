#include "tests/platform/tray/NotifierHost.h"
#include "tests/platform/tray/TrayStage.h"

using namespace Qt::StringLiterals;

namespace {

class TrayNotifierTest : public TrayStage {
protected:
    TrayNotifierTest() { rows = {row(u"uno"_s, u"1"_s)}; }

    // Host and item know each other.
    void join(NotifierHost &host)
    {
        item.show();
        ASSERT_TRUE(becomesAvailable());
        ASSERT_TRUE(QTest::qWaitFor([&] { return !host.watcher().items().isEmpty(); }, patience));
    }

    static QStringList texts(NotifierHost &host)
    {
        QStringList result;
        for (const auto &each : host.menu())
            result << (each.separator ? u"—"_s : each.text);
        return result;
    }

    bool shows(NotifierHost &host, const QStringList &expected)
    {
        return QTest::qWaitFor([&] { return texts(host) == expected; }, patience);
    }
};

} // namespace

TEST_F(TrayNotifierTest, JoinsATrayThatAppearsLaterAndOneThatComesBack)
{
    item.show();
    EXPECT_FALSE(item.isAvailable());
    {
        NotifierHost host;
        ASSERT_TRUE(becomesAvailable());
        ASSERT_TRUE(QTest::qWaitFor([&] { return !host.watcher().items().isEmpty(); }, patience));
        host.activate();
        EXPECT_EQ(activations, 1);
    }
    ASSERT_TRUE(becomesAvailable(false));
    NotifierHost next;
    ASSERT_TRUE(becomesAvailable());
    ASSERT_TRUE(QTest::qWaitFor([&] { return !next.watcher().items().isEmpty(); }, patience));
    EXPECT_TRUE(shows(next, {u"uno"_s}));
    EXPECT_EQ(changes, 3);
}

TEST_F(TrayNotifierTest, AWatcherThatDrawsNothingIsNoTray)
{
    NotifierHost host(false);
    item.show();
    ASSERT_TRUE(QTest::qWaitFor([&] { return host.watcher().questions > 0; }, patience));
    EXPECT_FALSE(item.isAvailable());
    host.registerHost();
    EXPECT_TRUE(becomesAvailable());
}

TEST_F(TrayNotifierTest, AHungTrayIsNotWaitedFor)
{
    NotifierHost host(true, true);
    item.show();
    ASSERT_TRUE(QTest::qWaitFor([&] { return host.watcher().questions > 0; }, patience));
    // The loop turns while the watcher is silent.
    item.setPaused(true);
    item.menuChanged();
    bool turned = false;
    QTimer::singleShot(0, [&] { turned = true; });
    ASSERT_TRUE(QTest::qWaitFor([&] { return turned; }, patience));
    EXPECT_FALSE(item.isAvailable());
    host.watcher().hung = false;
    host.watcher().release.release();
    EXPECT_TRUE(becomesAvailable());
}

TEST_F(TrayNotifierTest, RowsReadAsWrittenAndSayTheirKeys)
{
    auto picture = row(u"a_b & c__d && <b>"_s, u"2"_s);
    picture.image = QImage(28, 20, QImage::Format_ARGB32_Premultiplied);
    picture.image.fill(Qt::red);
    auto pinned = row(u"uno\tdue\nd"_s);
    pinned.symbol = u":/icons/pin-fill.svg"_s;
    auto disabled = row(u"Ancora niente: copia qualcosa"_s);
    disabled.enabled = false;
    rows = {row(u"Mostra la cronologia   Ctrl+Alt+V"_s),
            separator(),
            picture,
            pinned,
            disabled,
            row(u"Esci da Norvane"_s, u"q"_s)};
    NotifierHost host;
    join(host);
    EXPECT_EQ(texts(host), QStringList({rows[0].title, u"—"_s, rows[2].title, u"uno due d"_s, rows[4].title,
                                        rows[5].title}));
    QStringList shortcuts, flags;
    for (const auto &each : host.menu()) {
        shortcuts << each.shortcut;
        flags << (each.hasPicture ? u"picture"_s : each.enabled ? u""_s : u"disabled"_s);
    }
    EXPECT_EQ(shortcuts.join(u'|'), u"||2|||Q"_s);
    EXPECT_EQ(flags.join(u'|'), u"||picture|picture|disabled|"_s);
}

TEST_F(TrayNotifierTest, RowsFollowTheContentsUnderTheSameNumbers)
{
    rows = {row(u"Mostra"_s), separator(), row(u"Ancora niente"_s), separator(), row(u"Esci"_s)};
    NotifierHost host;
    join(host);
    const auto before = host.menu();
    rows = {row(u"Mostra"_s), separator(), row(u"tre"_s), row(u"due"_s),
            row(u"uno"_s),    separator(), row(u"Esci"_s)};
    item.menuChanged();
    ASSERT_TRUE(shows(host, {u"Mostra"_s, u"—"_s, u"tre"_s, u"due"_s, u"uno"_s, u"—"_s, u"Esci"_s}));
    const auto after = host.menu();
    EXPECT_EQ(after[0].id, before[0].id);
    EXPECT_EQ(after[2].id, before[2].id);
    EXPECT_EQ(after[6].id, before[4].id);
    host.send(after[3].id, u"clicked"_s);
    EXPECT_TRUE(QTest::qWaitFor([&] { return chosen == QStringList{u"due"_s}; }, patience));
    rows.erase(rows.begin() + 2, rows.begin() + 4);
    item.menuChanged();
    EXPECT_TRUE(shows(host, {u"Mostra"_s, u"—"_s, u"uno"_s, u"—"_s, u"Esci"_s}));
}

TEST_F(TrayNotifierTest, AnOpenMenuRunsWhatItShows)
{
    rows = {row(u"vecchio"_s), separator(), row(u"Esci"_s)};
    NotifierHost host;
    join(host);
    rows.front() = row(u"nuovo"_s);
    host.open();
    EXPECT_EQ(texts(host).front(), u"nuovo"_s) << "texts are set when it opens";

    rows.insert(rows.begin(), row(u"copiato ora"_s));
    item.menuChanged();
    // The delay of a refresh passes while the menu is open.
    QTimer passed;
    passed.setSingleShot(true);
    passed.start(400);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !passed.isActive(); }, patience));
    const auto open = host.menu();
    ASSERT_EQ(open.size(), 3U);
    host.send(0, u"closed"_s);
    host.send(open[0].id, u"clicked"_s);
    EXPECT_TRUE(QTest::qWaitFor([&] { return chosen == QStringList{u"nuovo"_s}; }, patience));
    EXPECT_TRUE(shows(host, {u"copiato ora"_s, u"nuovo"_s, u"—"_s, u"Esci"_s}));
}

TEST_F(TrayNotifierTest, OpensWithTheNewestThatFitsAndFollowsLaterWithoutWord)
{
    rows = {row(u"due"_s), row(u"uno"_s), separator(), row(u"Esci"_s)};
    NotifierHost host;
    join(host);
    rows.insert(rows.begin(), row(u"tre"_s));
    host.open(); // and this tray never says that the menu has closed
    EXPECT_EQ(texts(host), QStringList({u"tre"_s, u"due"_s, u"—"_s, u"Esci"_s}));
    EXPECT_TRUE(shows(host, {u"tre"_s, u"due"_s, u"uno"_s, u"—"_s, u"Esci"_s}));
    rows.erase(rows.begin() + 1, rows.begin() + 3);
    host.open();
    EXPECT_EQ(texts(host), QStringList({u"tre"_s, u"—"_s, u"Esci"_s})) << "what is gone cannot be chosen";
}

TEST_F(TrayNotifierTest, TheIconGoesByNameAndSaysWhenItIsPaused)
{
    NotifierHost host;
    join(host);
    EXPECT_EQ(host.itemProperty(u"IconName"_s), u"com.norvane.app-symbolic"_s);
    item.setPaused(true);
    EXPECT_EQ(host.itemProperty(u"IconName"_s), u"com.norvane.app-paused-symbolic"_s);
    item.setPaused(false);
    EXPECT_EQ(host.itemProperty(u"IconName"_s), u"com.norvane.app-symbolic"_s);
}
