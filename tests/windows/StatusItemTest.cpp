// The status menu's commands as the whole program carries them out, on a desktop in memory.

#include "Norvane/AppDelegate.h"
#include "Norvane/app/Preferences.h"
#include "Platform/memory/MemoryPlatform.h"
#include "Vesmo/Localisation.h"

#include <QAbstractButton>
#include <QApplication>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QToolButton>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

constexpr int patience = 5000; // milliseconds

class StatusItemTest : public ::testing::Test {
protected:
    StatusItemTest()
    {
        loadTranslations(u"it"_s);
        delegate.finishLaunching();
    }

    // The user copies texts, the last one last.
    void copy(const QStringList &texts)
    {
        for (const auto &text : texts) {
            pasteboard.copyText(text);
            ASSERT_TRUE(QTest::qWaitFor([&] { return titles().contains(text); }, patience));
        }
    }

    QStringList titles() const
    {
        QStringList result;
        for (const auto &row : item.menu())
            result << row.title;
        return result;
    }

    static QMessageBox *dialog()
    {
        for (QWidget *window : QApplication::topLevelWidgets()) {
            auto *box = qobject_cast<QMessageBox *>(window);
            if (box && box->isVisible())
                return box;
        }
        return nullptr;
    }

    static void answer(const QString &button)
    {
        for (QAbstractButton *each : dialog()->buttons()) {
            if (each->text() == button)
                each->click();
        }
    }

    // A view of the panel.
    template <typename View>
    static View *view()
    {
        for (QWidget *window : QApplication::topLevelWidgets()) {
            if (window->objectName() == u"history")
                return window->findChild<View *>();
        }
        return nullptr;
    }

    bool panelIsOpen() const { return platform->panelSurface->isPresented(); }

    QTemporaryDir folder;
    std::unique_ptr<Platform> platform = makeMemoryPlatform();
    MemoryStatusItem &item = static_cast<MemoryStatusItem &>(*platform->statusItem);
    MemoryPasteboard &pasteboard = static_cast<MemoryPasteboard &>(*platform->pasteboard);
    Preferences prefs{*platform->defaults};
    AppDelegate delegate{*platform, prefs, folder.path()};
};

} // namespace

TEST_F(StatusItemTest, PauseDimsTheIconAndStopsRecording)
{
    copy({u"prima"_s});
    item.choose(u"Metti in pausa la registrazione"_s);
    EXPECT_TRUE(item.paused);
    EXPECT_TRUE(titles().contains(u"Riprendi la registrazione"_s));
    pasteboard.copyText(u"in pausa"_s);
    delegate.perform(u"pause"_s);
    EXPECT_FALSE(item.paused);
    copy({u"dopo"_s});
    EXPECT_FALSE(titles().contains(u"in pausa"_s));
}

TEST_F(StatusItemTest, ShowingFromTheMenuKeepsAnOpenPanel)
{
    const QString row = titles().front();
    item.choose(row);
    EXPECT_FALSE(panelIsOpen()) << "the menu closes first";
    EXPECT_TRUE(QTest::qWaitFor([&] { return panelIsOpen(); }, patience));
    const auto &surface = static_cast<MemoryPanelSurface &>(*platform->panelSurface);
    const int presented = surface.presentCount;
    item.choose(row);
    EXPECT_TRUE(QTest::qWaitFor([&] { return surface.presentCount > presented; }, patience));
    EXPECT_TRUE(panelIsOpen());
    delegate.perform(u"hide"_s);
    EXPECT_FALSE(panelIsOpen());
    item.onActivate();
    EXPECT_TRUE(QTest::qWaitFor([&] { return panelIsOpen(); }, patience));
}

