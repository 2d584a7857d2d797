#include "tests/platform/pasteboard/PasteboardTest.h"

#include "Platform/linux/x11/PasteboardConnection.h"
#include "Platform/linux/x11/SelectionServer.h"

#include <cstring>

// How other programs are served.

namespace {

class ServeTest : public PasteboardTest {};

quint32 unit(const QByteArray &bytes, qsizetype index = 0)
{
    quint32 value = 0;
    std::memcpy(&value, bytes.constData() + index * 4, 4);
    return value;
}

} // namespace

TEST_F(ServeTest, EveryTargetOfAStyledText)
{
    write({{{form("public.rtf", "{\\rtf1}"), form("public.html", "<b>"), form(plainText, "perch\xC3\xA9"),
             form("x/own", "own")}}});
    EXPECT_EQ(requestor.targets(),
              (QByteArrayList{"TIMESTAMP", "TARGETS", "MULTIPLE", "SAVE_TARGETS", "text/rtf",
                              "application/rtf", "text/richtext", "text/html", "UTF8_STRING",
                              "text/plain;charset=utf-8", "text/plain", "TEXT", "STRING", "x/own"}));
    const std::pair<const char *, QByteArray> answers[] = {
        {"text/richtext", "{\\rtf1}"}, {"text/html", "<b>"},      {"UTF8_STRING", "perch\xC3\xA9"},
        {"STRING", "perch\xE9"},       {"TEXT", "perch\xC3\xA9"}, {"x/own", "own"},
    };
    for (const auto &[target, content] : answers) {
        const auto answer = requestor.convert(target);
        ASSERT_TRUE(answer) << target;
        EXPECT_EQ(answer->bytes, content) << target;
        EXPECT_EQ(answer->format, 8);
    }
    for (const char *refused : {"image/png", "DELETE", "COMPOUND_TEXT", "GTK_TEXT_BUFFER_CONTENTS"})
        EXPECT_EQ(requestor.convert(refused), std::nullopt) << refused;
}

TEST_F(ServeTest, TimeOfTheClaimDecidesWhichRequestsAreAnswered)
{
    const auto timeOfClaim = [this] {
        write({textItem("t")});
        const auto answer = requestor.convert("TIMESTAMP");
        EXPECT_TRUE(answer && answer->format == 32);
        return answer ? unit(answer->bytes) : 0;
    };
    const xcb_timestamp_t before = timeOfClaim();
    xcb_timestamp_t claimed = 0;
    ASSERT_TRUE(await([&] { return (claimed = timeOfClaim()) > before; }));
    EXPECT_EQ(requestor.convert("UTF8_STRING", "CLIPBOARD", before), std::nullopt);
    EXPECT_TRUE(requestor.convert("UTF8_STRING", "CLIPBOARD", claimed));
}

TEST_F(ServeTest, SaveTargetsIsAnsweredWithNothingAndWithoutAPropertyTheTargetsNameIsTaken)
{
    write({textItem("obsolete")});
    const auto answer = requestor.convert("SAVE_TARGETS");
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->type, QByteArray("NULL"));
    EXPECT_TRUE(answer->bytes.isEmpty());
    requestor.ask("UTF8_STRING", {});
    ASSERT_TRUE(requestor.awaitNotify());
    EXPECT_EQ(requestor.take("UTF8_STRING").bytes, QByteArray("obsolete"));
}

