// The pasteboard that other tests trust: here its promises are kept to the letter.

#include "Platform/memory/MemoryPasteboard.h"

#include <QCoreApplication>
#include <gtest/gtest.h>

namespace {

const QString text = QString::fromUtf16(PasteboardType::plainText),
              png = QString::fromUtf16(PasteboardType::png),
              fileURL = QString::fromUtf16(PasteboardType::fileURL),
              html = QString::fromUtf16(PasteboardType::html),
              concealed = QString::fromUtf16(PasteboardType::concealed);

PasteboardItem item(std::initializer_list<PasteboardRepresentation> representations)
{
    return {{representations}};
}

// The policy with one thing changed.
template <typename Value>
PasteboardPolicy policyWith(Value PasteboardPolicy::*part, Value value)
{
    PasteboardPolicy policy;
    policy.*part = std::move(value);
    return policy;
}

// The types whose bytes were fetched, in their order.
QStringList fetchedTypes(const MemoryPasteboard &pasteboard)
{
    QStringList types;
    for (const auto &each : pasteboard.snapshot()->items) {
        for (const auto &representation : each.representations) {
            if (representation.data)
                types.append(representation.type);
        }
    }
    return types;
}

QString textOn(MemoryPasteboard &pasteboard)
{
    QString result = "not yet";
    pasteboard.readText([&result](const QString &read) { result = read; });
    EXPECT_EQ(result, "not yet");
    QCoreApplication::processEvents();
    return result;
}

TEST(MemoryPasteboardTest, EveryPublishedChangeMovesTheCountByOne)
{
    MemoryPasteboard pasteboard(5, {item({{text, "before"}})});
    EXPECT_EQ(pasteboard.changeCount(), 5);
    EXPECT_EQ(pasteboard.snapshot()->items.size(), 1U);
    pasteboard.copyText("uno", FrontApplication{"org.example", "Example"});
    EXPECT_EQ(pasteboard.snapshot()->frontApplication->bundleIdentifier, "org.example");
    EXPECT_EQ(pasteboard.write({item({{text, "due"}, {html, std::nullopt}})}), 7);
    EXPECT_EQ(pasteboard.snapshot()->changeCount, 7);
    EXPECT_EQ(pasteboard.snapshot()->items, std::vector{item({{text, "due"}})});
    pasteboard.clear();
    EXPECT_EQ(pasteboard.changeCount(), 8);
    EXPECT_TRUE(pasteboard.snapshot()->items.empty());
    pasteboard.copyText(QString()); // a clear too
    EXPECT_EQ(pasteboard.changeCount(), 9);
    EXPECT_TRUE(pasteboard.snapshot()->items.empty());
}

TEST(MemoryPasteboardTest, AReadUnderWayPublishesTheLastCopyOnlyAndSettlesThen)
{
    MemoryPasteboard pasteboard;
    bool settled = false;
    pasteboard.beginRead();
    pasteboard.copyText("overtaken");
    pasteboard.copyText("last");
    pasteboard.whenSettled([&settled] { settled = true; });
    EXPECT_EQ(pasteboard.changeCount(), 0);
    EXPECT_FALSE(settled);
    pasteboard.finishRead();
    EXPECT_EQ(pasteboard.changeCount(), 1);
    EXPECT_EQ(pasteboard.snapshot()->items.front().data(text), QByteArray("last"));
    EXPECT_TRUE(settled);

    pasteboard.beginRead();
    pasteboard.copyText("too late");
    pasteboard.write({item({{text, "own"}})});
    pasteboard.finishRead();
    EXPECT_EQ(pasteboard.changeCount(), 2);
    EXPECT_EQ(pasteboard.snapshot()->items.front().data(text), QByteArray("own"));
}

TEST(MemoryPasteboardTest, ThePolicyDecidesWhichBytesAreFetchedAndNeverWhatIsListed)
{
    const FrontApplication front{"org.store", "Store"};
    const std::vector picture{item({{png, "png"}, {"image/x-xcf", "xcf"}})};
    const std::vector textAndPicture{item({{text, "t"}, {png, "p"}})};
    const std::vector files{item({{fileURL, "file:///a"}, {text, "/a"}}), item({{fileURL, "file:///b"}})};
    struct Case {
        PasteboardPolicy policy;
        std::vector<PasteboardItem> copied;
        QStringList fetched;
    };
    const Case cases[] = {
        {{}, picture, {png, "image/x-xcf"}},
        {policyWith(&PasteboardPolicy::images, false), picture, {}},
        {policyWith(&PasteboardPolicy::images, false), textAndPicture, {text, png}},
        {policyWith(&PasteboardPolicy::files, false), files, {fileURL, fileURL}},
        {policyWith(&PasteboardPolicy::paused, true), files, {}},
        {policyWith(&PasteboardPolicy::ignoredApplications, QStringList{"org.store"}), textAndPicture, {}},
        {policyWith(&PasteboardPolicy::ignoredApplications, QStringList{"org.other"}),
         textAndPicture,
         {text, png}},
        {{}, {item({{text, "secret"}, {concealed, "secret"}})}, {}},
        {policyWith(&PasteboardPolicy::byteBudget, qint64(5)),
         {item({{png, "12"}, {html, "345"}, {text, "67"}})},
         {html, text}}, // by value
        {policyWith(&PasteboardPolicy::byteBudget, qint64(0)), {item({{text, ""}, {html, "1"}})}, {text}},
    };
    for (const auto &[policy, copied, fetched] : cases) {
        MemoryPasteboard pasteboard;
        pasteboard.setPolicy(policy);
        pasteboard.copy(copied, front);
        EXPECT_EQ(fetchedTypes(pasteboard), fetched) << fetched.join(u' ').toStdString();
        ASSERT_EQ(pasteboard.snapshot()->items.size(), copied.size());
        for (size_t index = 0; index < copied.size(); ++index)
            EXPECT_EQ(pasteboard.snapshot()->items[index].representations.size(),
                      copied[index].representations.size());
    }
}

TEST(MemoryPasteboardTest, ThePastedTextComesFromItsOwnerEvenWhereThePolicyKeptItOut)
{
    MemoryPasteboard pasteboard;
    pasteboard.setPolicy(policyWith(&PasteboardPolicy::paused, true));
    pasteboard.copy({item({{text, "uno"}}), item({{text, "due"}})});
    EXPECT_EQ(textOn(pasteboard), "uno\ndue");
    pasteboard.setOwnerHung(true);
    EXPECT_EQ(textOn(pasteboard), "");
    pasteboard.write({item({{text, "ours"}})});
    EXPECT_EQ(textOn(pasteboard), "ours");
}

TEST(MemoryPasteboardTest, ARefusedClaimBringsTheRealContentBackAsAChange)
{
    MemoryPasteboard pasteboard;
    pasteboard.copyText("theirs");
    pasteboard.setClaimRefused(true);
    EXPECT_EQ(pasteboard.write({item({{text, "ours"}})}), 2);
    QCoreApplication::processEvents();
    EXPECT_EQ(pasteboard.changeCount(), 3);
    EXPECT_EQ(pasteboard.snapshot()->items.front().data(text), QByteArray("theirs"));
}

} // namespace