TEST_F(StatusItemTest, ARecentClipIsPastedAsFromThePanel)
{
    copy({u"uno"_s, u"due"_s});
    delegate.perform(u"show"_s);
    ASSERT_TRUE(QTest::qWaitFor([&] { return panelIsOpen(); }, patience));
    item.choose(u"uno"_s);
    EXPECT_FALSE(panelIsOpen());
    EXPECT_EQ(pasteboard.snapshot()->items.front().data(u"public.utf8-plain-text"), QByteArray("uno"));
    const auto &keys = static_cast<MemoryKeyEvents &>(*platform->keyEvents);
    EXPECT_TRUE(QTest::qWaitFor([&] { return keys.pasteCount == 1; }, patience));
    EXPECT_EQ(titles().at(2), u"uno"_s) << "the newest now";
}

TEST_F(StatusItemTest, ClearingAsksFirstAndKeepsPinnedClips)
{
    copy({u"uno"_s, u"fissato"_s, u"tre"_s});
    delegate.perform(u"show"_s);
    ASSERT_TRUE(QTest::qWaitFor([&] { return panelIsOpen(); }, patience));
    QTest::keyClick(view<QLineEdit>(), Qt::Key_Down);
    QTest::keyClick(view<QLineEdit>(), Qt::Key_P, Qt::ControlModifier);
    delegate.perform(u"hide"_s);
    const QStringList before = titles();

    item.choose(u"Svuota la cronologia…"_s);
    ASSERT_TRUE(dialog());
    EXPECT_EQ(dialog()->text(), u"Svuotare la cronologia?"_s);
    EXPECT_EQ(dialog()->informativeText(), u"Gli elementi fissati restano. Non si può annullare."_s);
    EXPECT_EQ(dialog()->defaultButton()->text(), u"Annulla"_s);
    const QMessageBox *first = dialog();
    item.choose(u"Svuota la cronologia…"_s);
    EXPECT_EQ(dialog(), first) << "asked once";
    answer(u"Annulla"_s);
    EXPECT_EQ(titles(), before);

    item.choose(u"Svuota la cronologia…"_s);
    ASSERT_TRUE(dialog());
    QTest::keyClick(dialog(), Qt::Key_Escape);
    EXPECT_EQ(titles(), before);

    item.choose(u"Svuota la cronologia…"_s);
    ASSERT_TRUE(dialog());
    copy({u"copiato intanto"_s});
    answer(u"Svuota"_s);
    EXPECT_FALSE(dialog());
    EXPECT_EQ(titles().mid(2, 2), QStringList({u"fissato"_s, QString()}));
}

TEST_F(StatusItemTest, TheQuestionOverThePanelGoesWithIt)
{
    copy({u"uno"_s});
    delegate.perform(u"show"_s);
    ASSERT_TRUE(QTest::qWaitFor([&] { return panelIsOpen(); }, patience));
    item.choose(u"Svuota la cronologia…"_s);
    ASSERT_TRUE(dialog());
    EXPECT_TRUE(dialog()->windowFlags().testFlag(Qt::BypassWindowManagerHint));
    delegate.perform(u"hide"_s);
    EXPECT_FALSE(dialog());
    EXPECT_TRUE(titles().contains(u"uno"_s));
}

TEST_F(StatusItemTest, WithoutATrayThePanelHasTheMenu)
{
    QToolButton *button = view<QToolButton>();
    ASSERT_TRUE(button);
    EXPECT_TRUE(button->isHidden());
    item.setTray(false);
    EXPECT_FALSE(button->isHidden());
    button->click();
    EXPECT_TRUE(item.lastPopUp);
    item.setTray(true);
    EXPECT_TRUE(button->isHidden());
}

TEST_F(StatusItemTest, TheMenuIsToldOfEveryChange)
{
    const int before = item.menuChanges;
    copy({u"uno"_s});
    EXPECT_GT(item.menuChanges, before);
    const int copied = item.menuChanges;
    prefs.setShortcut({KeyCode::p, ModifierFlag::command});
    EXPECT_GT(item.menuChanges, copied);
    EXPECT_EQ(item.menu().front().toolTip, displayString(prefs.shortcut(), *platform->keyboardLayout));
}
