#include "Platform/linux/x11/GatheredBytes.h"

#include <gtest/gtest.h>

namespace {

constexpr qsizetype kibibyte = 1024, mebibyte = 1024 * kibibyte;

struct Arrival {
    qsizetype expected, chunk, count;
};

class ArrivalTest : public ::testing::TestWithParam<Arrival> {};

// What owners announce is too little (xclip: nothing), right, or much too much.
TEST_P(ArrivalTest, KeepsEveryChunkInItsPlaceAndNoRoomForMore)
{
    const Arrival &arrival = GetParam();
    GatheredBytes gathered;
    gathered.expect(arrival.expected);
    QByteArray sent;
    for (qsizetype i = 0; i < arrival.count; ++i) {
        const QByteArray chunk(arrival.chunk, static_cast<char>('a' + i % 26));
        gathered.append(chunk);
        sent += chunk;
    }
    const QByteArray taken = gathered.take();
    EXPECT_TRUE(taken == sent); // megabytes, which nobody wants to see
    EXPECT_LE(taken.capacity(), sent.size() + sent.size() / 4 + 32);
    EXPECT_EQ(gathered.size(), 0);
}

INSTANTIATE_TEST_SUITE_P(Sizes, ArrivalTest,
                         ::testing::Values(Arrival{0, 0, 1}, Arrival{7, 7, 1}, Arrival{0, 4000, 100},
                                           Arrival{0, mebibyte - 1, 41}, Arrival{40 * mebibyte, mebibyte, 40},
                                           Arrival{64 * mebibyte, 64 * kibibyte, 3},
                                           Arrival{5 * mebibyte, 3 * mebibyte, 12}));

} // namespace
