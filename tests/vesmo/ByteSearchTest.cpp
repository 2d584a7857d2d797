#include "Vesmo/ByteSearch.h"

#include <QElapsedTimer>
#include <QRandomGenerator>
#include <gtest/gtest.h>
#include <string>
#include <string_view>

namespace {

qsizetype expected(std::string_view text, std::string_view word, qsizetype from)
{
    const auto found = text.find(word, static_cast<size_t>(from));
    return found == std::string_view::npos ? -1 : static_cast<qsizetype>(found);
}

std::string randomText(QRandomGenerator &random, int length, std::string_view letters)
{
    std::string text(static_cast<size_t>(length), '\0');
    for (char &byte : text)
        byte = letters[random.bounded(static_cast<int>(letters.size()))];
    return text;
}

} // namespace

// Few letters make many places that nearly match; the sizes reach across every step of the search. The text
// is a copy that ends where its memory ends, so that the address sanitizer sees a byte read too many.
TEST(ByteSearch, FindsWhatAPlainSearchFinds)
{
    QRandomGenerator random(8);
    constexpr std::string_view alphabets[] = {"a", "ab", "abc e", "qzj\xC3\xA9\xFF\x01",
                                              std::string_view("\0x", 2)};
    for (int round = 0; round < 60000; ++round) {
        const auto letters = alphabets[random.bounded(5)];
        const std::string made = randomText(random, random.bounded(round % 50 == 0 ? 3000 : 200), letters);
        const std::vector<char> text(made.begin(), made.end());
        std::string word = randomText(random, random.bounded(1, round % 7 == 0 ? 90 : 7), letters);
        if (round % 3 == 0 && !made.empty())
            word = made.substr(static_cast<size_t>(random.bounded(static_cast<int>(made.size()))),
                               static_cast<size_t>(random.bounded(1, 100)));
        const qsizetype from = random.bounded(static_cast<int>(made.size()) + 1);
        ASSERT_EQ(indexOfBytes({text.data(), static_cast<qsizetype>(text.size())}, word, from),
                  expected(made, word, from))
            << "text \"" << made << "\", word \"" << word << "\", from " << from;
    }
    EXPECT_EQ(indexOfBytes("abc", "", 2), 2);
    EXPECT_EQ(indexOfBytes("", "a"), -1);
}

// Compared at every place, the first would take 2 × 10^11 steps, minutes.
TEST(ByteSearch, StaysLinearOnTextsMadeToBeSlow)
{
    const std::string many(4'000'000, 'a');
    const std::string half(50'000, 'a');
    std::string broken = many;
    for (size_t i = half.size(); i < broken.size(); i += half.size())
        broken[i] = 'b';
    QElapsedTimer timer;
    timer.start();
    EXPECT_EQ(indexOfBytes(broken, half + "a"), -1);
    EXPECT_EQ(indexOfBytes(many, "b" + half), -1);
    EXPECT_EQ(indexOfBytes(many, "aba"), -1);
    EXPECT_LT(timer.elapsed(), 20000);
}
