#include "Norvane/paste/PasteService.h"

#include "Norvane/app/Preferences.h"
#include "Norvane/capture/ClipboardMonitor.h"
#include "Norvane/store/ClipStore.h"
#include "Platform/memory/MemoryPlatform.h"

#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <gtest/gtest.h>

namespace {

const QString plainText = QString::fromUtf16(PasteboardType::plainText);
const FrontApplication editor{u"org.example.editor"_qs, u"Editor"_qs};

PasteboardItem itemOf(const QString &type, const QByteArray &data)
{
    return {{{type, data}}};
}

class PasteServiceTest : public ::testing::Test {
protected:
    PasteServiceTest()
    {
        monitor.onCapture = [this](const CapturedClip &capture) {
            ++captureCount;
            store.add(capture);
        };
        monitor.start();
        workspace.activate(editor);
        service.onAskAccessibility = [this] {
            askedBefore = defaults.boolean(u"askedAccessibility"_qs).value_or(false);
            ++askCount;
        };
    }

    // The clip of a copy made by another program.
    ClipPointer copied(std::vector<PasteboardItem> items)
    {
        pasteboard.copy(std::move(items), editor);
        catchUp();
        return store.clips().front();
    }

    void catchUp()
    {
        bool done = false;
        monitor.whenCaughtUp([&] { done = true; });
        ASSERT_TRUE(QTest::qWaitFor([&] { return done; }));
    }

    // Lets a paste that was scheduled before this have its time.
    void letPasteHappen()
    {
        bool passed = false;
        QTimer::singleShot(60, [&] { passed = true; });
        ASSERT_TRUE(QTest::qWaitFor([&] { return passed; }));
    }

    [[nodiscard]] const std::vector<PasteboardItem> &contents() const { return pasteboard.snapshot()->items; }

    QTemporaryDir folder;
    MemoryUserDefaults defaults;
    Preferences prefs{defaults};
    MemoryPasteboard pasteboard;
    MemoryWorkspace workspace;
    MemoryKeyEvents keyEvents;
    ClipStore store{folder.path()};
    ClipboardMonitor monitor{pasteboard, prefs};
    PasteService service{{store, pasteboard, monitor, prefs, workspace, keyEvents}};
    int captureCount = 0;
    int askCount = 0;
    bool askedBefore = false;
};

TEST_F(PasteServiceTest, AClipThatCannotBeReadLeavesThePasteboardAsItIs)
{
    const ClipPointer lost = copied({itemOf(plainText, "lost")});
    store.remove(lost); // its formats are gone from the file
    copied({itemOf(plainText, "dear to the user")});
    service.paste(lost, PasteMode::paste);
    letPasteHappen();
    EXPECT_EQ(contents().at(0).data(plainText), QByteArray("dear to the user"));
    EXPECT_EQ(keyEvents.pasteCount, 0);
    EXPECT_EQ(workspace.beepCount, 1);
}

TEST_F(PasteServiceTest, PasteGivesBackEveryItemAsItWasCopied)
{
    const std::vector<PasteboardItem> items{
        {{{u"public.rtf"_qs, "{\\rtf1}"}, {plainText, "ciao 😀\r\nmondo"}, {u"x/own"_qs, ""}}},
        itemOf(plainText, "secondo")};
    const auto clip = copied(items);
    copied({itemOf(plainText, "another")});

    service.paste(clip, PasteMode::paste);
    EXPECT_EQ(contents(), items);
    EXPECT_EQ(store.clips().front(), clip);
    catchUp();
    EXPECT_EQ(captureCount, 2); // the write itself is no copy
    EXPECT_TRUE(QTest::qWaitFor([this] { return keyEvents.pasteCount == 1; }));
}

// What takes long to read or to convert.
struct LongChoice {
    const char *name;
    QByteArray text;
    QByteArray other; // bytes beside the text
    PasteMode mode;
    QByteArray pasted; // as text; empty: all forms
};

class LongChoiceTest : public PasteServiceTest, public ::testing::WithParamInterface<LongChoice> {
protected:
    ClipPointer addLong()
    {
        CapturedClip capture;
        capture.text = QString::fromUtf8(GetParam().text);
        capture.hash = u"long"_qs;
        capture.formats = {{0, plainText, GetParam().text}, {0, u"x/other"_qs, GetParam().other}};
        return store.add(capture);
    }

    [[nodiscard]] bool isPasted() const
    {
        const auto &choice = GetParam();
        if (!choice.pasted.isEmpty())
            return contents() == std::vector{itemOf(plainText, choice.pasted)};
        return contents() ==
               std::vector{PasteboardItem{{{plainText, choice.text}, {u"x/other"_qs, choice.other}}}};
    }

