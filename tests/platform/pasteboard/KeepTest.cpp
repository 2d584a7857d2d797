#include "tests/platform/pasteboard/PasteboardTest.h"

#include <QBuffer>
#include <QImage>

// What becomes of a copy when its program goes.

namespace {

constexpr auto text = PasteboardType::plainText;
using Form = Owner::Form;
using Forms = std::vector<std::pair<const char *, QByteArray>>;

class KeepTest : public PasteboardTest {
protected:
    void copy(Owner &owner)
    {
        const qint64 before = pasteboard->changeCount();
        copier = owner.window();
        owner.claim();
        ASSERT_TRUE(awaitChange(before));
        settle();
    }

    // What another program finds on the clipboard once the one that copied has lost it.
    std::optional<QByteArray> left(const char *target)
    {
        EXPECT_TRUE(await([this] { return !copier || holderOf("CLIPBOARD") != copier; }));
        settle();
        const auto answer = requestor.convert(target);
        return answer ? std::optional(answer->bytes) : std::nullopt;
    }

    xcb_window_t holderOf(const QByteArray &selection)
    {
        const auto cookie = xcb_get_selection_owner(requestor.raw(), requestor.atom(selection));
        auto *reply = xcb_get_selection_owner_reply(requestor.raw(), cookie, nullptr);
        const xcb_window_t holder = reply->owner;
        std::free(reply);
        return holder;
    }

    Requestor requestor;
    xcb_window_t copier = XCB_WINDOW_NONE;
};

template <typename Value>
PasteboardPolicy with(Value PasteboardPolicy::*field, std::type_identity_t<Value> value)
{
    PasteboardPolicy policy;
    policy.*field = std::move(value);
    return policy;
}

struct Farewell {
    const char *name;
    void (*leave)(Owner &owner);
    Forms forms = {{"UTF8_STRING", "kept"}, {"x/own", "own"}};
    PasteboardPolicy policy = {};
    std::optional<QByteArray> left = "kept"; // under the name of the first form
    qint64 changes = 0;
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

const Farewell farewells[] = {
    {"ClientDies", die},
    {"WindowIsDestroyed", [](Owner &owner) { owner.destroyWindow(); }},
    {"SavesAndQuits", saveAndDie},
    {"SavesLetsGoAndQuits",
     [](Owner &owner) {
         EXPECT_TRUE(owner.save({"UTF8_STRING", "x/own"}));
         owner.letGo();
         owner.die();
     }},
    {"LetsGoWithoutSaving", [](Owner &owner) { owner.letGo(); }, {{"UTF8_STRING", "t"}}, {}, {}, 1},
    {"Password", saveInVainAndDie, {{"UTF8_STRING", "t"}, {"x-kde-passwordManagerHint", "secret"}}, {}, {}},
    {"Transient", die, {{"UTF8_STRING", "t"}, {"com.example.TransientPasteboardType", ""}}, {}, {}},
    {"EmptyText", saveInVainAndDie, {{"UTF8_STRING", ""}}, {}, {}},
    {"Paused", saveInVainAndDie, {{"UTF8_STRING", "t"}}, with(&PasteboardPolicy::paused, true), {}},
    {"TextTooLong",
     die,
     {{"UTF8_STRING", "long"}, {"x/own", "o"}},
     with(&PasteboardPolicy::byteBudget, 3),
     {}},
    {"StyleTooLong",
     die,
     {{"UTF8_STRING", "kept"}, {"text/html", "<b>"}},
     with(&PasteboardPolicy::byteBudget, 4)},
    {"NoPictures",
     die,
     {{"image/png", "p"}, {"text/html", "<img>"}},
     with(&PasteboardPolicy::images, false),
     {}},
    {"NoPicturesButText",
     die,
     {{"UTF8_STRING", "kept"}, {"image/png", "p"}},
     with(&PasteboardPolicy::images, false)},
    {"NoFiles", die, {{"text/uri-list", "file:///a\r\n"}}, with(&PasteboardPolicy::files, false), {}},
    {"IgnoredApplication",
     saveInVainAndDie,
     {{"UTF8_STRING", "t"}},
     with(&PasteboardPolicy::ignoredApplications, {QStringLiteral("Vault")}),
     {}},
};

} // namespace

class FarewellTest : public KeepTest, public ::testing::WithParamInterface<Farewell> {};

TEST_P(FarewellTest, OnlyWhatMayOutliveItsProgramDoes)
{
    Owner owner;
    const QByteArray wmClass("vault\0Vault\0", 12); // the program in front
    xcb_change_property(owner.raw(), XCB_PROP_MODE_REPLACE, owner.window(), XCB_ATOM_WM_CLASS,
                        XCB_ATOM_STRING, 8, 12, wmClass.constData());
    xcb_map_window(owner.raw(), owner.window());
    xcb_set_input_focus(owner.raw(), XCB_INPUT_FOCUS_POINTER_ROOT, owner.window(), XCB_CURRENT_TIME);
    owner.sync();
    pasteboard->setPolicy(GetParam().policy);
    for (const auto &[target, bytes] : GetParam().forms)
        owner.offer(target, bytes);
    copy(owner);
    const auto published = items();
    const qint64 before = pasteboard->changeCount();

    GetParam().leave(owner);
    EXPECT_EQ(left(GetParam().forms.front().first), GetParam().left);
    EXPECT_EQ(holderOf("CLIPBOARD") != XCB_WINDOW_NONE, GetParam().left.has_value());
    EXPECT_EQ(pasteboard->changeCount(), before + GetParam().changes);
    EXPECT_EQ(items(), GetParam().changes == 0 ? published : std::vector<PasteboardItem>());
}

INSTANTIATE_TEST_SUITE_P(Ways, FarewellTest, ::testing::ValuesIn(farewells),
                         [](const auto &way) { return way.param.name; });

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
    EXPECT_EQ(bytes(u"x/slow"), QByteArray("slow")); // the snapshot has grown
}

