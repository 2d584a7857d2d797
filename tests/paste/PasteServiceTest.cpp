#include "Norvane/paste/PasteService.h"

#include "Norvane/app/Preferences.h"
#include "Norvane/capture/ClipboardMonitor.h"
#include "Norvane/store/ClipStore.h"
#include "Platform/memory/MemoryPlatform.h"
#include "tests/capture/Copies.h"

#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <gtest/gtest.h>

namespace {

const FrontApplication editor{"org.example.editor", "Editor"};

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
            askedBefore = defaults.boolean("askedAccessibility").value_or(false);
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

    [[nodiscard]] bool isTyped() const
    {
        return QTest::qWaitFor([this] { return keyEvents.pasteCount == 1; });
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
    const ClipPointer lost = copied({textItem("lost")});
    store.remove(lost); // its formats are gone from the file
    copied({textItem("dear to the user")});
    service.paste(lost, PasteMode::paste);
    letPasteHappen();
    EXPECT_EQ(contents().at(0).data(plainText), QByteArray("dear to the user"));
    EXPECT_EQ(keyEvents.pasteCount, 0);
    EXPECT_EQ(workspace.beepCount, 1);
}

const QByteArray longText = QByteArray("caffè ").repeated(50000); // longer than what a clip itself keeps

TEST_F(PasteServiceTest, EachWayGivesItsContentAloneAndOnlyPastingTypes)
{
    const auto by = [this](auto way) {
        return [this, way](const ClipPointer &clip) { service.paste(clip, way); };
    };
    const std::vector<PasteboardItem> items{
        {{{"public.rtf", "{\\rtf1}"}, {plainText, "ciao 😀\r\nmondo"}, {"x/own", ""}}}, textItem("secondo")};
    const std::vector<PasteboardItem> styled{{{{"public.html", "<b>a</b>"}, {plainText, "a"}}}};
    const std::vector<PasteboardItem> picture{itemOf("public.png", "no real picture")};
    const struct {
        const char *what;
        std::vector<PasteboardItem> copy;
        std::function<void(const ClipPointer &)> paste;
        std::vector<PasteboardItem> expected;
        bool types;
    } cases[] = {
        {"all as it was", items, by(PasteMode::paste), items, true},
        {"text of a styled clip", styled, by(PasteMode::plain), {textItem("a")}, true},
        {"paths of files",
         {fileItem("file:///tmp/a%20b"), fileItem("file:///etc/hosts")},
         by(PasteMode::plain),
         {textItem("/tmp/a b\n/etc/hosts")},
         true},
        {"the whole text", {textItem(longText)}, by(PasteMode::plain), {textItem(longText)}, true},
        {"converted",
         {textItem(longText)},
         by(TextTransform::upper),
         {textItem(QString(longText).toUpper())},
         true},
        {"copied", styled, by(PasteMode::copy), styled, false},
        {"copied text", styled, by(PasteMode::copyText), {textItem("a")}, false},
        {"what was read in an image", picture, by(PasteMode::copyText), {textItem("Fattura n. 118")}, false},
        {"that, converted", picture, by(TextTransform::kebab), {textItem("fattura-n-118")}, true},
        {"the image", picture, by(PasteMode::copy), picture, false},
    };
    for (const auto &each : cases) {
        SCOPED_TRACE(each.what);
        const ClipPointer clip = copied(each.copy);
        if (clip->kind == ClipKind::image)
            store.setRecognizedText("Fattura n. 118", clip);
        copied({textItem("another")});
        captureCount = keyEvents.pasteCount = 0;
        each.paste(store.clips()[1]); // the list's own pointer, which changes its place meanwhile
        EXPECT_TRUE(QTest::qWaitFor([&] { return contents() == each.expected; }));
        EXPECT_EQ(store.clips().front(), clip);
        if (each.types)
            static_cast<void>(isTyped());
        else
            letPasteHappen();
        EXPECT_EQ(keyEvents.pasteCount, each.types ? 1 : 0);
        catchUp();
        EXPECT_EQ(captureCount, 0) << "the write itself is no copy";
    }
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
        auto capture = textCapture(GetParam().text);
        capture.formats = {{0, plainText, GetParam().text}, {0, "x/other", GetParam().other}};
        return store.add(capture);
    }

    [[nodiscard]] bool isPasted() const
    {
        const auto &choice = GetParam();
        if (!choice.pasted.isEmpty())
            return contents() == std::vector{itemOf(plainText, choice.pasted)};
        return contents() ==
               std::vector{PasteboardItem{{{plainText, choice.text}, {"x/other", choice.other}}}};
    }

