#include "Norvane/PopupController.h"

#include "Norvane/ClipViews.h"
#include "Norvane/FilterControl.h"
#include "Norvane/PreviewPane.h"
#include "Norvane/SearchField.h"
#include "tests/windows/MemoryDesktop.h"

#include <QLabel>

namespace {

class PopupControllerTest : public MemoryPanel {
protected:
    PopupControllerTest()
    {
        popup.onPick = [this](const ClipPointer &clip, PasteMode mode) {
            picked = clip;
            pickedMode = mode;
        };
    }

    void addTexts(int count)
    {
        for (int i = 0; i < count; ++i)
            addText(QString("testo %1 %2").arg(i).arg(i % 2 ? "dispari" : "pari"));
    }

    // Written as "Ctrl+Shift+E", to whatever has the focus.
    void press(const char *keys)
    {
        const QKeyCombination key = QKeySequence(keys)[0];
        QTest::keyClick(panel.focusWidget(), key.key(), key.keyboardModifiers());
    }
    void type(const QString &text) { QTest::keyClicks(panel.focusWidget(), text); }

    QString count() { return panel.countLabel->text(); }
    int row() { return panel.tableView->selectedRow(); }
    SearchField &field() { return *panel.searchField; }

    ClipPointer picked;
    PasteMode pickedMode = PasteMode::paste;
};

} // namespace

TEST_F(PopupControllerTest, EachKeyPicksItsClipInItsMode)
{
    addTexts(8);
    const struct {
        const char *keys;
        int row; // -1: nothing is picked and the panel stays open
        PasteMode mode;
    } cases[] = {
        {"Return", 0, PasteMode::paste},          {"Num+Enter", 0, PasteMode::paste},
        {"Shift+Return", 0, PasteMode::plain},    {"Alt+Return", 0, PasteMode::copy},
        {"Alt+Shift+Return", 0, PasteMode::copy}, {"Ctrl+1", 0, PasteMode::paste},
        {"Ctrl+8", 7, PasteMode::paste},          {"Ctrl+9", -1, PasteMode::paste}, // no such row
        {"Ctrl+Shift+2", 1, PasteMode::plain},    {"Ctrl+Num+2", -1, PasteMode::paste},
        {"Ctrl+Alt+2", -1, PasteMode::paste},
    };
    for (const auto &each : cases) {
        SCOPED_TRACE(each.keys);
        picked = nullptr;
        popup.show();
        press(each.keys);
        EXPECT_EQ(popup.isVisible(), each.row < 0);
        EXPECT_EQ(picked, each.row < 0 ? nullptr : store.clips()[static_cast<size_t>(each.row)]);
        EXPECT_EQ(picked ? pickedMode : each.mode, each.mode);
        popup.hide();
    }
    popup.show();
    press("Ctrl+9");
    EXPECT_EQ(field().text(), "") << "a digit without a row is no text";
    type("xyz");
    EXPECT_EQ(count(), "0 di 8");
    picked = nullptr;
    press("Return");
    EXPECT_FALSE(picked);
    EXPECT_TRUE(popup.isVisible());
}

TEST_F(PopupControllerTest, ArrowsAndPagesStopAtTheEnds)
{
    addTexts(12);
    popup.show();
    for (const auto &[keys, expected] :
         {std::pair{"Up", 0}, {"PgDown", 8}, {"PgDown", 11}, {"Down", 11}, {"PgUp", 3}}) {
        press(keys);
        EXPECT_EQ(row(), expected) << keys;
    }
}

TEST_F(PopupControllerTest, AFilterStays)
{
    addTexts(2);
    addImage();
    popup.show();
    press("Tab");
    press("Tab");
    popup.hide();
    popup.show();
    EXPECT_EQ(popup.filter(), ClipFilter::images);
    EXPECT_EQ(popup.results().size(), 1U);
    EXPECT_EQ(panel.filterControl->selectedSegment(), 2);
}

TEST_F(PopupControllerTest, SelectionFollowsItsClipAndItsRow)
{
    addTexts(3);
    popup.show();
    press("Down");
    const ClipPointer chosen = popup.selectedClip();
    addText("nuovo");
    EXPECT_EQ(popup.selectedClip(), chosen);
    EXPECT_EQ(row(), 2);
    press("Down");
    press("Ctrl+Backspace");
    EXPECT_EQ(store.clips().size(), 3U);
    EXPECT_EQ(row(), 2) << "the new last row";
    popup.hide();
    popup.show();
    EXPECT_EQ(row(), 0);
}