TEST_F(KeepTest, AHungOwnerThatComesBackToSaveIsReadThen)
{
    Owner owner;
    owner.offer("UTF8_STRING", "late");
    owner.hangs = true;
    copy(owner);
    owner.hangs = false;
    EXPECT_TRUE(owner.save());
    owner.die();
    EXPECT_EQ(left("UTF8_STRING"), QByteArray("late"));
    EXPECT_EQ(bytes(text), QByteArray("late"));
}

TEST_F(KeepTest, OneThatHangsAgainWhileItSavesIsRefusedWithinTwoSeconds)
{
    Owner owner;
    owner.offer("UTF8_STRING", {"t", Form::Manner::ignore});
    copy(owner);
    EXPECT_FALSE(owner.save());
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
        ASSERT_EQ(bytes(text), QByteArray("next"));
    }
}

TEST_F(KeepTest, ATakenOverCopyIsClearedAndReplacedAsAnyOther)
{
    Owner owner;
    owner.offer("UTF8_STRING", "kept");
    copy(owner);
    const qint64 before = pasteboard->changeCount();
    saveAndDie(owner);
    EXPECT_EQ(left("UTF8_STRING"), QByteArray("kept"));
    Owner clearer;
    clearer.letGo(); // within the second that the program had for it
    EXPECT_EQ(left("UTF8_STRING"), std::nullopt);
    EXPECT_EQ(pasteboard->changeCount(), before + 1);
    EXPECT_TRUE(items().empty());
}

TEST_F(KeepTest, TheRoleOfTheManagerIsTakenOnlyWhenItIsFree)
{
    EXPECT_NE(holderOf("CLIPBOARD_MANAGER"), xcb_window_t(XCB_WINDOW_NONE));
    EXPECT_EQ(requestor.targets("CLIPBOARD_MANAGER"),
              (QByteArrayList{"TIMESTAMP", "TARGETS", "MULTIPLE", "SAVE_TARGETS"}));
    pasteboard.reset();
    Owner manager;
    manager.claim("CLIPBOARD_MANAGER");
    pasteboard = X11Pasteboard::create(std::make_shared<ClassNames>());
    settle();
    EXPECT_EQ(holderOf("CLIPBOARD_MANAGER"), manager.window());

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
    EXPECT_EQ(holderOf("CLIPBOARD"), manager.window());

    copier = manager.window();
    manager.die();
    ASSERT_TRUE(await([&] { return holderOf("CLIPBOARD") != copier; }));
    ASSERT_TRUE(await([&] { return holderOf("CLIPBOARD_MANAGER") != XCB_WINDOW_NONE; }));
    EXPECT_EQ(left("UTF8_STRING"), QByteArray("theirs"));
}