    // Of two readings one after the other at least the second most often ends after the one begun before
    // them.
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
    const ClipPointer small = copied({textItem("small")});
    service.paste(clip, GetParam().mode);
    EXPECT_FALSE(isPasted()) << "the caller has waited for it";
    ASSERT_TRUE(QTest::qWaitFor([this] { return isPasted(); }));
    EXPECT_EQ(store.clips().front(), clip);
    EXPECT_TRUE(isTyped());

    const std::function<void()> firsts[] = {
        [&] { service.paste(small, PasteMode::copy); },
        [&] { copied({textItem("small")}); },
        [&] { store.remove(clip); },
    };
    for (const auto &first : firsts) {
        service.paste(small, PasteMode::copy);
        service.paste(clip, GetParam().mode);
        first();
        letReadingEnd(clip);
        EXPECT_EQ(contents(), std::vector{textItem("small")});
    }
    EXPECT_EQ(store.clips(), ClipList{small}) << "a deleted clip came back";
    EXPECT_TRUE(QTest::qWaitFor([this] { return workspace.beepCount > 0; })) << "for the deleted one";
    letPasteHappen();
    EXPECT_EQ(workspace.beepCount, 1);
    EXPECT_EQ(keyEvents.pasteCount, 1);
    EXPECT_EQ(captureCount, 1 + 1); // the copies of the other program
}

TEST_P(LongChoiceTest, GivesWayToALaterOneHoweverLongThatTakes)
{
    const ClipPointer clip = addLong();
    auto capture = textCapture("longer");
    capture.formats = {{0, "x/longer", QByteArray(32 << 20, 'l')}};
    const ClipPointer longer = store.add(capture);
    service.paste(clip, GetParam().mode);
    service.paste(longer, PasteMode::copy);
    ASSERT_TRUE(QTest::qWaitFor([this] { return pasteboard.changeCount() > 0; }));
    EXPECT_EQ(contents(), std::vector{itemOf("x/longer", capture.formats[0].data)});
    letReadingEnd(clip);
    EXPECT_EQ(pasteboard.changeCount(), 1);
    EXPECT_EQ(store.clips().front(), longer);
}

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

TEST_F(PasteServiceTest, WhatIsScheduledIsTypedWhateverComesAndNotBeforeItsTime)
{
    QElapsedTimer clock;
    clock.start();
    service.autoPaste();
    EXPECT_EQ(keyEvents.pasteCount, 0);
    prefs.setAutoPaste(false); // too late for what is scheduled, in time for the next
    keyEvents.allowed = false;
    ASSERT_TRUE(isTyped());
    EXPECT_GE(clock.elapsed(), 45); // of 50: the toolkit's timers may come a twentieth early
    keyEvents.allowed = true;
    service.autoPaste();
    letPasteHappen();
    EXPECT_EQ(keyEvents.pasteCount, 1);
}

TEST_F(PasteServiceTest, NothingIsTypedIntoThisApplication)
{
    workspace.activate(FrontApplication{QString::fromUtf16(ownBundleIdentifier), "Norvane"});
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
    const auto clip = copied({textItem("uno")});
    service.paste(clip, PasteMode::paste);
    EXPECT_EQ(askCount, 1);
    EXPECT_TRUE(askedBefore);
    EXPECT_EQ(contents(), std::vector{textItem("uno")});
    service.paste(clip, PasteMode::paste);
    PasteService{{store, pasteboard, monitor, prefs, workspace, keyEvents}}.autoPaste();
    letPasteHappen();
    EXPECT_EQ(askCount, 1);
    EXPECT_EQ(keyEvents.pasteCount, 0);
}

TEST_F(PasteServiceTest, AClipWithoutFormatsEmptiesThePasteboard)
{
    const auto clip = store.add(CapturedClip{}); // as the file may hold one
    pasteboard.copyText("due");
    service.paste(clip, PasteMode::copy);
    EXPECT_TRUE(contents().empty());
}

TEST(WriteFormats, ItemsComeInTheOrderOfTheirNumbersAndFormatsInTheirOwn)
{
    MemoryPasteboard pasteboard;
    writeFormats({{5, "b", "1"}, {-2, "z", "2"}, {5, "a", "3"}, {0, "y", ""}}, pasteboard);
    EXPECT_EQ(pasteboard.snapshot()->items,
              (std::vector<PasteboardItem>{itemOf("z", "2"), itemOf("y", ""), {{{"b", "1"}, {"a", "3"}}}}));
    EXPECT_EQ(pasteboard.changeCount(), 1);
}

} // namespace
