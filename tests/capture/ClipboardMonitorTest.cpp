#include "Norvane/capture/ClipboardMonitor.h"

#include "Norvane/app/Preferences.h"
#include "Platform/memory/MemoryPasteboard.h"
#include "Platform/memory/MemoryUserDefaults.h"
#include "tests/capture/Copies.h"

#include <QTest>
#include <gtest/gtest.h>

namespace {

const FrontApplication editor{u"org.example.editor"_qs, u"Editor"_qs};
const FrontApplication vault{u"com.apple.Passwords"_qs, u"Vault"_qs};

class ClipboardMonitorTest : public ::testing::Test {
protected:
    ClipboardMonitorTest() { makeMonitor(); }

    void makeMonitor()
    {
        monitor = std::make_unique<ClipboardMonitor>(pasteboard, prefs);
        monitor->onCapture = [this](const CapturedClip &clip) { texts.append(clip.text); };
        monitor->start();
    }

    // What has been recorded when everything copied so far is through.
    QStringList recorded()
    {
        bool caughtUp = false;
        monitor->whenCaughtUp([&] { caughtUp = true; });
        EXPECT_TRUE(QTest::qWaitFor([&] { return caughtUp; }));
        return texts;
    }

    MemoryUserDefaults defaults;
    Preferences prefs{defaults};
    MemoryPasteboard pasteboard{7, {textItem(u"before the start"_qs)}};
    QStringList texts;
    std::unique_ptr<ClipboardMonitor> monitor;
};

TEST_F(ClipboardMonitorTest, RecordsEveryCopyAfterTheStartOnce)
{
    EXPECT_EQ(recorded(), QStringList());
    pasteboard.copyText(u"uno"_qs);
    EXPECT_EQ(recorded(), QStringList(u"uno"_qs));
    pasteboard.copyText(u"due"_qs);
    EXPECT_EQ(recorded(), (QStringList{u"uno"_qs, u"due"_qs}));
    EXPECT_EQ(recorded().size(), 2);
}

TEST_F(ClipboardMonitorTest, PollsByItself)
{
    pasteboard.copyText(u"uno"_qs);
    EXPECT_TRUE(QTest::qWaitFor([this] { return !texts.isEmpty(); }));
}

TEST_F(ClipboardMonitorTest, TwoCopiesBetweenPollsAreOneChange)
{
    pasteboard.copyText(u"uno"_qs);
    pasteboard.copyText(u"due"_qs);
    EXPECT_EQ(recorded(), QStringList(u"due"_qs));
}

TEST_F(ClipboardMonitorTest, CapturesArriveInTheOrderOfTheCopies)
{
    // The slow one first.
    QStringList kinds;
    monitor->onCapture = [&](const CapturedClip &clip) { kinds.append(clip.text); };
    pasteboard.copy({{{form(u"public.png"_qs, encoded(filledImage(2000, 2000, Qt::red), "PNG"))}}});
    monitor->poll();
    for (int i = 0; i < 50; ++i) {
        pasteboard.copyText(QString::number(i));
        monitor->poll();
    }
    recorded();
    ASSERT_EQ(kinds.size(), 51);
    EXPECT_EQ(kinds.first(), QString());
    for (int i = 0; i < 50; ++i)
        EXPECT_EQ(kinds[i + 1], QString::number(i));
}

TEST_F(ClipboardMonitorTest, CopiesMadeWhilePausedAreLostForGood)
{
    pasteboard.copyText(u"before"_qs);
    monitor->setPaused(true);
    EXPECT_TRUE(monitor->isPaused());
    pasteboard.copyText(u"paused"_qs);
    EXPECT_EQ(recorded(), QStringList(u"before"_qs));
    pasteboard.copyText(u"paused too"_qs);
    monitor->setPaused(false); // sooner than the next tick
    EXPECT_EQ(recorded(), QStringList(u"before"_qs));
    pasteboard.copyText(u"after"_qs);
    EXPECT_EQ(recorded(), (QStringList{u"before"_qs, u"after"_qs}));
}

TEST_F(ClipboardMonitorTest, OwnWritesAreNotRecorded)
{
    pasteboard.write({textItem(u"ours"_qs)});
    monitor->ignoreCurrentChange();
    EXPECT_EQ(recorded(), QStringList());
    pasteboard.copyText(u"ours"_qs); // the same words, copied by the user
    EXPECT_EQ(recorded(), QStringList(u"ours"_qs));
}

TEST_F(ClipboardMonitorTest, AWriteWithoutTheRequestIsRecordedLikeAnyCopy)
{
    pasteboard.write({textItem(u"cut in our editor"_qs)});
    EXPECT_EQ(recorded(), QStringList(u"cut in our editor"_qs));
}

TEST_F(ClipboardMonitorTest, IgnoredApplicationsAreThoseInFrontAtTheCopy)
{
    pasteboard.copyText(u"secret"_qs, vault);
    EXPECT_EQ(recorded(), QStringList());
    pasteboard.copyText(u"shown"_qs, editor);
    pasteboard.copyText(u"case counts"_qs, FrontApplication{u"com.apple.passwords"_qs, {}});
    EXPECT_EQ(recorded(), QStringList(u"case counts"_qs));
    pasteboard.copyText(u"no identifier"_qs, FrontApplication{{}, u"Vault"_qs});
    EXPECT_EQ(recorded().last(), u"no identifier"_qs);
    prefs.setIgnoredApps({*editor.bundleIdentifier});
    pasteboard.copyText(u"edited"_qs, editor);
    pasteboard.clear(vault);
    EXPECT_EQ(recorded().last(), u"no identifier"_qs);
}

TEST_F(ClipboardMonitorTest, TheCaptureNamesTheApplicationThatWasInFrontAtTheCopy)
{
    std::optional<QString> id;
    monitor->onCapture = [&](const CapturedClip &clip) { id = clip.appID; };
    pasteboard.copyText(u"a"_qs, editor);
    pasteboard.setFrontApplication(vault);
    recorded();
    EXPECT_EQ(id, editor.bundleIdentifier);
}

TEST_F(ClipboardMonitorTest, ThePasteboardIsToldWhatIsWorthFetching)
{
    EXPECT_EQ(pasteboard.policy(),
              (PasteboardPolicy{false, 32 * 1048576LL, true, true, prefs.ignoredApps()}));
    prefs.setMaxClipMB(0);
    prefs.setSaveImages(false);
    prefs.setSaveFiles(false);
    prefs.setIgnoredApps({u"x"_qs});
    monitor->setPaused(true);
    EXPECT_EQ(pasteboard.policy(), (PasteboardPolicy{true, 1048576, false, false, {u"x"_qs}}));
}

TEST_F(ClipboardMonitorTest, CatchingUpWaitsForReadsAndCaptures)
{
    monitor->whenCaughtUp([this] { texts.append(u"(at once)"_qs); });
    EXPECT_EQ(texts, QStringList(u"(at once)"_qs));

    texts.clear();
    pasteboard.beginRead();
    pasteboard.copyText(u"late"_qs);
    monitor->whenCaughtUp([this] { texts.append(u"(caught up)"_qs); });
    monitor->poll();
    EXPECT_EQ(texts, QStringList());
    pasteboard.finishRead();
    pasteboard.copyText(u"later"_qs); // not waited for
    monitor->poll();
    EXPECT_TRUE(QTest::qWaitFor([this] { return texts.size() == 3; }));
    EXPECT_EQ(texts, (QStringList{u"late"_qs, u"(caught up)"_qs, u"later"_qs}));
}

TEST_F(ClipboardMonitorTest, AnEndDeliversWhatWasNoticedAndDropsTheRest)
{
    bool called = false;
    pasteboard.copyText(u"noticed"_qs);
    monitor->whenCaughtUp([&] { called = true; });
    pasteboard.beginRead();
    pasteboard.copyText(u"under way"_qs);
    monitor->whenCaughtUp([&] { called = true; });
    monitor.reset();
    EXPECT_EQ(texts, QStringList(u"noticed"_qs));
    pasteboard.finishRead();
    prefs.setSaveFiles(false);
    EXPECT_FALSE(called);
}

TEST_F(ClipboardMonitorTest, ACopyRightBeforeTheEndIsRecordedUnlessItIsOurOwn)
{
    pasteboard.copyText(u"last"_qs);
    monitor.reset();
    EXPECT_EQ(texts, QStringList(u"last"_qs));
    makeMonitor();
    pasteboard.write({textItem(u"ours"_qs)});
    monitor->ignoreCurrentChange();
    monitor.reset();
    EXPECT_EQ(texts, QStringList(u"last"_qs));
}

TEST_F(ClipboardMonitorTest, AReceiverMayEndTheMonitor)
{
    monitor->onCapture = [this](const CapturedClip &clip) {
        texts.append(clip.text);
        monitor.reset();
        texts.append(u"(ended)"_qs);
    };
    for (const auto &text : {u"uno"_qs, u"due"_qs}) {
        pasteboard.copyText(text);
        monitor->poll();
    }
    EXPECT_TRUE(QTest::qWaitFor([this] { return !monitor && texts.contains(u"(ended)"_qs); }));
    EXPECT_EQ(texts.first(), u"uno"_qs);
    EXPECT_EQ(texts.count(u"due"_qs), 1);

    makeMonitor();
    pasteboard.copyText(u"tre"_qs);
    monitor->whenCaughtUp([this] { monitor.reset(); });
    EXPECT_TRUE(QTest::qWaitFor([this] { return !monitor; }));
}

} // namespace
