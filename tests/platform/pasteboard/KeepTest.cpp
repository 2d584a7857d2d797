#include "tests/platform/pasteboard/PasteboardTest.h"

// What becomes of a copy when its program goes.

namespace {

using Form = Owner::Form;
using Forms = std::vector<std::pair<const char *, QByteArray>>;

class KeepTest : public PasteboardTest {
protected:
    void copy(Owner &owner)
    {
        copier = owner.window();
        PasteboardTest::copy(owner);
    }

    // What another program finds on the clipboard once the one that copied has lost it.
    std::optional<QByteArray> left(const char *target)
    {
        EXPECT_TRUE(await([this] { return !copier || holder() != copier; }));
        settle();
        const auto answer = requestor.convert(target);
        return answer ? std::optional(answer->bytes) : std::nullopt;
    }

    xcb_window_t holder() { return requestor.holderOf("CLIPBOARD"); }

    xcb_window_t copier = XCB_WINDOW_NONE;
};

void die(Owner &owner)
{
    owner.die();
}

void saveAndDie(Owner &owner)
{
    EXPECT_TRUE(owner.save());
    owner.die();
}

void saveInVainAndDie(Owner &owner)
{
    EXPECT_FALSE(owner.save({"UTF8_STRING"}));
    owner.die();
}

void saveLetGoAndDie(Owner &owner)
{
    EXPECT_TRUE(owner.save({"UTF8_STRING", "x/own"}));
    owner.letGo();
    owner.die();
}

using Policy = PasteboardPolicy;

struct Farewell {
    const char *name;
    void (*leave)(Owner &owner);
    Forms forms;
    std::optional<QByteArray> left = {}; // under the name of the first form
    PasteboardPolicy policy = {};
    qint64 changes = 0;
};

const Forms textAndMore = {{"UTF8_STRING", "kept"}, {"x/own", "own"}};

const Farewell farewells[] = {
    {"client dies", die, textAndMore, "kept"},
    {"window is destroyed", [](Owner &owner) { owner.destroyWindow(); }, textAndMore, "kept"},
    {"saves and quits", saveAndDie, textAndMore, "kept"},
    {"saves, lets go and quits", saveLetGoAndDie, textAndMore, "kept"},
    {"lets go without saving", [](Owner &owner) { owner.letGo(); }, {{"UTF8_STRING", "t"}}, {}, {}, 1},
    {"password", saveInVainAndDie, {{"UTF8_STRING", "t"}, {"x-kde-passwordManagerHint", "secret"}}},
    {"transient", die, {{"UTF8_STRING", "t"}, {"com.example.TransientPasteboardType", ""}}},
    {"empty text", saveInVainAndDie, {{"UTF8_STRING", ""}}},
    {"paused", saveInVainAndDie, {{"UTF8_STRING", "t"}}, {}, policyWith(&Policy::paused, true)},
    {"text too long", die, textAndMore, {}, policyWith(&Policy::byteBudget, 3)},
    {"style too long",
     die,
     {{"UTF8_STRING", "kept"}, {"text/html", "<b>"}},
     "kept",
     policyWith(&Policy::byteBudget, 4)},
    {"no pictures",
     die,
     {{"image/png", "p"}, {"text/html", "<img>"}},
     {},
     policyWith(&Policy::images, false)},
    {"no pictures but text",
     die,
     {{"UTF8_STRING", "kept"}, {"image/png", "p"}},
     "kept",
     policyWith(&Policy::images, false)},
    {"no files", die, {{"text/uri-list", "file:///a\r\n"}}, {}, policyWith(&Policy::files, false)},
    {"ignored application",
     saveInVainAndDie,
     {{"UTF8_STRING", "t"}},
     {},
     policyWith(&Policy::ignoredApplications, {QStringLiteral("Vault")})},
};

} // namespace

TEST_F(KeepTest, OnlyWhatMayOutliveItsProgramDoes)
{
    for (const Farewell &way : farewells) {
        SCOPED_TRACE(way.name);
        Owner owner;
        owner.beInFront("Vault");
        pasteboard->setPolicy(way.policy);
        for (const auto &[target, bytes] : way.forms)
            owner.offer(target, bytes);
        copy(owner);
        const auto published = items();
        const qint64 before = pasteboard->changeCount();

        way.leave(owner);
        EXPECT_EQ(left(way.forms.front().first), way.left);
        EXPECT_EQ(holder() != XCB_WINDOW_NONE, way.left.has_value());
        EXPECT_EQ(pasteboard->changeCount(), before + way.changes);
        EXPECT_EQ(items(), way.changes == 0 ? published : std::vector<PasteboardItem>());
        pasteboard->write({}); // what was taken over is no owner of the next round
        settle();
    }
}

