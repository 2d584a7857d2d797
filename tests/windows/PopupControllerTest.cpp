#include "Norvane/PopupController.h"

#include "Norvane/ClipViews.h"
#include "Norvane/FilterControl.h"
#include "Norvane/PopupPanel.h"
#include "Norvane/PreviewPane.h"
#include "Norvane/SearchField.h"
#include "Norvane/app/Preferences.h"
#include "Norvane/store/ClipStore.h"
#include "Platform/memory/MemoryPlatform.h"

#include <QLabel>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

class PopupControllerTest : public ::testing::Test {
protected:
    PopupControllerTest()
    {
        popup.onPick = [this](const ClipPointer &clip, PasteMode mode) {
            picked = clip;
            pickedMode = mode;
        };
    }

    ClipPointer addText(const QString &text)
    {
        CapturedClip capture;
        capture.text = text;
        capture.hash = contentHash(u"text\n"_s + text);
        capture.formats = {{0, u"public.utf8-plain-text"_s, text.toUtf8()}};
        return store.add(capture);
    }

    ClipPointer addImage()
    {
        CapturedClip capture;
        capture.kind = ClipKind::image;
        capture.hash = contentHash(QByteArray("image"));
        capture.formats = {{0, u"public.png"_s, "image"}};
        capture.pixelSize = {10, 10};
        return store.add(capture);
    }

    void addTexts(int count)
    {
        for (int i = 0; i < count; ++i)
            addText(u"testo %1 %2"_s.arg(i).arg(i % 2 ? u"dispari"_s : u"pari"_s));
    }

    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::keyClick(popup.window().focusWidget(), key, modifiers);
    }

    void type(const QString &text) { QTest::keyClicks(popup.window().focusWidget(), text); }

    QString count() { return popup.window().countLabel->text(); }
    int row() { return popup.window().tableView->selectedRow(); }
    SearchField &field() { return *popup.window().searchField; }
    int beeps() { return static_cast<MemoryWorkspace &>(*platform->workspace).beepCount; }

    QTemporaryDir folder;
    std::unique_ptr<Platform> platform = makeMemoryPlatform();
    Preferences prefs{*platform->defaults};
    ClipStore store{folder.path()};
    PopupController popup{{store, prefs, *platform->pasteboard, *platform->panelSurface, *platform->screens,
                           *platform->workspace, *platform->desktopEntries}};
    ClipPointer picked;
    PasteMode pickedMode = PasteMode::paste;
};

} // namespace

TEST_F(PopupControllerTest, TypingNarrowsAndTheCountSaysHowFar)
{
    addTexts(30);
    popup.show();
    EXPECT_EQ(count(), u"30 elementi"_s);
    key(Qt::Key_Down);
    type(u"pari TESTO"_s);
    EXPECT_EQ(popup.results().size(), 30U) << "dispari holds pari";
    EXPECT_EQ(row(), 0);
    key(Qt::Key_Escape);
    type(u"dispari"_s);
    EXPECT_EQ(count(), u"15 di 30"_s);
    EXPECT_EQ(popup.results().front()->text, u"testo 29 dispari"_s);
    type(u"xyz"_s);
    EXPECT_EQ(count(), u"0 di 30"_s);
    key(Qt::Key_Return);
    EXPECT_FALSE(picked);
    EXPECT_TRUE(popup.isVisible());
}

TEST_F(PopupControllerTest, EachKeyPicksItsClipInItsMode)
{
    addTexts(12);
    struct Case {
        Qt::Key key;
        Qt::KeyboardModifiers modifiers;
        int row; // -1: nothing is picked and the panel stays open
        PasteMode mode;
    };
    const std::vector<Case> cases = {
        {Qt::Key_Return, Qt::NoModifier, 0, PasteMode::paste},
        {Qt::Key_Enter, Qt::KeypadModifier, 0, PasteMode::paste},
        {Qt::Key_Return, Qt::ShiftModifier, 0, PasteMode::plain},
        {Qt::Key_Return, Qt::AltModifier, 0, PasteMode::copy},
        {Qt::Key_Return, Qt::AltModifier | Qt::ShiftModifier, 0, PasteMode::copy},
        {Qt::Key_1, Qt::ControlModifier, 0, PasteMode::paste},
        {Qt::Key_9, Qt::ControlModifier, 8, PasteMode::paste},
        {Qt::Key_2, Qt::ControlModifier | Qt::ShiftModifier, 1, PasteMode::plain},
        {Qt::Key_2, Qt::ControlModifier | Qt::KeypadModifier, -1, PasteMode::paste},
        {Qt::Key_2, Qt::ControlModifier | Qt::AltModifier, -1, PasteMode::paste},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(QKeySequence(c.modifiers | c.key).toString().toStdString());
        picked = nullptr;
        popup.show();
        key(c.key, c.modifiers);
        EXPECT_EQ(popup.isVisible(), c.row < 0);
        EXPECT_EQ(picked, c.row < 0 ? nullptr : store.clips()[static_cast<size_t>(c.row)]);
        EXPECT_EQ(picked ? pickedMode : c.mode, c.mode);
        popup.hide();
    }
}

