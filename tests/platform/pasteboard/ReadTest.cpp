#include "tests/platform/pasteboard/PasteboardTest.h"

#include <QBuffer>
#include <QElapsedTimer>
#include <QImage>

// What is made of other programs' content, well-behaved or not.

namespace {

using Manner = Owner::Form::Manner;

constexpr auto text = PasteboardType::plainText;

class ReadTest : public PasteboardTest {
protected:
    // Claims and waits for what comes of it.
    void copy(Owner &owner, int milliseconds = 3000)
    {
        const qint64 before = pasteboard->changeCount();
        owner.claim();
        EXPECT_TRUE(awaitChange(before, milliseconds));
        settle();
    }
};

QByteArray picture(const char *format)
{
    QImage image(40, 30, QImage::Format_RGB32);
    image.fill(Qt::darkGreen);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    image.save(&buffer, format);
    return bytes;
}

} // namespace

TEST_F(ReadTest, FormsComeInTheOwnersOrderAndAreAskedForByValue)
{
    Owner owner;
    owner.offer("x/own", "own")
        .offer("text/html", "<b>c</b>")
        .offer("UTF8_STRING", "ciao \xF0\x9F\x98\x80\r\nmondo");
    copy(owner);
    EXPECT_EQ(types(), (QStringList{"x/own", "public.html", "public.utf8-plain-text"}));
    EXPECT_EQ(bytes(text), QByteArray("ciao \xF0\x9F\x98\x80\r\nmondo"));
    EXPECT_EQ(bytes(u"x/own"), QByteArray("own"));
    EXPECT_EQ(owner.asked, (QByteArrayList{"TARGETS", "UTF8_STRING", "text/html", "x/own"}));
}

TEST_F(ReadTest, WhatHasSideEffectsIsNeverConverted)
{
    Owner owner;
    for (const char *dangerous : {"DELETE", "SAVE_TARGETS", "INSERT_SELECTION", "GTK_TEXT_BUFFER_CONTENTS",
                                  "application/x-openoffice-link;windows_formatname=\"Link\""})
        owner.offer(dangerous, "boom");
    owner.offer("UTF8_STRING", "safe");
    copy(owner);
    EXPECT_EQ(owner.asked, (QByteArrayList{"TARGETS", "UTF8_STRING"}));
    EXPECT_EQ(types(), QStringList{"public.utf8-plain-text"});
}

TEST_F(ReadTest, RefusedEmptyAndTypelessAnswers)
{
    Owner owner;
    owner.offer("UTF8_STRING", {"", Manner::refuse})
        .offer("STRING", "perch\xE9")
        .offer("text/html", {"x", Manner::noType})
        .offer("x/refused", {"", Manner::refuse})
        .offer("x/empty", "");
    copy(owner);
    EXPECT_EQ(types(), (QStringList{"public.utf8-plain-text", "x/empty"}));
    EXPECT_EQ(bytes(text), QByteArray("perch\xC3\xA9"));
    EXPECT_EQ(bytes(u"x/empty"), QByteArray(""));
}

TEST_F(ReadTest, AnOwnerWithoutAListIsAskedForText)
{
    Owner owner;
    owner.listsTargets = false;
    owner.offer("STRING", "old");
    copy(owner);
    EXPECT_EQ(bytes(text), QByteArray("old"));
}

TEST_F(ReadTest, OfAnEndlessListTheFirstThousandAreConsidered)
{
    Owner owner;
    owner.offer("UTF8_STRING", "first");
    for (int i = 0; i < 3000; ++i)
        owner.offer("X" + QByteArray::number(i), "");
    copy(owner);
    EXPECT_EQ(types(), QStringList{"public.utf8-plain-text"});
    EXPECT_EQ(bytes(text), QByteArray("first"));
}