TEST_F(ServeTest, SeveralTargetsInOneRequest)
{
    write({{{form(plainText, "t"), form("x/long", pattern(600'000))}}});
    std::vector<quint32> pairs;
    for (const char *name : {"UTF8_STRING", "ONE", "x/unknown", "TWO", "x/long", "THREE", "MULTIPLE", "FOUR"})
        pairs.push_back(requestor.atom(name));
    requestor.put("PAIRS", "ATOM_PAIR", 32, bytesOf(pairs));
    requestor.ask("MULTIPLE", "PAIRS");
    ASSERT_TRUE(requestor.awaitNotify());
    ASSERT_EQ(requestor.answered.property, requestor.atom("PAIRS"));
    const auto answered = requestor.take("PAIRS");
    ASSERT_EQ(answered.bytes.size(), 32);
    EXPECT_EQ(unit(answered.bytes, 1), requestor.atom("ONE"));
    EXPECT_EQ(unit(answered.bytes, 3), XCB_ATOM_NONE);
    EXPECT_EQ(unit(answered.bytes, 5), requestor.atom("THREE"));
    EXPECT_EQ(unit(answered.bytes, 7), XCB_ATOM_NONE);
    EXPECT_EQ(requestor.take("ONE").bytes, QByteArray("t"));
    EXPECT_TRUE(requestor.take("THREE").incremental);
    EXPECT_EQ(requestor.finish("THREE").bytes, pattern(600'000));

    EXPECT_EQ(requestor.convert("MULTIPLE"), std::nullopt); // without a list of pairs
}

TEST_F(ServeTest, LongContentGoesOutInChunksAndShortWhole)
{
    constexpr qsizetype chunkless = 262'144;
    write({{{form("x/short", pattern(chunkless)), form("x/long", pattern(chunkless + 1)),
             form("x/longer", pattern(5'000'003))}}});
    const auto whole = requestor.convert("x/short");
    ASSERT_TRUE(whole);
    EXPECT_FALSE(whole->incremental);
    EXPECT_EQ(whole->bytes.size(), 256 * 1024);
    for (const auto &[target, size] :
         {std::pair("x/long", 256 * 1024 + 1), std::pair("x/longer", 5'000'003)}) {
        const auto chunks = requestor.convert(target);
        ASSERT_TRUE(chunks);
        EXPECT_TRUE(chunks->incremental);
        EXPECT_EQ(chunks->bytes, pattern(size));
        EXPECT_LE(chunks->largestChunk, 1024 * 1024);
        EXPECT_EQ(chunks->type, QByteArray(target));
    }
}

TEST_F(ServeTest, ALongListOfTargetsGoesOutInWholeUnits)
{
    constexpr int manyTypes = 270'000; // more than one chunk
    PasteboardItem item;
    for (int i = 0; i < manyTypes; ++i)
        item.representations.push_back({QStringLiteral("x/%1").arg(i), QByteArray("1")});
    write({item});
    const auto list = requestor.convert("TARGETS");
    ASSERT_TRUE(list);
    EXPECT_TRUE(list->incremental);
    EXPECT_EQ(list->format, 32);
    EXPECT_EQ(list->bytes.size(), (manyTypes + 4) * 4);
}

TEST_F(ServeTest, ATransferOutlivesTheOwnership)
{
    write({{{form("x/long", pattern(3'000'000))}}});
    requestor.ask("x/long", "SLOW");
    ASSERT_TRUE(requestor.awaitNotify());
    Owner next;
    next.offer("UTF8_STRING", "next");
    copy(next);
    EXPECT_TRUE(requestor.take("SLOW").incremental);
    EXPECT_EQ(requestor.finish("SLOW").bytes, pattern(3'000'000));
}

TEST_F(ServeTest, ANewQuestionInTheSamePlaceEndsTheOldOne)
{
    write({{{form("x/long", pattern(3'000'000)), form("x/short", "short")}}});
    requestor.ask("x/long", "PLACE");
    ASSERT_TRUE(requestor.awaitNotify());
    EXPECT_TRUE(requestor.take("PLACE").incremental);
    requestor.ask("x/short", "PLACE");
    ASSERT_TRUE(requestor.awaitNotify());
    EXPECT_EQ(requestor.take("PLACE").bytes, QByteArray("short"));
    EXPECT_EQ(requestor.text(), QByteArray()); // served as before, and no chunk of the old answer in between
    EXPECT_EQ(requestor.take("PLACE").bytes, QByteArray());
}

TEST_F(ServeTest, ManyAtOnceGetTheContentOfTheirTimeWhole)
{
    const QByteArray first = pattern(600'000);
    const QByteArray second = QByteArray(700'000, 'z');
    std::vector<std::unique_ptr<Requestor>> requestors;
    for (const QByteArray &content : {first, second}) {
        write({{{form("x/long", content)}}});
        for (int i = 0; i < 20; ++i) {
            requestors.push_back(std::make_unique<Requestor>());
            requestors.back()->ask("x/long", "PLACE");
            ASSERT_TRUE(requestors.back()->awaitNotify());
        }
    }
    for (size_t i = requestors.size(); i-- > 0;) {
        EXPECT_TRUE(requestors[i]->take("PLACE").incremental);
        EXPECT_EQ(requestors[i]->finish("PLACE").bytes, i < 20 ? first : second) << i;
    }
}

TEST_F(ServeTest, PrimaryCarriesTheTextOnlyWhenAskedTo)
{
    write({{{form(plainText, "t"), form("public.html", "<b>")}}});
    EXPECT_EQ(requestor.convert("UTF8_STRING", "PRIMARY"), std::nullopt);
    pasteboard->ownPrimary();
    EXPECT_EQ(requestor.text("PRIMARY"), QByteArray("t"));
    EXPECT_FALSE(requestor.targets("PRIMARY").contains("text/html"));

    Owner other;
    other.offer("UTF8_STRING", "other");
    other.claim("PRIMARY");
    EXPECT_EQ(requestor.text("PRIMARY"), QByteArray("other"));
    EXPECT_EQ(requestor.text(), QByteArray("t"));

    write({{{form("public.png", "png")}}});
    pasteboard->ownPrimary(); // no text: PRIMARY stays where it is
    EXPECT_EQ(requestor.text("PRIMARY"), QByteArray("other"));

    other.forgetOffers();
    other.offer("UTF8_STRING", "foreign");
    copy(other);
    pasteboard->ownPrimary();
    EXPECT_EQ(requestor.text("PRIMARY"), QByteArray("foreign"));
}

TEST(SelectionServerTest, AStalledTransferIsForgottenAfterThirtySecondsAndOneProgramHasFewOfThem)
{
    Requestor requestor;
    const auto x = PasteboardConnection::open();
    ASSERT_TRUE(x);
    SelectionServer server(*x);
    const auto claim = x->claim(x->atoms().clipboard);
    server.offer(x->atoms().clipboard, claim, {{"x/long", "x/long", pattern(1'000'000)}});
    SelectionRequest request{};
    request.requestor = requestor.window();
    request.selection = x->atoms().clipboard;
    request.target = requestor.atom("x/long");
    request.property = requestor.atom("PLACE");
    const TimePoint start = Clock::now();
    server.handleRequest(request, start);
    EXPECT_EQ(server.transferCount(), 1u);
    server.advance(start + std::chrono::seconds(29));
    EXPECT_EQ(server.transferCount(), 1u);
    EXPECT_EQ(server.deadline(), start + std::chrono::seconds(30));
    server.advance(start + std::chrono::seconds(30));
    EXPECT_EQ(server.transferCount(), 0u);
    for (int i = 0; i < 200; ++i) {
        request.property = requestor.atom("PLACE_" + QByteArray::number(i));
        server.handleRequest(request, start);
    }
    EXPECT_EQ(server.transferCount(), 64u);
}