// pcmanfm lets go of what was cut as soon as anybody reads it, before or after its answer.
TEST_F(KeepTest, FilesThatWereCutStayCutThoughReadingThemMadeTheirOwnerLetGo)
{
    const QByteArray cut("cut\nfile:///a\nfile:///b\0", 24);
    for (const bool early : {true, false}) {
        Owner owner;
        owner.offer("text/uri-list", "file:///a\r\nfile:///b")
            .offer("x-special/gnome-copied-files", cut)
            .offer("UTF8_STRING", "/a\n/b");
        if (early)
            owner.beforeAnswering = [&] { // of the addresses
                owner.beforeAnswering = [&] { owner.letGo(); };
            };
        else
            owner.afterAnswering = [&](const QByteArray &target) {
                if (target == "x-special/gnome-copied-files")
                    owner.letGo();
            };
        const qint64 before = pasteboard->changeCount();
        copy(owner);
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
TEST_F(KeepTest, ACutThatWasHeldAgainstItsOwnersWillIsPastedOnce)
{
    Owner owner;
    owner.offer("x-special/gnome-copied-files", "cut\nfile:///a").offer("text/uri-list", "file:///a");
    owner.afterAnswering = [&](const QByteArray &target) {
        if (target == "x-special/gnome-copied-files")
            owner.letGo();
    };
    copy(owner);
    const qint64 before = pasteboard->changeCount();
    int looks = 0;
    while (left("x-special/gnome-copied-files") == "cut\nfile:///a")
        ++looks;
    EXPECT_GT(looks, 1);
    EXPECT_EQ(pasteboard->changeCount(), before + 1);
    EXPECT_TRUE(items().empty());
    EXPECT_EQ(holderOf("CLIPBOARD"), xcb_window_t(XCB_WINDOW_NONE));
}

TEST_F(KeepTest, ACutThatIsPastedTogetherWithOtherFormsIsPastedOnceToo)
{
    Owner owner;
    owner.offer("x-special/gnome-copied-files", "cut\nfile:///a").offer("text/uri-list", "file:///a");
    owner.afterAnswering = [&](const QByteArray &target) {
        if (target == "x-special/gnome-copied-files")
            owner.letGo();
    };
    copy(owner);
    ASSERT_TRUE(left("text/uri-list"));
    const xcb_atom_t pairs[] = {requestor.atom("x-special/gnome-copied-files"), requestor.atom("ONE")};
    EXPECT_TRUE(await([&] {
        xcb_change_property(requestor.raw(), XCB_PROP_MODE_REPLACE, requestor.window(),
                            requestor.atom("PAIRS"), requestor.atom("ATOM_PAIR"), 32, 2, pairs);
        requestor.ask("MULTIPLE", "PAIRS");
        return requestor.awaitNotify() && items().empty();
    }));
}

TEST_F(KeepTest, APictureThatIsStillOnItsWayFollowsWhatWasTakenOver)
{
    QImage image(800, 800, QImage::Format_RGB32);
    image.fill(Qt::darkGreen);
    QByteArray bitmap;
    QBuffer buffer(&bitmap);
    image.save(&buffer, "bmp");
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

TEST_F(KeepTest, FilesThatWereCopiedAreNotHeldAgainstTheirOwnersWill)
{
    Owner owner;
    owner.offer("x-special/gnome-copied-files", "copy\nfile:///a").offer("text/uri-list", "file:///a");
    owner.afterAnswering = [&](const QByteArray &target) {
        if (target == "x-special/gnome-copied-files")
            owner.letGo();
    };
    const qint64 before = pasteboard->changeCount();
    owner.claim();
    ASSERT_TRUE(awaitChange(before));
    EXPECT_EQ(left("text/uri-list"), std::nullopt);
    EXPECT_EQ(pasteboard->changeCount(), before + 2);
}

TEST_F(KeepTest, TypesFormatsAndBytesStayAsTheyWere)
{
    const quint32 numbers[] = {1, 70000, 3};
    const QByteArray units(reinterpret_cast<const char *>(numbers), sizeof numbers);
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
    expect({{"x/atoms", units, "ATOM", 32},
            {"x/shorts", units, "INTEGER", 16},
            {"text/html", "<b>", "STRING", 8},
            {"STRING", "perch\xC3\xA9", "STRING", 8}, // UTF-8 in spite of its name, as it was given
            {"UTF8_STRING", "perch\xC3\xA9", "UTF8_STRING", 8},
            {"x/own", "own", "x/own", 8}});

    pasteboard->write(items()); // from the history, as long as the program runs
    settle();
    expect({{"x/atoms", units, "ATOM", 32},
            {"x/shorts", units, "INTEGER", 16},
            {"text/html", "<b>", "text/html", 8},
            {"STRING", "perch\xE9", "STRING", 8}});
}
