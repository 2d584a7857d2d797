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

TEST_F(PasteServiceTest, EachWayGivesItsContentAloneAndOnlyPastingTypes)
{
    const auto by = [this](auto way) {
        return [this, way](const ClipPointer &clip) { service.paste(clip, way); };
    };
    const std::vector<PasteboardItem> items{
        {{{"public.rtf", "{\\rtf1}"}, {plainText, "ciao 😀\r\nmondo"}, {"x/own", ""}}}, textItem("secondo")};
    const std::vector<PasteboardItem> styled{{{{"public.html", "<b>a</b>"}, {plainText, "a"}}}};
    const std::vector<PasteboardItem> picture{itemOf("public.png", "no real picture")};
    const QString longText = QString("caffè ").repeated(50000); // longer than what the clip itself keeps
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
        {"converted", {textItem(longText)}, by(TextTransform::upper), {textItem(longText.toUpper())}, true},
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

TEST_F(PasteServiceTest, ALargeClipFollowsWhenItIsReadUnlessSomethingElseComesFirst)
{
    const std::vector<PasteboardItem> items{itemOf("x/large", QByteArray(8 << 20, 'l'))};
    auto capture = textCapture("large");
    capture.formats = {{0, "x/large", *items[0].data(u"x/large")}};
    const ClipPointer large = store.add(capture);
    const ClipPointer small = copied({textItem("small")});
    const auto isLarge = [&] { return contents() == items; };

    service.paste(large, PasteMode::paste);
    EXPECT_FALSE(isLarge()) << "the caller has waited for it";
    ASSERT_TRUE(QTest::qWaitFor(isLarge));
    EXPECT_EQ(store.clips().front(), large);
    EXPECT_TRUE(isTyped());

    for (const bool chosen : {true, false}) {
        service.paste(large, PasteMode::copy);
        if (chosen)
            service.paste(small, PasteMode::copy);
        else
            copied({textItem("small")});
        bool read = false;
        store.readFormats(*large, [&](const auto &formats) { read = formats == capture.formats; });
        ASSERT_TRUE(QTest::qWaitFor([&] { return read; }));
        EXPECT_EQ(contents(), std::vector{textItem("small")});
        service.paste(large, PasteMode::copy);
        ASSERT_TRUE(QTest::qWaitFor(isLarge));
    }
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