TEST_F(KeepTest, WhatIsMissingIsReadBeforeItsProgramIsToldThatAllIsSaved)
{
    Owner owner;
    owner.offer("UTF8_STRING", "text")
        .offer("x/slow", {"slow", Form::Manner::ignore})
        .offer("x/vain", "vain");
    copy(owner);
    owner.forgetOffers();
    owner.offer("UTF8_STRING", "text").offer("x/slow", "slow");
    owner.asked.clear();
    const qint64 before = pasteboard->changeCount();
    EXPECT_TRUE(owner.save({"x/slow"}));
    EXPECT_EQ(owner.asked, QByteArrayList{"x/slow"});
    owner.die();
    EXPECT_EQ(left("x/slow"), QByteArray("slow"));
    EXPECT_EQ(pasteboard->changeCount(), before);
    EXPECT_EQ(bytes(u"x/slow"), QByteArray("slow")) << "the snapshot has grown";
}

TEST_F(KeepTest, AHungOwnerThatComesBackToSaveIsReadThenAndOneThatHangsAgainIsRefused)
{
    Owner late;
    late.offer("UTF8_STRING", "late");
    late.hangs = true;
    copy(late);
    late.hangs = false;
    saveAndDie(late);
    EXPECT_EQ(left("UTF8_STRING"), QByteArray("late"));
    EXPECT_EQ(text(), QByteArray("late"));

    Owner hung;
    hung.offer("UTF8_STRING", {"t", Form::Manner::ignore});
    copy(hung);
    EXPECT_FALSE(hung.save());
    Owner stranger; // owns nothing, and can save nothing
    EXPECT_FALSE(stranger.save());
}

TEST_F(KeepTest, WhoIsFasterThanWeIsNotRobbedOfItsCopy)
{
    for (int round = 0; round < 30; ++round) {
        Owner dying;
        dying.offer("UTF8_STRING", "dying");
        copy(dying);
        Owner next;
        next.offer("UTF8_STRING", "next");
        dying.die();
        next.claim();
        ASSERT_EQ(left("UTF8_STRING"), QByteArray("next"));
        ASSERT_EQ(text(), QByteArray("next"));
    }
}

TEST_F(KeepTest, ATakenOverCopyIsClearedAsAnyOther)
{
    Owner owner;
    owner.offer("UTF8_STRING", "kept");
    copy(owner);
    const qint64 before = pasteboard->changeCount();
    saveAndDie(owner);
    EXPECT_EQ(left("UTF8_STRING"), QByteArray("kept"));
    Owner().letGo(); // within the second that the program had for it
    EXPECT_EQ(left("UTF8_STRING"), std::nullopt);
    EXPECT_EQ(pasteboard->changeCount(), before + 1);
    EXPECT_TRUE(items().empty());
}

TEST_F(KeepTest, TheRoleOfTheManagerIsTakenOnlyWhenItIsFree)
{
    EXPECT_EQ(requestor.targets("CLIPBOARD_MANAGER"),
              (QByteArrayList{"TIMESTAMP", "TARGETS", "MULTIPLE", "SAVE_TARGETS"}));
    pasteboard.reset();
    Owner manager;
    manager.claim("CLIPBOARD_MANAGER");
    pasteboard = makePasteboard();
    settle();
    EXPECT_EQ(requestor.holderOf("CLIPBOARD_MANAGER"), manager.window());

    Owner kept; // the other one has its chance, and lets it pass
    kept.offer("UTF8_STRING", "kept");
    copy(kept);
    kept.die();
    EXPECT_EQ(left("UTF8_STRING"), QByteArray("kept"));

    Owner next;
    next.offer("UTF8_STRING", "theirs");
    copy(next);
    manager.offer("UTF8_STRING", "theirs");
    next.die();
    manager.claim();
    EXPECT_EQ(left("UTF8_STRING"), QByteArray("theirs"));
    EXPECT_EQ(holder(), manager.window());

    copier = manager.window();
    manager.die();
    ASSERT_TRUE(await([&] { return holder() != copier; }));
    ASSERT_TRUE(await([&] { return requestor.holderOf("CLIPBOARD_MANAGER") != XCB_WINDOW_NONE; }));
    EXPECT_EQ(left("UTF8_STRING"), QByteArray("theirs"));
}

// pcmanfm lets go of what was cut as soon as anybody reads it, before or after its answer.
class LetGoTest : public KeepTest {
protected:
    // Copies, and lets go while the files are read: after they were told, or as soon as they are asked for.
    void copyAndLetGo(const QByteArray &copiedFiles, bool early = false)
    {
        owner.offer("x-special/gnome-copied-files", copiedFiles)
            .offer("text/uri-list", "file:///a\r\nfile:///b");
        if (early) {
            owner.beforeAnswering = [this] { // of the addresses
                owner.beforeAnswering = [this] { owner.letGo(); };
            };
        } else {
            owner.afterAnswering = [this](const QByteArray &target) {
                if (target == "x-special/gnome-copied-files")
                    owner.letGo();
            };
        }
        before = pasteboard->changeCount();
        copy(owner);
    }

    Owner owner;
    qint64 before = 0;
};

