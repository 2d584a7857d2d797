// The status menu's commands as the whole program carries them out.
#include "Norvane/AppDelegate.h"
#include "tests/windows/MemoryDesktop.h"

#include <QAbstractButton>
#include <QApplication>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QToolButton>

namespace {

class StatusItemTest : public MemoryDesktop {
protected:
    StatusItemTest() { delegate.finishLaunching(); }

    // The user copies texts, the last one last.
    void copy(const QStringList &texts)
    {
        for (const auto &text : texts) {
            pasteboard.copyText(text);
            ASSERT_TRUE(QTest::qWaitFor([&] { return titles().contains(text); }));
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

    // The one that asks.
    QMessageBox *chooseClear()
    {
        item.choose("Svuota la cronologia…");
        EXPECT_TRUE(dialog());
        return dialog();
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

    bool panelOpens() const
    {
        return QTest::qWaitFor([&] { return surface.isPresented(); });
    }

    AppDelegate delegate{*platform, prefs, folder.path()};
};

} // namespace

TEST_F(StatusItemTest, ShowingFromTheMenuKeepsAnOpenPanel)
{
    const QString row = titles().front();
    item.choose(row);
    EXPECT_FALSE(surface.isPresented()) << "the menu closes first";
    EXPECT_TRUE(panelOpens());
    const int presented = surface.presentCount;
    item.choose(row);
    EXPECT_TRUE(QTest::qWaitFor([&] { return surface.presentCount > presented; }));
    EXPECT_TRUE(surface.isPresented());
    delegate.perform("hide");
    EXPECT_FALSE(surface.isPresented());
    item.onActivate();
    EXPECT_TRUE(panelOpens());
}

TEST_F(StatusItemTest, ClearingAsksFirstAndKeepsPinnedClips)
{
    copy({"uno", "fissato", "tre"});
    delegate.perform("show");
    ASSERT_TRUE(panelOpens());
    QTest::keyClick(view<QLineEdit>(), Qt::Key_Down);
    QTest::keyClick(view<QLineEdit>(), Qt::Key_P, Qt::ControlModifier);
    delegate.perform("hide");
    const QStringList before = titles();

    const QMessageBox *box = chooseClear();
    EXPECT_EQ(box->text(), "Svuotare la cronologia?");
    EXPECT_EQ(box->informativeText(), "Gli elementi fissati restano. Non si può annullare.");
    EXPECT_EQ(box->defaultButton()->text(), "Annulla");
    EXPECT_EQ(chooseClear(), box) << "asked once";
    answer("Annulla");
    EXPECT_EQ(titles(), before);

    QTest::keyClick(chooseClear(), Qt::Key_Escape);
    EXPECT_EQ(titles(), before);

    chooseClear();
    copy({"copiato intanto"});
    answer("Svuota");
    EXPECT_FALSE(dialog());
    EXPECT_EQ(titles().mid(2, 2), QStringList({"fissato", ""}));
}

TEST_F(StatusItemTest, TheQuestionOverThePanelGoesWithIt)
{
    copy({"uno"});
    delegate.perform("show");
    ASSERT_TRUE(panelOpens());
    EXPECT_TRUE(chooseClear()->windowFlags().testFlag(Qt::BypassWindowManagerHint));
    delegate.perform("hide");
    EXPECT_FALSE(dialog());
    EXPECT_TRUE(titles().contains("uno"));
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
    copy({"uno"});
    EXPECT_GT(item.menuChanges, before);
    const int copied = item.menuChanges;
    prefs.setShortcut({KeyCode::p, ModifierFlag::command});
    EXPECT_GT(item.menuChanges, copied);
    EXPECT_EQ(item.menu().front().toolTip, displayString(prefs.shortcut(), *platform->keyboardLayout));
}
