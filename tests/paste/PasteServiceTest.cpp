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
    const QByteArray whole = QByteArray("caffè ").repeated(50000); // longer than what the clip itself keeps
    const auto styled = copied({{{{u"public.html"_qs, "<b>a</b>"}, {plainText, whole}}}});
    service.paste(styled, TextTransform::upper);
    EXPECT_EQ(contents(), std::vector{itemOf(plainText, QByteArray("CAFFÈ ").repeated(50000))});
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