TEST_F(LetGoTest, FilesThatWereCutStayCutThoughReadingThemMadeTheirOwnerLetGo)
{
    const QByteArray cut("cut\nfile:///a\nfile:///b\0", 24);
    for (const bool early : {true, false}) {
        owner.forgetOffers();
        copyAndLetGo(cut, early);
        EXPECT_EQ(left("x-special/gnome-copied-files"), cut);
        EXPECT_EQ(left("application/x-kde-cutselection"), QByteArray("1"));
        EXPECT_EQ(left("text/uri-list"), QByteArray("file:///a\r\nfile:///b"));
        EXPECT_EQ(left("UTF8_STRING"), QByteArray("/a\n/b"));
        EXPECT_EQ(pasteboard->changeCount(), before + 1);
        EXPECT_EQ(items().size(), 2u);

        pasteboard->write(items()); // from the history
        EXPECT_EQ(left("x-special/gnome-copied-files"), QByteArray("copy\nfile:///a\nfile:///b"));
        EXPECT_EQ(left("application/x-kde-cutselection"), QByteArray("0"));
    }
}

// As in pcmanfm, where a paste, but not a look at what was cut, leaves the clipboard empty.
TEST_F(LetGoTest, ACutThatWasHeldAgainstItsOwnersWillIsPastedOnce)
{
    copyAndLetGo("cut\nfile:///a");
    int looks = 0;
    while (left("x-special/gnome-copied-files") == "cut\nfile:///a")
        ++looks;
    EXPECT_GT(looks, 1);
    EXPECT_EQ(pasteboard->changeCount(), before + 2);
    EXPECT_TRUE(items().empty());
    EXPECT_EQ(holder(), xcb_window_t(XCB_WINDOW_NONE));
}

TEST_F(LetGoTest, FilesThatWereCopiedAreNotHeldAgainstTheirOwnersWill)
{
    copyAndLetGo("copy\nfile:///a");
    EXPECT_EQ(left("text/uri-list"), std::nullopt);
    EXPECT_EQ(pasteboard->changeCount(), before + 2);
}

TEST_F(LetGoTest, ACutThatIsPastedTogetherWithOtherFormsIsPastedOnceToo)
{
    copyAndLetGo("cut\nfile:///a");
    ASSERT_TRUE(left("text/uri-list"));
    EXPECT_TRUE(await([&] {
        requestor.put("PAIRS", "ATOM_PAIR", 32,
                      bytesOf({requestor.atom("x-special/gnome-copied-files"), requestor.atom("ONE")}));
        requestor.ask("MULTIPLE", "PAIRS");
        return requestor.awaitNotify() && items().empty();
    }));
}

TEST_F(KeepTest, APictureThatIsStillOnItsWayFollowsWhatWasTakenOver)
{
    const QByteArray bitmap = encoded(filledImage(800, 800, Qt::darkGreen), "bmp");
    Owner owner;
    owner.offer("image/bmp", {bitmap, Form::Manner::incremental});
    copier = owner.window();
    owner.claim();
    ASSERT_TRUE(await([&] { return owner.incrementalEnds == 1; }));
    owner.sync(); // the end of the picture is with the server
    owner.die();
    EXPECT_EQ(QImage::fromData(left("image/png").value_or("")).size(), QSize(800, 800));
    EXPECT_EQ(left("image/bmp"), bitmap);
}

TEST_F(KeepTest, TypesFormatsAndBytesStayAsTheyWere)
{
    struct Expected {
        const char *target;
        QByteArray bytes, type;
        int format;
    };
    const auto expect = [&](const std::vector<Expected> &answers) {
        for (const auto &[target, bytes, type, format] : answers) {
            const auto answer = requestor.convert(target);
            ASSERT_TRUE(answer) << target;
            EXPECT_EQ(answer->bytes, bytes) << target;
            EXPECT_EQ(answer->type, type) << target;
            EXPECT_EQ(answer->format, format) << target;
        }
    };
    const QByteArray units = bytesOf({1, 70000, 3});
    Owner owner;
    owner.offer("x/atoms", {units, Form::Manner::whole, 0, 0, "ATOM", 32})
        .offer("x/shorts", {units, Form::Manner::whole, 0, 0, "INTEGER", 16})
        .offer("text/html", {"<b>", Form::Manner::whole, 0, 0, "STRING"})
        .offer("STRING", {"perch\xC3\xA9", Form::Manner::whole, 0, 0, "STRING"})
        .offer("x/own", "own");
    copy(owner);
    owner.die();
    EXPECT_TRUE(left("x/own"));
    EXPECT_EQ(requestor.targets().sliced(4),
              (QByteArrayList{"x/atoms", "x/shorts", "text/html", "UTF8_STRING", "text/plain;charset=utf-8",
                              "text/plain", "TEXT", "STRING", "x/own"}));
    expect({{"x/atoms", units, "ATOM", 32},
            {"x/shorts", units, "INTEGER", 16},
            {"text/html", "<b>", "STRING", 8},
            {"STRING", "perch\xC3\xA9", "STRING", 8}, // UTF-8 in spite of its name, as it was given
            {"UTF8_STRING", "perch\xC3\xA9", "UTF8_STRING", 8},
            {"x/own", "own", "x/own", 8}});

    write(items()); // from the history, as long as the program runs
    expect({{"x/atoms", units, "ATOM", 32},
            {"x/shorts", units, "INTEGER", 16},
            {"text/html", "<b>", "text/html", 8},
            {"STRING", "perch\xE9", "STRING", 8}});
}
