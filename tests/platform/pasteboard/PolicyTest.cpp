#include "tests/platform/pasteboard/PasteboardTest.h"

#include <QElapsedTimer>

// What the policy keeps from being fetched, and what is fetched all the same.

namespace {

constexpr auto text = PasteboardType::plainText;

class PolicyTest : public PasteboardTest {
protected:
    void copy(Owner &owner)
    {
        const qint64 before = pasteboard->changeCount();
        owner.claim();
        EXPECT_TRUE(awaitChange(before));
        EXPECT_EQ(pasteboard->changeCount(), before + 1);
    }
};

} // namespace

TEST_F(PolicyTest, PausedReadsNothingAndCounts)
{
    setPolicy(&PasteboardPolicy::paused, true);
    Owner owner;
    owner.offer("UTF8_STRING", "unseen");
    copy(owner);
    EXPECT_TRUE(items().empty());
    EXPECT_TRUE(owner.asked.isEmpty());
    EXPECT_EQ(readText(), QStringLiteral("unseen")); // a paste into a field of ours
    EXPECT_TRUE(items().empty());
}

TEST_F(PolicyTest, WithoutPicturesOnlyThoseBesideTextAreRead)
{
    setPolicy(&PasteboardPolicy::images, false);
    Owner lonely;
    lonely.offer("text/html", "<img>").offer("image/png", "png").offer("image/x-xcf", "xcf");
    copy(lonely);
    EXPECT_EQ(types(), (QStringList{"public.html", "public.png", "image/x-xcf"}));
    EXPECT_EQ(bytes(u"public.png"), std::nullopt);
    EXPECT_EQ(bytes(u"image/x-xcf"), std::nullopt);

    Owner beside;
    beside.offer("UTF8_STRING", "caption").offer("image/png", "png");
    copy(beside);
    EXPECT_EQ(bytes(u"public.png"), QByteArray("png"));
}

TEST_F(PolicyTest, WithoutFilesOnlyTheirListIsRead)
{
    setPolicy(&PasteboardPolicy::files, false);
    Owner owner;
    owner.offer("text/uri-list", "file:///a\r\n").offer("UTF8_STRING", "/a").offer("x/more", "more");
    copy(owner);
    EXPECT_EQ(bytes(u"public.file-url"), QByteArray("file:///a"));
    EXPECT_EQ(types(), (QStringList{"public.file-url", "public.utf8-plain-text", "x/more"}));
    EXPECT_EQ(bytes(text), std::nullopt);
    EXPECT_EQ(owner.asked, (QByteArrayList{"TARGETS", "text/uri-list"}));
}

TEST_F(PolicyTest, OfAnIgnoredApplicationOnlyTheListIsRead)
{
    Owner owner;
    const QByteArray wmClass("vault\0Vault\0", 12);
    xcb_change_property(owner.raw(), XCB_PROP_MODE_REPLACE, owner.window(), XCB_ATOM_WM_CLASS,
                        XCB_ATOM_STRING, 8, 12, wmClass.constData());
    xcb_map_window(owner.raw(), owner.window());
    xcb_set_input_focus(owner.raw(), XCB_INPUT_FOCUS_POINTER_ROOT, owner.window(), XCB_CURRENT_TIME);
    owner.sync();
    setPolicy(&PasteboardPolicy::ignoredApplications, {"Vault"});
    owner.offer("UTF8_STRING", "secret");
    copy(owner);
    EXPECT_EQ(pasteboard->snapshot()->frontApplication,
              (FrontApplication{QStringLiteral("Vault"), QStringLiteral("vault")}));
    EXPECT_EQ(types(), QStringList{"public.utf8-plain-text"});
    EXPECT_EQ(bytes(text), std::nullopt);
    EXPECT_EQ(owner.asked, QByteArrayList{"TARGETS"});
}

TEST_F(PolicyTest, TextForOurOwnFieldsIsFetchedBeyondTheBudget)
{
    setPolicy(&PasteboardPolicy::byteBudget, 1000);
    Owner owner;
    owner.offer("UTF8_STRING", pattern(5000));
    copy(owner);
    EXPECT_EQ(bytes(text), std::nullopt);
    EXPECT_EQ(readText().toUtf8(), pattern(5000));
}

TEST_F(PolicyTest, TextOfAHungOwnerIsEmptyWithinASecond)
{
    Owner before;
    before.offer("UTF8_STRING", "before");
    copy(before);
    Owner owner;
    owner.hangs = true;
    owner.claim();
    QElapsedTimer time;
    time.start();
    EXPECT_EQ(readText(), QString());
    EXPECT_LT(time.elapsed(), 1100);
}

TEST_F(PolicyTest, OurOwnTextIsThereAtOnce)
{
    pasteboard->write({textItem("primo"), textItem("secondo")});
    bool called = false;
    pasteboard->readText([&](const QString &read) {
        called = true;
        EXPECT_EQ(read, QStringLiteral("primo\nsecondo"));
    });
    EXPECT_TRUE(called);
}
