// What real programs copy, recorded by the real Norvane and pasted back from its history: a table of programs
// and kinds of copy. Wants a private desktop with a window manager.
#include "tests/programs/Trips.h"

#include <gtest/gtest.h>

namespace {

class Programs : public testing::TestWithParam<Trip> {
protected:
    Stage stage{QStringLiteral(NORVANE_PROGRAM), QDir(QStringLiteral(NORVANE_OUTPUT))};
};

TEST_P(Programs, GetBackWhatTheyCopied)
{
    ASSERT_NO_THROW(stage.start());
    travel(stage, GetParam());
    EXPECT_NO_THROW(stage.quit());
}

class ClosedPrograms : public Programs {};

TEST_P(ClosedPrograms, LeaveTheirCopyOnTheClipboard)
{
    ASSERT_NO_THROW(stage.start());
    travelByClipboard(stage, GetParam());
    EXPECT_NO_THROW(stage.quit());
}

std::string nameOf(const testing::TestParamInfo<Trip> &trip)
{
    std::string name;
    const QString words = trip.param.source.name + trip.param.kind;
    for (const auto letter : words.toStdString())
        if (std::isalnum(static_cast<unsigned char>(letter)))
            name += letter;
    return name;
}

INSTANTIATE_TEST_SUITE_P(Light, Programs, testing::ValuesIn(lightTrips()), nameOf);
INSTANTIATE_TEST_SUITE_P(Light, ClosedPrograms, testing::ValuesIn(lightClipboardTrips()), nameOf);
INSTANTIATE_TEST_SUITE_P(Heavy, ClosedPrograms, testing::ValuesIn(heavyClipboardTrips()), nameOf);
INSTANTIATE_TEST_SUITE_P(Heavy, Programs, testing::ValuesIn(heavyTrips()), nameOf);

} // namespace