    // Two readings one after the other last longer than the one that was begun before them.
    void letReadingEnd(const ClipPointer &clip)
    {
        bool ended = false;
        for (int i = 0; i < 2; ++i) {
            store.read(*clip, [&ended, clip](const StoredFormats &) { return [&ended] { ended = true; }; });
            ASSERT_TRUE(QTest::qWaitFor([&] { return std::exchange(ended, false); }));
        }
    }
};

TEST_P(LongChoiceTest, FollowsAMomentLaterUnlessSomethingElseComesFirst)
{
    const ClipPointer clip = addLong();
    const ClipPointer small = copied({itemOf(plainText, "small")});
    service.paste(clip, GetParam().mode);
    EXPECT_FALSE(isPasted()) << "the caller has waited for it";
    ASSERT_TRUE(QTest::qWaitFor([this] { return isPasted(); }));
    EXPECT_EQ(store.clips().front(), clip);
    EXPECT_TRUE(QTest::qWaitFor([this] { return keyEvents.pasteCount == 1; }));

    const std::function<void()> firsts[] = {
        [&] { service.paste(small, PasteMode::copy); },
        [&] { copied({itemOf(plainText, "small")}); },
        [&] { store.remove(clip); },
    };
    for (const auto &first : firsts) {
        service.paste(small, PasteMode::copy);
        service.paste(clip, GetParam().mode);
        first();
        letReadingEnd(clip);
        EXPECT_EQ(contents(), std::vector{itemOf(plainText, "small")});
    }
    EXPECT_EQ(store.clips(), ClipList{small}) << "a deleted clip came back";
    EXPECT_EQ(workspace.beepCount, 1) << "for the deleted one";
    letPasteHappen();
    EXPECT_EQ(keyEvents.pasteCount, 1);
    EXPECT_EQ(captureCount, 1 + 1); // the copies of the other program
}

TEST_P(LongChoiceTest, GivesWayToALaterOneHoweverLongThatTakes)
{
    const ClipPointer clip = addLong();
    CapturedClip capture;
    capture.hash = u"longer"_qs;
    capture.formats = {{0, u"x/longer"_qs, QByteArray(32 << 20, 'l')}};
    const ClipPointer longer = store.add(capture);
    service.paste(clip, GetParam().mode);
    service.paste(longer, PasteMode::copy);
    ASSERT_TRUE(QTest::qWaitFor([this] { return pasteboard.changeCount() > 0; }));
    EXPECT_EQ(contents(), std::vector{itemOf(u"x/longer"_qs, capture.formats[0].data)});
    letReadingEnd(clip);
    EXPECT_EQ(pasteboard.changeCount(), 1);
    EXPECT_EQ(store.clips().front(), longer);
}

const QByteArray longText = QByteArray("caffè ").repeated(50000); // longer than what a clip itself keeps

INSTANTIATE_TEST_SUITE_P(
    PasteService, LongChoiceTest,
    ::testing::Values(LongChoice{"LargeClip", "a", QByteArray(8 << 20, 'x'), PasteMode::paste, {}},
                      LongChoice{"LargeText", longText, QByteArray(8 << 20, 'x'), PasteMode::plain, longText},
                      LongChoice{"LongConversion", longText, "", TextTransform::upper,
                                 QByteArray("CAFFÈ ").repeated(50000)},
                      LongChoice{"ConversionOfATextInMemory", QByteArray(100000, 'x'), "",
                                 TextTransform::upper, QByteArray(100000, 'X')}),
    [](const auto &test) { return std::string(test.param.name); });

TEST_F(PasteServiceTest, ItsEndEndsAChoiceUnderWay)
{
    const ClipPointer clip = copied({itemOf(plainText, longText)});
    {
        PasteService brief{{store, pasteboard, monitor, prefs, workspace, keyEvents}};
        brief.paste(clip, TextTransform::upper);
    }
    bool ended = false;
    store.read(*clip, [&](const StoredFormats &) { return [&] { ended = true; }; });
    ASSERT_TRUE(QTest::qWaitFor([&] { return ended; }));
    EXPECT_EQ(contents(), std::vector{itemOf(plainText, longText)});
}

TEST_F(PasteServiceTest, PlainGivesTheTextAlone)
{
    const auto styled = copied({{{{u"public.html"_qs, "<b>a</b>"}, {plainText, "a"}}}});
    service.paste(styled, PasteMode::plain);
    EXPECT_EQ(contents(), std::vector{itemOf(plainText, "a")});
    EXPECT_TRUE(QTest::qWaitFor([this] { return keyEvents.pasteCount == 1; }));

    const auto files = copied({itemOf(u"public.file-url"_qs, "file:///tmp/a%20b"),
                               itemOf(u"public.file-url"_qs, "file:///etc/hosts")});
    service.paste(files, PasteMode::plain);
    EXPECT_EQ(contents(), std::vector{itemOf(plainText, "/tmp/a b\n/etc/hosts")});

    const QByteArray whole = QByteArray("0123456789").repeated(30000);
    service.paste(copied({itemOf(plainText, whole)}), PasteMode::plain);
    EXPECT_EQ(contents(), std::vector{itemOf(plainText, whole)});
}

TEST_F(PasteServiceTest, ATransformGivesTheConvertedTextAlone)
{
    const auto styled = copied({{{{u"public.html"_qs, "<b>a</b>"}, {plainText, "caffè"}}}});
    service.paste(styled, TextTransform::upper);
    EXPECT_EQ(contents(), std::vector{itemOf(plainText, "CAFFÈ")});
    EXPECT_TRUE(QTest::qWaitFor([this] { return keyEvents.pasteCount == 1; }));
    catchUp();
    EXPECT_EQ(captureCount, 1);
}

TEST_F(PasteServiceTest, TheTextOfAnImageIsWhatWasRecognised)
{
    const auto image = copied({itemOf(u"public.png"_qs, "no real picture")});
    store.setRecognizedText(u"Fattura n. 118"_qs, image);
    service.paste(image, PasteMode::copyText);
    EXPECT_EQ(contents(), std::vector{itemOf(plainText, "Fattura n. 118")});
    service.paste(image, TextTransform::kebab);
    EXPECT_EQ(contents(), std::vector{itemOf(plainText, "fattura-n-118")});
    service.paste(image, PasteMode::copy);
    EXPECT_EQ(contents(), std::vector{itemOf(u"public.png"_qs, "no real picture")});
}

TEST_F(PasteServiceTest, CopyingTypesNothing)
{
    const auto clip = copied({itemOf(plainText, "uno")});
    copied({itemOf(plainText, "due")});
    for (const auto mode : {PasteMode::copy, PasteMode::copyText}) {
        service.paste(clip, mode);
        EXPECT_EQ(contents(), std::vector{itemOf(plainText, "uno")});
        EXPECT_EQ(store.clips().front(), clip);
    }
    letPasteHappen();
    EXPECT_EQ(keyEvents.pasteCount, 0);
}

TEST_F(PasteServiceTest, NothingIsTypedBeforeItsTime)
{
    QElapsedTimer clock;
    clock.start();
    service.autoPaste();
    EXPECT_EQ(keyEvents.pasteCount, 0);
    ASSERT_TRUE(QTest::qWaitFor([this] { return keyEvents.pasteCount == 1; }));
    EXPECT_GE(clock.elapsed(), 49);
    prefs.setAutoPaste(false); // too late for what is scheduled, in time for the next
    service.autoPaste();
    letPasteHappen();
    EXPECT_EQ(keyEvents.pasteCount, 1);
}

TEST_F(PasteServiceTest, WhatIsScheduledIsTypedWhateverComes)
{
    service.autoPaste();
    prefs.setAutoPaste(false);
    keyEvents.allowed = false;
    EXPECT_TRUE(QTest::qWaitFor([this] { return keyEvents.pasteCount == 1; }));
}

TEST_F(PasteServiceTest, NothingIsTypedIntoThisApplication)
{
    workspace.activate(FrontApplication{QString::fromUtf16(ownBundleIdentifier), u"Norvane"_qs});
    keyEvents.allowed = false;
    service.autoPaste();
    keyEvents.allowed = true;
    service.autoPaste();
    letPasteHappen();
    EXPECT_EQ(keyEvents.pasteCount, 0);
    EXPECT_EQ(askCount, 0);
}

TEST_F(PasteServiceTest, AMissingPermissionIsAskedForOnceInALifetime)
{
    keyEvents.allowed = false;
    prefs.setAutoPaste(false);
    service.autoPaste();
    EXPECT_EQ(askCount, 0);
    prefs.setAutoPaste(true);
    const auto clip = copied({itemOf(plainText, "uno")});
    service.paste(clip, PasteMode::paste);
    EXPECT_EQ(askCount, 1);
    EXPECT_TRUE(askedBefore);
    EXPECT_EQ(contents(), std::vector{itemOf(plainText, "uno")});
    service.paste(clip, PasteMode::paste);
    PasteService{{store, pasteboard, monitor, prefs, workspace, keyEvents}}.autoPaste();
    letPasteHappen();
    EXPECT_EQ(askCount, 1);
    EXPECT_EQ(keyEvents.pasteCount, 0);
}

TEST_F(PasteServiceTest, AClipWithoutFormatsEmptiesThePasteboard)
{
    const auto clip = store.add(CapturedClip{}); // as the file may hold one
    pasteboard.copyText(u"due"_qs);
    service.paste(clip, PasteMode::copy);
    EXPECT_TRUE(contents().empty());
}

TEST_F(PasteServiceTest, TheChosenClipMayBeTheListsOwn)
{
    copied({itemOf(plainText, "uno")});
    copied({itemOf(plainText, "due")});
    service.paste(store.clips().back(), PasteMode::copy);
    EXPECT_EQ(store.clips().front()->text, u"uno");
    EXPECT_EQ(store.clips().back()->text, u"due");
}

TEST(WriteFormats, ItemsComeInTheOrderOfTheirNumbersAndFormatsInTheirOwn)
{
    MemoryPasteboard pasteboard;
    writeFormats({{5, u"b"_qs, "1"}, {-2, u"z"_qs, "2"}, {5, u"a"_qs, "3"}, {0, u"y"_qs, ""}}, pasteboard);
    EXPECT_EQ(pasteboard.snapshot()->items,
              (std::vector<PasteboardItem>{
                  itemOf(u"z"_qs, "2"), itemOf(u"y"_qs, ""), {{{u"b"_qs, "1"}, {u"a"_qs, "3"}}}}));
    EXPECT_EQ(pasteboard.changeCount(), 1);
}

} // namespace