TEST_F(ReadTest, LongContentComesInChunksWhateverWasAnnounced)
{
    for (const quint32 announced : {0u, 7u, 0xffffffffu}) {
        const QByteArray content = pattern(3'000'001);
        Owner owner;
        owner.offer("UTF8_STRING", {content, Manner::incremental, 65536, announced})
            .offer("x/after", "after");
        copy(owner);
        EXPECT_EQ(bytes(text), content) << announced;
        EXPECT_EQ(bytes(u"x/after"), QByteArray("after"));
        EXPECT_EQ(owner.incrementalEnds, 1);
    }
}

TEST_F(ReadTest, AnEmptyTransferInChunksIsEmptyContent)
{
    Owner owner;
    owner.offer("x/empty", {"", Manner::incremental});
    copy(owner);
    EXPECT_EQ(bytes(u"x/empty"), QByteArray(""));
}

TEST_F(ReadTest, WhatExceedsTheBudgetIsTakenToItsEndAndDropped)
{
    setPolicy(&PasteboardPolicy::byteBudget, 100'000);
    Owner owner;
    owner.offer("x/whole", pattern(90'000))
        .offer("UTF8_STRING", pattern(60'000))
        .offer("text/html", {pattern(3'000'000), Manner::incremental, 65536, 0})
        .offer("x/fits", pattern(40'000));
    copy(owner);
    EXPECT_EQ(types(), (QStringList{"x/whole", "public.utf8-plain-text", "public.html", "x/fits"}));
    EXPECT_EQ(bytes(text), pattern(60'000));
    EXPECT_EQ(bytes(u"public.html"), std::nullopt);
    EXPECT_EQ(bytes(u"x/whole"), std::nullopt);
    EXPECT_EQ(bytes(u"x/fits"), pattern(40'000));
    EXPECT_EQ(owner.incrementalEnds, 1);
}

TEST_F(ReadTest, AnOwnerThatDiesInTheMiddleLosesOnlyTheUnfinishedForm)
{
    Owner owner;
    owner.offer("UTF8_STRING", "complete")
        .offer("text/html", {"", Manner::dieAfterHeader, 0, 100'000})
        .offer("x/never", "never");
    QElapsedTimer time;
    time.start();
    copy(owner);
    EXPECT_LT(time.elapsed(), 900); // noticed by its death, not by a time limit
    EXPECT_EQ(bytes(text), QByteArray("complete"));
    EXPECT_EQ(types(), (QStringList{"public.utf8-plain-text", "public.html", "x/never"}));
    EXPECT_EQ(bytes(u"public.html"), std::nullopt);
}

TEST_F(ReadTest, AStalledFormCostsItsPatienceAndNotTheOthers)
{
    Owner owner;
    owner.offer("UTF8_STRING", {"", Manner::stallAfterHeader, 0, 100'000}).offer("text/html", "<i>");
    copy(owner);
    EXPECT_EQ(bytes(text), std::nullopt);
    EXPECT_EQ(bytes(u"public.html"), QByteArray("<i>"));
}

TEST_F(ReadTest, AHungOwnerCountsAtOnceAndIsReadWhenItComesBack)
{
    Owner owner;
    owner.offer("UTF8_STRING", "late");
    owner.hangs = true;
    const qint64 before = pasteboard->changeCount();
    QElapsedTimer time;
    time.start();
    owner.claim();
    ASSERT_TRUE(awaitChange(before));
    EXPECT_GT(time.elapsed(), 400);
    EXPECT_EQ(pasteboard->changeCount(), before + 1);
    EXPECT_TRUE(items().empty());
    owner.hangs = false; // what was asked stays unanswered
    ASSERT_TRUE(awaitChange(before + 1, 5000));
    EXPECT_EQ(pasteboard->changeCount(), before + 2);
    EXPECT_EQ(bytes(text), QByteArray("late"));
}

TEST_F(ReadTest, ANewCopyEndsTheReadOfAHungOwnerAtOnce)
{
    Owner hung;
    hung.offer("UTF8_STRING", {"", Manner::ignore});
    Owner next;
    next.offer("UTF8_STRING", "next");
    const qint64 before = pasteboard->changeCount();
    hung.claim();
    ASSERT_TRUE(await([&] { return hung.wasAskedFor("UTF8_STRING"); }));
    QElapsedTimer time;
    time.start();
    copy(next);
    EXPECT_LT(time.elapsed(), 400);
    EXPECT_EQ(bytes(text), QByteArray("next"));
    EXPECT_EQ(pasteboard->changeCount(), before + 2);
}

TEST_F(ReadTest, AnOwnerThatAnswersTooLateIsTakenToItsEndAndMeetsNoOtherRead)
{
    Owner hung;
    hung.offer("UTF8_STRING", {pattern(500'000), Manner::incremental});
    hung.beforeAnswering = [&] { hung.hangs = true; };
    hung.claim();
    ASSERT_TRUE(await([&] { return hung.wasAskedFor("UTF8_STRING"); }));
    EXPECT_EQ(hung.incrementalEnds, 0);
    Owner next;
    next.offer("UTF8_STRING", pattern(300'000));
    copy(next);
    hung.comeBack();
    EXPECT_TRUE(await([&] { return hung.incrementalEnds == 1; }));
    EXPECT_EQ(bytes(text), pattern(300'000));
}

TEST_F(ReadTest, APasswordIsNotReadAtAll)
{
    Owner owner;
    owner.offer("text/plain", "hunter2")
        .offer("UTF8_STRING", "hunter2")
        .offer("x-kde-passwordManagerHint", "secret");
    copy(owner);
    EXPECT_EQ(owner.asked, QByteArrayList{"TARGETS"});
    EXPECT_TRUE(types().contains("org.nspasteboard.ConcealedType"));
    EXPECT_EQ(bytes(text), std::nullopt);
}

TEST_F(ReadTest, ATransientMarkIsKeptByItsName)
{
    Owner owner;
    owner.offer("UTF8_STRING", "t").offer("com.example.TransientPasteboardType", {"", Manner::refuse});
    copy(owner);
    EXPECT_EQ(types(), (QStringList{"public.utf8-plain-text", "com.example.TransientPasteboardType"}));
    EXPECT_FALSE(owner.wasAskedFor("com.example.TransientPasteboardType"));
}

TEST_F(ReadTest, FilesAreOneItemEachAndTheListBelongsToTheFirst)
{
    Owner owner;
    owner.offer("text/uri-list", QByteArray("file:///a%20b\r\nfile:///c\0", 25))
        .offer("x-special/gnome-copied-files", "cut\nfile:///a%20b\nfile:///c")
        .offer("UTF8_STRING", "/a b\n/c");
    copy(owner);
    ASSERT_EQ(items().size(), 2u);
    EXPECT_EQ(items()[0].data(u"public.file-url"), QByteArray("file:///a%20b"));
    EXPECT_EQ(items()[1].data(u"public.file-url"), QByteArray("file:///c"));
    EXPECT_EQ(items()[0].data(text), QByteArray("/a b\n/c"));
    EXPECT_EQ(items()[0].data(u"x-special/gnome-copied-files"), QByteArray("cut\nfile:///a%20b\nfile:///c"));
    EXPECT_EQ(owner.asked,
              (QByteArrayList{"TARGETS", "text/uri-list", "x-special/gnome-copied-files", "UTF8_STRING"}));
}

TEST_F(ReadTest, DerivedPicturesAreNotAskedFor)
{
    Owner owner;
    owner.offer("image/bmp", "b")
        .offer("image/png", picture("png"))
        .offer("image/tiff", "t")
        .offer("image/x-xcf", "x");
    copy(owner);
    EXPECT_EQ(types(), (QStringList{"public.png", "image/x-xcf"}));
    EXPECT_EQ(owner.asked, (QByteArrayList{"TARGETS", "image/png", "image/x-xcf"}));
}

TEST_F(ReadTest, APictureThatItsOwnerFailsToRenderGivesWayToTheNext)
{
    Owner owner;
    owner.offer("image/png", "").offer("image/tiff", "tiff").offer("image/bmp", "bmp");
    copy(owner);
    EXPECT_EQ(types(), QStringList{"public.tiff"});
}

TEST_F(ReadTest, PicturesOfStyledTextAreNotAskedFor)
{
    Owner owner;
    owner.offer("image/png", picture("png")).offer("text/html", "<td>").offer("UTF8_STRING", "1\t2");
    copy(owner);
    EXPECT_EQ(types(), (QStringList{"public.html", "public.utf8-plain-text"}));
    EXPECT_FALSE(owner.wasAskedFor("image/png"));
}

// Virtual machines and remote desktops have nothing but bitmaps.
TEST_F(ReadTest, ALonelyPictureOfAnotherKindIsOfferedAsPngToo)
{
    Owner owner;
    for (const auto &[target, format] :
         {std::pair("image/bmp", "bmp"), std::pair("image/x-MS-bmp", "bmp"), std::pair("image/webp", "webp"),
          std::pair("image/x-xpixmap", "xpm")}) {
        owner.forgetOffers();
        owner.offer(target, picture(format));
        copy(owner);
        EXPECT_EQ(types(), (QStringList{target, "public.png"}));
        const QColor color = QImage::fromData(bytes(u"public.png").value_or("")).pixelColor(3, 3);
        EXPECT_LT(std::abs(color.green() - 128), 4) << target;
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
    const auto office = [](const char *name) -> QByteArray {
        return QByteArray("application/x-openoffice-") + name;
    };
    const Rendering renderings[] = {
        {office("embed-source-xml;windows_formatname=\"Star Embed Source (XML)\""), 2'800'000, 640},
        {"text/rtf", 10'500'000, 190},
        {"text/richtext", 10'500'000, 130},
        {"text/html", 17'000'000, 610},
        {"text/plain;charset=utf-16", 7'200'000, 70},
        {office("objectdescriptor-xml;windows_formatname=\"Star Object Descriptor (XML)\""), 200, 3},
        {office("gdimetafile;windows_formatname=\"GDIMetaFile\""), 30'000, 100},
        {office("emf;windows_formatname=\"Image EMF\""), 30'000, 100},
        {office("wmf;windows_formatname=\"Image WMF\""), 30'000, 100},
        {"image/png", 0, 2270},
        {office("bitmap;windows_formatname=\"Bitmap\""), 0, 170},
        {"image/bmp", 0, 170},
        {office("sylk;windows_formatname=\"Sylk\""), 8'000'000, 120},
        {office("dif;windows_formatname=\"DIF\""), 8'000'000, 120},
        {"application/x-libreoffice-tsvc", 3'600'000, 70},
        {office("link;windows_formatname=\"Link\""), 100, 600},
        {"text/plain;charset=utf-8", 3'600'000, 73},
        {"UTF8_STRING", 3'600'000, 73},
        {"STRING", 3'600'000, 73},
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
    EXPECT_EQ(bytes(text), pattern(3'600'000));
    EXPECT_EQ(bytes(PasteboardType::html), pattern(17'000'000));
    EXPECT_EQ(bytes(PasteboardType::rtf), pattern(10'500'000));
}

// As xsel does with a long text.
TEST_F(ReadTest, AnAnswerMayNameAnotherTargetAndComeTwice)
{
    Owner owner;
    owner.offer("TEXT", {pattern(50'000), Manner::incremental, 4000, 0, "STRING", 8, "STRING"});
    copy(owner);
    EXPECT_EQ(bytes(text), pattern(50'000));
    owner.notifyAgain();
    Owner next;
    next.offer("UTF8_STRING", "next").offer("x/more", "more");
    copy(next);
    EXPECT_EQ(bytes(text), QByteArray("next"));
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
