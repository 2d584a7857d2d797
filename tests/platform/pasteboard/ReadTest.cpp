#include "tests/platform/pasteboard/PasteboardTest.h"

#include <QElapsedTimer>

// What is made of other programs' content, well-behaved or not, and what the policy keeps from being fetched.

namespace {

using Form = Owner::Form;
using Manner = Form::Manner;

class ReadTest : public PasteboardTest {};

struct Reading {
    const char *name;
    std::vector<std::pair<QByteArray, Form>> offers;
    QByteArrayList forms; // of the first item: "type=bytes", or "type" where nothing was read
    std::optional<QByteArrayList> asked = {}; // absent: all that is listed
    PasteboardPolicy policy = {};
};

const Reading readings[] = {
    {"InTheOwnersOrderAskedForByValue",
     {{"x/own", {"own"}}, {"text/html", {"<b>c</b>"}}, {"UTF8_STRING", {"ciao \xF0\x9F\x98\x80\r\nmondo"}}},
     {"x/own=own", "public.html=<b>c</b>", "public.utf8-plain-text=ciao \xF0\x9F\x98\x80\r\nmondo"},
     QByteArrayList{"TARGETS", "UTF8_STRING", "text/html", "x/own"}},
    {"NeverWhatHasSideEffects",
     {{"DELETE", {"boom"}}, {"GTK_TEXT_BUFFER_CONTENTS", {"boom"}}, {"UTF8_STRING", {"safe"}}},
     {"public.utf8-plain-text=safe"},
     QByteArrayList{"TARGETS", "UTF8_STRING"}},
    {"RefusedEmptyAndTypeless",
     {{"UTF8_STRING", {"", Manner::refuse}},
      {"STRING", {"perch\xE9"}},
      {"text/html", {"x", Manner::noType}},
      {"x/refused", {"", Manner::refuse}},
      {"x/empty", {""}},
      {"x/emptyInChunks", {"", Manner::incremental}}},
     {"public.utf8-plain-text=perch\xC3\xA9", "x/empty=", "x/emptyInChunks="}},
    {"TextWhereThereIsNoList",
     {{"TARGETS", {"", Manner::refuse}}, {"STRING", {"old"}}},
     {"public.utf8-plain-text=old"},
     QByteArrayList{"TARGETS", "UTF8_STRING", "STRING"}},
    {"NoPassword",
     {{"text/plain", {"hunter2"}}, {"UTF8_STRING", {"hunter2"}}, {"x-kde-passwordManagerHint", {"secret"}}},
     {"public.utf8-plain-text", "org.nspasteboard.ConcealedType"},
     QByteArrayList{"TARGETS"}},
    {"MarksByTheirName",
     {{"UTF8_STRING", {"t"}}, {"com.example.TransientPasteboardType", {"", Manner::refuse}}},
     {"public.utf8-plain-text=t", "com.example.TransientPasteboardType"},
     QByteArrayList{"TARGETS", "UTF8_STRING"}},
    {"NoDerivedPictures",
     {{"image/bmp", {"b"}}, {"image/png", {"png"}}, {"image/tiff", {"t"}}, {"image/x-xcf", {"x"}}},
     {"public.png=png", "image/x-xcf=x"},
     QByteArrayList{"TARGETS", "image/png", "image/x-xcf"}},
    {"ThePictureThatItsOwnerCanRender",
     {{"image/png", {""}}, {"image/tiff", {"tiff"}}, {"image/bmp", {"bmp"}}},
     {"public.tiff=tiff"},
     QByteArrayList{"TARGETS", "image/png", "image/tiff"}},
    {"NoPicturesOfStyledText",
     {{"image/png", {"png"}}, {"text/html", {"<td>"}}, {"UTF8_STRING", {"1\t2"}}},
     {"public.html=<td>", "public.utf8-plain-text=1\t2"},
     QByteArrayList{"TARGETS", "UTF8_STRING", "text/html"}},
    {"NothingWhilePaused",
     {{"UTF8_STRING", {"unseen"}}},
     {},
     QByteArrayList{},
     policyWith(&PasteboardPolicy::paused, true)},
    {"NoLonelyPicturesWhereUnwanted",
     {{"text/html", {"<img>"}}, {"image/png", {"png"}}, {"image/x-xcf", {"xcf"}}},
     {"public.html=<img>", "public.png", "image/x-xcf"},
     QByteArrayList{"TARGETS", "text/html"},
     policyWith(&PasteboardPolicy::images, false)},
    {"PicturesBesideTextAllTheSame",
     {{"UTF8_STRING", {"caption"}}, {"image/png", {"png"}}},
     {"public.utf8-plain-text=caption", "public.png=png"},
     {},
     policyWith(&PasteboardPolicy::images, false)},
    {"OfUnwantedFilesTheirListOnly",
     {{"text/uri-list", {"file:///a\r\n"}}, {"UTF8_STRING", {"/a"}}, {"x/more", {"more"}}},
     {"public.file-url=file:///a", "public.utf8-plain-text", "x/more"},
     QByteArrayList{"TARGETS", "text/uri-list"},
     policyWith(&PasteboardPolicy::files, false)},
    {"OfAnIgnoredApplicationTheListOnly",
     {{"UTF8_STRING", {"secret"}}},
     {"public.utf8-plain-text"},
     QByteArrayList{"TARGETS"},
     policyWith(&PasteboardPolicy::ignoredApplications, {QStringLiteral("Vault")})},
};

} // namespace

