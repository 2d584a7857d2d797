#include "Norvane/capture/ClipboardMonitor.h"

#include "Norvane/app/Preferences.h"
#include "Platform/memory/MemoryPasteboard.h"
#include "Platform/memory/MemoryUserDefaults.h"
#include "tests/capture/Copies.h"

#include <QTest>
#include <gtest/gtest.h>

namespace {

const FrontApplication editor{"org.example.editor", "Editor"};
const FrontApplication vault{"com.apple.Passwords", "Vault"};

class ClipboardMonitorTest : public ::testing::Test {
protected:
    ClipboardMonitorTest() { makeMonitor(); }

    void makeMonitor()
    {
        monitor = std::make_unique<ClipboardMonitor>(pasteboard, prefs);
        monitor->onCapture = [this](const CapturedClip &clip) {
            texts.append(clip.text);
            lastApplication = clip.appID;
        };
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
    MemoryPasteboard pasteboard{7, {textItem("before the start")}};
    QStringList texts;
    std::optional<QString> lastApplication;
    std::unique_ptr<ClipboardMonitor> monitor;
};

TEST_F(ClipboardMonitorTest, RecordsEveryCopyAfterTheStartOnceAndByItself)
{
    EXPECT_EQ(recorded(), QStringList());
    pasteboard.copyText("uno");
    EXPECT_TRUE(QTest::qWaitFor([this] { return !texts.isEmpty(); })) << "it polls";
    pasteboard.copyText("between two polls");
    pasteboard.copyText("due");
    EXPECT_EQ(recorded(), (QStringList{"uno", "due"}));
    EXPECT_EQ(recorded().size(), 2);
}

TEST_F(ClipboardMonitorTest, CapturesArriveInTheOrderOfTheCopies)
{
    pasteboard.copy({itemOf("public.png", encoded(filledImage(2000, 2000, Qt::red)))}); // the slow one first
    QStringList expected{QString()};
    for (int i = 0; i < 50; ++i) {
        monitor->poll();
        expected.append(QString::number(i));
        pasteboard.copyText(expected.last());
    }
    EXPECT_EQ(recorded(), expected);
}

TEST_F(ClipboardMonitorTest, CopiesMadeWhilePausedAreLostForGood)
{
    pasteboard.copyText("before");
    monitor->setPaused(true);
    pasteboard.copyText("paused");
    EXPECT_EQ(recorded(), QStringList("before"));
    pasteboard.copyText("paused too");
    monitor->setPaused(false); // sooner than the next tick
    EXPECT_EQ(recorded(), QStringList("before"));
    pasteboard.copyText("after");
    EXPECT_EQ(recorded(), (QStringList{"before", "after"}));
}

TEST_F(ClipboardMonitorTest, TheApplicationThatWasInFrontAtTheCopyIsNamedOrIgnored)
{
    pasteboard.copyText("a", editor);
    pasteboard.setFrontApplication(vault);
    EXPECT_EQ(recorded(), QStringList("a"));
    EXPECT_EQ(lastApplication, editor.bundleIdentifier);
    texts.clear();
    pasteboard.copyText("secret", vault);
    EXPECT_EQ(recorded(), QStringList());
    pasteboard.copyText("shown", editor);
    pasteboard.copyText("case counts", FrontApplication{"com.apple.passwords", {}});
    EXPECT_EQ(recorded(), QStringList("case counts"));
    pasteboard.copyText("no identifier", FrontApplication{{}, "Vault"});
    EXPECT_EQ(recorded().last(), "no identifier");
    prefs.setIgnoredApps({*editor.bundleIdentifier});
    pasteboard.copyText("edited", editor);
    pasteboard.clear(vault);
    EXPECT_EQ(recorded().last(), "no identifier");
}

TEST_F(ClipboardMonitorTest, ThePasteboardIsToldWhatIsWorthFetching)
{
    EXPECT_EQ(pasteboard.policy(),
              (PasteboardPolicy{false, 32 * 1048576LL, true, true, prefs.ignoredApps()}));
    prefs.setMaxClipMB(0);
    prefs.setSaveImages(false);
    prefs.setSaveFiles(false);
    prefs.setIgnoredApps({"x"});
    monitor->setPaused(true);
    EXPECT_EQ(pasteboard.policy(), (PasteboardPolicy{true, 1048576, false, false, {"x"}}));
}

TEST_F(ClipboardMonitorTest, CatchingUpWaitsForReadsAndCaptures)
{
    monitor->whenCaughtUp([this] { texts.append("(at once)"); });
    EXPECT_EQ(texts, QStringList("(at once)"));

    texts.clear();
    pasteboard.beginRead();
    pasteboard.copyText("late");
    monitor->whenCaughtUp([this] { texts.append("(caught up)"); });
    monitor->poll();
    EXPECT_EQ(texts, QStringList());
    pasteboard.finishRead();
    pasteboard.copyText("later"); // not waited for
    monitor->poll();
    EXPECT_TRUE(QTest::qWaitFor([this] { return texts.size() == 3; }));
    EXPECT_EQ(texts, (QStringList{"late", "(caught up)", "later"}));
}

TEST_F(ClipboardMonitorTest, AnEndDeliversWhatWasNoticedAndDropsTheRest)
{
    bool called = false;
    pasteboard.copyText("noticed");
    monitor->whenCaughtUp([&] { called = true; });
    pasteboard.beginRead();
    pasteboard.copyText("under way");
    monitor->whenCaughtUp([&] { called = true; });
    monitor.reset();
    EXPECT_EQ(texts, QStringList("noticed"));
    pasteboard.finishRead();
    prefs.setSaveFiles(false);
    EXPECT_FALSE(called);
}

TEST_F(ClipboardMonitorTest, ACopyRightBeforeTheEndIsRecordedUnlessItIsOurOwn)
{
    pasteboard.copyText("last");
    monitor.reset();
    EXPECT_EQ(texts, QStringList("last"));
    makeMonitor();
    pasteboard.write({textItem("ours")});
    monitor->ignoreCurrentChange();
    monitor.reset();
    EXPECT_EQ(texts, QStringList("last"));
}

TEST_F(ClipboardMonitorTest, AReceiverMayEndTheMonitor)
{
    monitor->onCapture = [this](const CapturedClip &clip) {
        texts.append(clip.text);
        monitor.reset();
        texts.append("(ended)");
    };
    for (const auto &text : {"uno", "due"}) {
        pasteboard.copyText(text);
        monitor->poll();
    }
    EXPECT_TRUE(QTest::qWaitFor([this] { return !monitor && texts.contains("(ended)"); }));
    EXPECT_EQ(texts.first(), "uno");
    EXPECT_EQ(texts.count("due"), 1);

    makeMonitor();
    pasteboard.copyText("tre");
    monitor->whenCaughtUp([this] { monitor.reset(); });
    EXPECT_TRUE(QTest::qWaitFor([this] { return !monitor; }));
}

} // namespace