TEST_F(PopupControllerTest, DigitWithoutARowDoesNothing)
{
    addTexts(2);
    popup.show();
    key(Qt::Key_3, Qt::ControlModifier);
    EXPECT_FALSE(picked);
    EXPECT_TRUE(popup.isVisible());
    EXPECT_TRUE(field().text().isEmpty());
}

TEST_F(PopupControllerTest, ArrowsAndPagesStopAtTheEnds)
{
    addTexts(12);
    popup.show();
    key(Qt::Key_Up);
    EXPECT_EQ(row(), 0);
    key(Qt::Key_PageDown);
    EXPECT_EQ(row(), 8);
    key(Qt::Key_PageDown);
    EXPECT_EQ(row(), 11);
    key(Qt::Key_Down);
    EXPECT_EQ(row(), 11);
    key(Qt::Key_PageUp);
    EXPECT_EQ(row(), 3);
}

TEST_F(PopupControllerTest, FiltersGoRoundAndStay)
{
    addTexts(2);
    addImage();
    popup.show();
    key(Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(popup.filter(), ClipFilter::pinned);
    EXPECT_EQ(count(), u"0 di 3"_s);
    key(Qt::Key_Tab);
    EXPECT_EQ(popup.filter(), ClipFilter::all);
    key(Qt::Key_Tab);
    key(Qt::Key_Tab);
    EXPECT_EQ(popup.filter(), ClipFilter::images);
    EXPECT_EQ(popup.results().size(), 1U);
    popup.hide();
    popup.show();
    EXPECT_EQ(popup.filter(), ClipFilter::images);
    EXPECT_EQ(popup.window().filterControl->selectedSegment(), 2);
}

TEST_F(PopupControllerTest, EscapeEmptiesTheFieldThenCloses)
{
    addTexts(3);
    popup.show();
    type(u"2"_s);
    EXPECT_EQ(popup.results().size(), 1U);
    key(Qt::Key_Escape);
    EXPECT_TRUE(popup.isVisible());
    EXPECT_EQ(popup.results().size(), 3U);
    key(Qt::Key_Escape);
    EXPECT_FALSE(popup.isVisible());
}

TEST_F(PopupControllerTest, SelectionFollowsItsClipAndItsRow)
{
    addTexts(3);
    popup.show();
    key(Qt::Key_Down);
    const ClipPointer chosen = popup.selectedClip();
    addText(u"nuovo"_s);
    EXPECT_EQ(popup.selectedClip(), chosen);
    EXPECT_EQ(row(), 2);
    key(Qt::Key_Down);
    key(Qt::Key_Backspace, Qt::ControlModifier);
    EXPECT_EQ(store.clips().size(), 3U);
    EXPECT_EQ(row(), 2) << "the new last row";
    popup.hide();
    popup.show();
    EXPECT_EQ(row(), 0);
}

TEST_F(PopupControllerTest, CommandDeleteKeysDeleteAWordWhereThereIsOne)
{
    struct Case {
        const char16_t *text;
        int caret;
        Qt::Key key;
        const char16_t *left;
        size_t clips;
    };
    const std::vector<Case> cases = {
        {u"", 0, Qt::Key_Backspace, u"", 1},
        {u"", 0, Qt::Key_Delete, u"", 1},
        {u"testo uno", 9, Qt::Key_Backspace, u"testo ", 2},
        {u"testo", 5, Qt::Key_Delete, u"testo", 1},
        {u"testo", 0, Qt::Key_Delete, u"", 2},
        {u"testo", 0, Qt::Key_Backspace, u"testo", 1},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(QString::fromUtf16(c.text).toStdString() + " " +
                     QKeySequence(c.key).toString().toStdString());
        store.deleteAll(store.clips());
        addText(u"testo uno"_s);
        addText(u"testo uno due"_s);
        popup.show();
        field().setText(QString::fromUtf16(c.text));
        field().setCursorPosition(c.caret);
        key(c.key, Qt::ControlModifier);
        EXPECT_EQ(store.clips().size(), c.clips);
        EXPECT_EQ(field().text(), QString::fromUtf16(c.left));
        popup.hide();
    }
}

TEST_F(PopupControllerTest, PinKeyTurnsThePinOver)
{
    addTexts(1);
    popup.show();
    key(Qt::Key_P, Qt::ControlModifier);
    EXPECT_TRUE(store.clips().front()->pinned);
    key(Qt::Key_P, Qt::ControlModifier);
    EXPECT_FALSE(store.clips().front()->pinned);
}

TEST_F(PopupControllerTest, KeysWithoutATargetBeepAndChangeNothing)
{
    addTexts(1);
    popup.show();
    const std::vector<std::pair<Qt::Key, Qt::KeyboardModifiers>> keys = {
        {Qt::Key_E, Qt::ControlModifier},
        {Qt::Key_E, Qt::ControlModifier | Qt::ShiftModifier},
        {Qt::Key_N, Qt::ControlModifier},
        {Qt::Key_Comma, Qt::ControlModifier},
    };
    for (const auto &[pressed, modifiers] : keys) {
        const int before = beeps();
        key(pressed, modifiers);
        EXPECT_EQ(beeps(), before + 1) << QKeySequence(modifiers | pressed).toString().toStdString();
        EXPECT_TRUE(popup.isVisible());
    }
    EXPECT_TRUE(field().text().isEmpty());
    key(Qt::Key_W, Qt::ControlModifier);
    EXPECT_FALSE(popup.isVisible());
}

TEST_F(PopupControllerTest, TargetsAreCalledWithThePanelClosed)
{
    const ClipPointer text = addText(u"testo"_s);
    int edits = 0;
    ClipPointer edited = text;
    popup.onEdit = [&](const ClipPointer &clip) {
        EXPECT_FALSE(popup.isVisible());
        edited = clip;
        ++edits;
    };
    popup.show();
    key(Qt::Key_N, Qt::ControlModifier);
    EXPECT_FALSE(edited);
    popup.show();
    key(Qt::Key_E, Qt::ControlModifier);
    EXPECT_EQ(edited, text);
    addImage(); // not read: there is no text to edit
    popup.show();
    key(Qt::Key_E, Qt::ControlModifier);
    EXPECT_EQ(edits, 2);
    EXPECT_TRUE(popup.isVisible());
}

TEST_F(PopupControllerTest, AnImageWithoutTextIsPastedAsAnImage)
{
    const ClipPointer image = addImage();
    popup.show();
    key(Qt::Key_Return, Qt::ShiftModifier);
    EXPECT_EQ(pickedMode, PasteMode::paste);
    store.setRecognizedText(u"Fattura"_s, image);
    popup.show();
    key(Qt::Key_Return, Qt::ShiftModifier);
    EXPECT_EQ(pickedMode, PasteMode::plain);
}

TEST_F(PopupControllerTest, TypingInTheListSearches)
{
    addTexts(12);
    popup.show();
    popup.window().tableView->setFocus();
    key(Qt::Key_Down);
    EXPECT_EQ(row(), 1);
    type(u"7"_s);
    EXPECT_EQ(popup.window().focusWidget(), &field());
    EXPECT_EQ(field().text(), u"7"_s);
    EXPECT_EQ(popup.results().size(), 1U);

    popup.window().tableView->setFocus();
    key(Qt::Key_Backspace);
    EXPECT_EQ(store.clips().size(), 11U);
    key(Qt::Key_Escape);
    EXPECT_FALSE(popup.isVisible()) << "the list's Escape closes at once";
}

TEST_F(PopupControllerTest, SizeIsRememberedWhenItCloses)
{
    popup.show();
    popup.window().resize(900, 500);
    popup.hide();
    EXPECT_EQ(platform->defaults->real(u"panelWidth"_s), 900);
    EXPECT_EQ(platform->defaults->real(u"panelHeight"_s), 500);
}

TEST_F(PopupControllerTest, ASmallScreenMakesThePanelSmallOnlyThere)
{
    auto &areas = static_cast<MemoryScreens &>(*platform->screens).areas;
    const auto roomy = areas;
    const QRectF small(0, 0, 500, 320);
    const auto openOn = [&](const std::vector<ScreenArea> &screens) {
        areas = screens;
        popup.show();
        const QSize shown = popup.window().size();
        popup.hide();
        return shown;
    };
    EXPECT_EQ(openOn({{small, small}}), QSize(400, 256)) << "less than it may be resized to";
    EXPECT_EQ(platform->defaults->real(u"panelWidth"_s), 400);
    const RememberedSize next(*platform->defaults);
    EXPECT_EQ(next.wanted(next.initial()), QSize(780, 470)) << "after a restart";
    EXPECT_EQ(openOn(roomy), QSize(780, 470));
}

TEST_F(PopupControllerTest, EveryOpeningFollowsThePreviewSetting)
{
    addText(u"uno"_s);
    ASSERT_TRUE(QTest::qWaitFor([this] { return count() == u"1 elementi"_s; })) << "prepared while hidden";
    for (const bool shown : {false, true}) {
        prefs.setShowPreview(shown);
        popup.show();
        EXPECT_EQ(!popup.window().previewPane->isHidden(), shown);
        popup.hide();
    }
    EXPECT_TRUE(popup.window().previewPane->information().startsWith(u"Testo"_s));
}

TEST_F(PopupControllerTest, ClosesWhenTheDesktopAsksForIt)
{
    popup.show();
    platform->panelSurface->onDismissRequest();
    EXPECT_FALSE(popup.isVisible());
}