TEST_F(ReadTest, EveryFormIsFetchedOrLeft)
{
    for (const auto &[name, offers, forms, asked, policy] : readings) {
        SCOPED_TRACE(name);
        Owner owner;
        owner.beInFront("Vault");
        pasteboard->setPolicy(policy);
        QByteArrayList all{"TARGETS"};
        for (const auto &[target, form] : offers) {
            owner.offer(target, form);
            all.push_back(target);
        }
        const qint64 before = pasteboard->changeCount();
        copy(owner);
        EXPECT_EQ(pasteboard->changeCount(), before + 1);
        QByteArrayList read;
        for (const QString &type : types())
            read.push_back(bytes(type) ? QByteArray(type.toUtf8() + '=' + *bytes(type)) : type.toUtf8());
        EXPECT_EQ(read.join(" | ").toStdString(), forms.join(" | ").toStdString());
        EXPECT_EQ(owner.asked.join(" | ").toStdString(), asked.value_or(all).join(" | ").toStdString());
        EXPECT_EQ(pasteboard->snapshot()->frontApplication->bundleIdentifier, QStringLiteral("Vault"));
    }
}

TEST_F(ReadTest, TextForOurOwnFieldsIsFetchedWhateverThePolicyLeft)
{
    for (const auto &policy :
         {policyWith(&PasteboardPolicy::byteBudget, 1000), policyWith(&PasteboardPolicy::paused, true)}) {
        pasteboard->setPolicy(policy);
        Owner owner;
        owner.offer("UTF8_STRING", pattern(5000));
        copy(owner);
        EXPECT_EQ(text(), std::nullopt);
        EXPECT_EQ(readText().toUtf8(), pattern(5000));
        owner.hangs = true;
        EXPECT_EQ(readText(), QString());
    }
    settle();
    pasteboard->write({textItem("primo"), textItem("secondo")});
    bool called = false; // our own is there at once
    pasteboard->readText([&](const QString &read) { called = read == QStringLiteral("primo\nsecondo"); });
    EXPECT_TRUE(called);
}

TEST_F(ReadTest, OfAnEndlessListTheFirstThousandAreConsidered)
{
    Owner owner;
    owner.offer("UTF8_STRING", "first");
    for (int i = 0; i < 3000; ++i)
        owner.offer("x/" + QByteArray::number(i), "");
    copy(owner);
    EXPECT_EQ(text(), QByteArray("first"));
    EXPECT_GT(owner.asked.size(), 1000);
    EXPECT_LE(owner.asked.size(), 1024);
}

TEST_F(ReadTest, LongContentComesInChunksWhateverWasAnnounced)
{
    for (const quint32 announced : {0u, 7u, 0xffffffffu}) {
        const QByteArray content = pattern(3'000'001);
        Owner owner;
        owner.offer("UTF8_STRING", {content, Manner::incremental, 65536, announced})
            .offer("x/after", "after");
        copy(owner);
        EXPECT_EQ(text(), content) << announced;
        EXPECT_EQ(bytes(u"x/after"), QByteArray("after"));
        EXPECT_EQ(owner.incrementalEnds, 1);
    }
}