TEST_F(PopupControllerTest, CommandDeleteKeysDeleteAWordWhereThereIsOne)
{
    const struct {
        const char *text;
        int caret;
        const char *keys, *left;
        size_t clips;
    } cases[] = {
        {"", 0, "Ctrl+Backspace", "", 1},
        {"", 0, "Ctrl+Del", "", 1},
        {"testo uno", 9, "Ctrl+Backspace", "testo ", 2},
        {"testo", 5, "Ctrl+Del", "testo", 1},
        {"testo", 0, "Ctrl+Del", "", 2},
        {"testo", 0, "Ctrl+Backspace", "testo", 1},
    };
    for (const auto &each : cases) {
        SCOPED_TRACE(std::string(each.text) + " " + each.keys);
        store.deleteAll(store.clips());
        addText("testo uno");
        addText("testo uno due");
        popup.show();
        field().setText(each.text);
        field().setCursorPosition(each.caret);
        press(each.keys);
        EXPECT_EQ(store.clips().size(), each.clips);
        EXPECT_EQ(field().text(), each.left);
        popup.hide();
    }
}

TEST_F(PopupControllerTest, KeysWithoutATargetBeepAndChangeNothing)
{
    addTexts(1);
    popup.show();
    for (const char *keys : {"Ctrl+E", "Ctrl+Shift+E", "Ctrl+N", "Ctrl+,"}) {
        const int before = workspace.beepCount;
        press(keys);
        EXPECT_EQ(workspace.beepCount, before + 1) << keys;
        EXPECT_TRUE(popup.isVisible());
    }
    EXPECT_TRUE(field().text().isEmpty());
    press("Ctrl+W");
    EXPECT_FALSE(popup.isVisible());
}

TEST_F(PopupControllerTest, TargetsAreCalledWithThePanelClosed)
{
    const ClipPointer text = addText("testo");
    std::vector<ClipPointer> edited;
    popup.onEdit = [&](const ClipPointer &clip) {
        EXPECT_FALSE(popup.isVisible());
        edited.push_back(clip);
    };
    popup.show();
    press("Ctrl+N");
    popup.show();
    press("Ctrl+E");
    EXPECT_EQ(edited, (std::vector<ClipPointer>{nullptr, text}));
    addImage(); // not read: there is no text to edit
    popup.show();
    press("Ctrl+E");
    EXPECT_EQ(edited.size(), 2U);
    EXPECT_TRUE(popup.isVisible());
}

TEST_F(PopupControllerTest, AnImageWithoutTextIsPastedAsAnImage)
{
    const ClipPointer image = addImage();
    popup.show();
    press("Shift+Return");
    EXPECT_EQ(pickedMode, PasteMode::paste);
    store.setRecognizedText("Fattura", image);
    popup.show();
    press("Shift+Return");
    EXPECT_EQ(pickedMode, PasteMode::plain);
}

TEST_F(PopupControllerTest, TypingInTheListSearches)
{
    addTexts(12);
    popup.show();
    panel.tableView->setFocus();
    press("Down");
    EXPECT_EQ(row(), 1);
    type("7");
    EXPECT_EQ(panel.focusWidget(), &field());
    EXPECT_EQ(field().text(), "7");
    EXPECT_EQ(popup.results().size(), 1U);

    panel.tableView->setFocus();
    press("Backspace");
    EXPECT_EQ(store.clips().size(), 11U);
    press("Esc");
    EXPECT_FALSE(popup.isVisible()) << "the list's Escape closes at once";
}

TEST_F(PopupControllerTest, ASmallScreenMakesThePanelSmallOnlyThere)
{
    const auto roomy = screens.areas;
    const QRectF small(0, 0, 500, 320);
    const auto sizeOn = [&](const std::vector<ScreenArea> &areas) {
        screens.areas = areas;
        popup.show();
        const QSize shown = panel.size();
        popup.hide();
        return shown;
    };
    EXPECT_EQ(sizeOn({{small, small}}), QSize(400, 256)) << "less than it may be resized to";
    EXPECT_EQ(platform->defaults->real("panelWidth"), 400);
    const RememberedSize next(*platform->defaults);
    EXPECT_EQ(next.wanted(next.initial()), QSize(780, 470)) << "after a restart";
    EXPECT_EQ(sizeOn(roomy), QSize(780, 470));
}

TEST_F(PopupControllerTest, EveryOpeningFollowsThePreviewSetting)
{
    addText("uno");
    ASSERT_TRUE(QTest::qWaitFor([this] { return count() == u"1 elementi"; })) << "prepared while hidden";
    for (const bool shown : {false, true}) {
        prefs.setShowPreview(shown);
        popup.show();
        EXPECT_EQ(!panel.previewPane->isHidden(), shown);
        popup.hide();
    }
    EXPECT_TRUE(panel.previewPane->information().startsWith("Testo"));
}