TEST_F(ReadTest, WhatExceedsTheBudgetIsTakenToItsEndAndDropped)
{
    pasteboard->setPolicy(policyWith(&PasteboardPolicy::byteBudget, 100'000));
    Owner owner;
    owner.offer("x/whole", pattern(90'000))
        .offer("UTF8_STRING", pattern(60'000))
        .offer("text/html", {pattern(3'000'000), Manner::incremental})
        .offer("x/fits", pattern(40'000));
    copy(owner);
    EXPECT_EQ(types(), (QStringList{"x/whole", "public.utf8-plain-text", "public.html", "x/fits"}));
    EXPECT_EQ(text(), pattern(60'000));
    EXPECT_EQ(bytes(u"public.html"), std::nullopt);
    EXPECT_EQ(bytes(u"x/whole"), std::nullopt);
    EXPECT_EQ(bytes(u"x/fits"), pattern(40'000));
    EXPECT_EQ(owner.incrementalEnds, 1);
}

TEST_F(ReadTest, AnOwnerThatDiesOrStallsInAFormCostsThatFormOnly)
{
    Owner dying;
    dying.offer("UTF8_STRING", "complete")
        .offer("text/html", {"", Manner::dieAfterHeader, 0, 100'000})
        .offer("x/never", "never");
    QElapsedTimer time;
    time.start();
    copy(dying);
    EXPECT_LT(time.elapsed(), 900) << "noticed by its death, not by the second that a chunk may take";
    EXPECT_EQ(text(), QByteArray("complete"));
    EXPECT_EQ(types(), (QStringList{"public.utf8-plain-text", "public.html", "x/never"}));
    EXPECT_EQ(bytes(u"public.html"), std::nullopt);

    Owner stalling;
    stalling.offer("UTF8_STRING", {"", Manner::stallAfterHeader, 0, 100'000}).offer("text/html", "<i>");
    copy(stalling);
    EXPECT_EQ(text(), std::nullopt);
    EXPECT_EQ(bytes(u"public.html"), QByteArray("<i>"));
}

TEST_F(ReadTest, AHungOwnerCountsAtOnceAndIsReadWhenItComesBack)
{
    Owner owner;
    owner.offer("UTF8_STRING", "late");
    owner.hangs = true;
    const qint64 before = pasteboard->changeCount();
    owner.claim();
    ASSERT_TRUE(awaitChange(before));
    EXPECT_EQ(pasteboard->changeCount(), before + 1);
    EXPECT_TRUE(items().empty());
    owner.hangs = false; // what was asked stays unanswered
    ASSERT_TRUE(awaitChange(before + 1, 8000));
    EXPECT_EQ(pasteboard->changeCount(), before + 2);
    EXPECT_EQ(text(), QByteArray("late"));
}

TEST_F(ReadTest, ANewCopyEndsTheReadOfAHungOwnerThatIsTakenToItsEndLater)
{
    Owner hung;
    hung.offer("UTF8_STRING", {pattern(500'000), Manner::incremental});
    hung.beforeAnswering = [&] { hung.hangs = true; };
    const qint64 before = pasteboard->changeCount();
    hung.claim();
    ASSERT_TRUE(await([&] { return hung.wasAskedFor("UTF8_STRING"); }));
    Owner next;
    next.offer("UTF8_STRING", pattern(300'000));
    QElapsedTimer time;
    time.start();
    copy(next);
    EXPECT_LT(time.elapsed(), 1500) << "not the two seconds that a form may take";
    EXPECT_EQ(pasteboard->changeCount(), before + 2);
    EXPECT_EQ(hung.incrementalEnds, 0);
    hung.comeBack();
    EXPECT_TRUE(await([&] { return hung.incrementalEnds == 1; }));
    EXPECT_EQ(text(), pattern(300'000));
}

TEST_F(ReadTest, FilesAreOneItemEachAndTheListBelongsToTheFirst)
{
    const QByteArray cut = "cut\nfile:///a%20b\nfile:///c";
    Owner owner;
    owner.offer("text/uri-list", QByteArray("file:///a%20b\r\nfile:///c\0", 25))
        .offer("x-special/gnome-copied-files", cut)
        .offer("UTF8_STRING", "/a b\n/c");
    copy(owner);
    ASSERT_EQ(items().size(), 2u);
    EXPECT_EQ(items()[0].data(u"public.file-url"), QByteArray("file:///a%20b"));
    EXPECT_EQ(items()[1].data(u"public.file-url"), QByteArray("file:///c"));
    EXPECT_EQ(text(), QByteArray("/a b\n/c"));
    EXPECT_EQ(bytes(u"x-special/gnome-copied-files"), cut);
    EXPECT_EQ(owner.asked,
              (QByteArrayList{"TARGETS", "text/uri-list", "x-special/gnome-copied-files", "UTF8_STRING"}));
}

// Virtual machines and remote desktops have nothing but bitmaps.
TEST_F(ReadTest, ALonelyPictureOfAnotherKindIsOfferedAsPngToo)
{
    const QImage green = filledImage(40, 30, Qt::darkGreen);
    Owner owner;
    for (const auto &[target, format] :
         {std::pair("image/bmp", "bmp"), std::pair("image/x-MS-bmp", "bmp"), std::pair("image/webp", "webp"),
          std::pair("image/x-xpixmap", "xpm")}) {
        owner.forgetOffers();
        owner.offer(target, encoded(green, format));
        copy(owner);
        EXPECT_EQ(types(), (QStringList{target, "public.png"}));
        const QColor color = QImage::fromData(bytes(u"public.png").value_or("")).pixelColor(3, 3);
        EXPECT_NEAR(color.green(), 128, 3) << target;
    }
    owner.forgetOffers();
    owner.offer("image/bmp", "no picture");
    copy(owner);
    EXPECT_EQ(types(), QStringList{"image/bmp"});
}

// 20,000 x 10 cells of LibreOffice, with its sizes and what rendering each of them costs it.
TEST_F(ReadTest, ALargeSheetCostsItsProgramTwoSecondsAtMostAndNoPicture)
{
    struct Rendering {
        QByteArray target;
        qsizetype size;
        int milliseconds;
    };
    const Rendering renderings[] = {
        {"application/x-openoffice-embed-source-xml;windows_formatname=\"Star Embed Source (XML)\"",
         2'800'000, 640},
        {"text/rtf", 10'500'000, 190},
        {"text/richtext", 10'500'000, 130},
        {"text/html", 17'000'000, 610},
        {"text/plain;charset=utf-16", 7'200'000, 70},
        {"application/x-openoffice-objectdescriptor-xml;windows_formatname=\"Star Object Descriptor (XML)\"",
         200, 3},
        {"application/x-openoffice-gdimetafile;windows_formatname=\"GDIMetaFile\"", 30'000, 100},
        {"application/x-openoffice-wmf;windows_formatname=\"Image WMF\"", 30'000, 100},
        {"image/png", 0, 2270},
        {"application/x-openoffice-bitmap;windows_formatname=\"Bitmap\"", 0, 170},
        {"image/bmp", 0, 170},
        {"application/x-openoffice-sylk;windows_formatname=\"Sylk\"", 8'000'000, 120},
        {"application/x-libreoffice-tsvc", 3'600'000, 70},
        {"application/x-openoffice-link;windows_formatname=\"Link\"", 100, 600},
        {"text/plain;charset=utf-8", 3'600'000, 73},
        {"UTF8_STRING", 3'600'000, 73},
        {"application/x-libreoffice-internal-id-4711", 2'800'000, 820},
    };
    Owner owner;
    for (const auto &[target, size, cost] : renderings)
        owner.offer(target, {pattern(size), size > 262'144 ? Manner::incremental : Manner::whole, 262'144});
    copy(owner);
    int spent = 0;
    for (const auto &[target, size, cost] : renderings)
        spent += static_cast<int>(owner.asked.count(target)) * cost;
    EXPECT_LE(spent, 2000) << owner.asked.join(' ').constData();
    EXPECT_FALSE(owner.wasAskedFor("image/png") || owner.wasAskedFor("image/bmp"));
    EXPECT_EQ(text(), pattern(3'600'000));
    EXPECT_EQ(bytes(PasteboardType::html), pattern(17'000'000));
    EXPECT_EQ(bytes(PasteboardType::rtf), pattern(10'500'000));
}

// As xsel does with a long text.
TEST_F(ReadTest, AnAnswerMayNameAnotherTargetAndComeTwice)
{
    Owner owner;
    owner.offer("TEXT", {pattern(50'000), Manner::incremental, 4000, 0, "STRING", 8, "STRING"});
    copy(owner);
    EXPECT_EQ(text(), pattern(50'000));
    owner.notifyAgain();
    Owner next;
    next.offer("UTF8_STRING", "next").offer("x/more", "more");
    copy(next);
    EXPECT_EQ(text(), QByteArray("next"));
    EXPECT_EQ(bytes(u"x/more"), QByteArray("more"));
}

TEST_F(ReadTest, TheNamesOfManyReadsDoNotMix)
{
    Owner owner; // more conversions than there are property names
    for (int i = 0; i < 150; ++i)
        owner.offer("x/" + QByteArray::number(i),
                    {QByteArray::number(i), i % 7 ? Manner::whole : Manner::incremental});
    copy(owner);
    for (int i = 0; i < 150; ++i)
        EXPECT_EQ(bytes(QString(u"x/" + QString::number(i))), QByteArray::number(i));
}
