#include "simulator/stand_in.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/paths.h"
#include "simulator/sailing_simulation.h"
#include "support/fakes.h"

namespace twr::testing {
namespace {

constexpr std::u16string_view kFolder = u"/deckman";
constexpr std::int32_t kBspNumber = 1;
constexpr std::int32_t kTimerNumber = 50;

class StandInTest : public ::testing::Test {
protected:
    void Write(std::u16string_view name, const std::string& bytes) { files.files = {{JoinPath(kFolder, name), bytes}}; }
    StandIn Load() { return StandIn({clock, files, memory}, kFolder); }

    FakeClock clock;
    FakeFiles files;
    FakeMemory memory;
};

TEST_F(StandInTest, MovesWithTheClock) {
    StandIn standIn = Load();
    // Milliseconds on, back for a clock that is set, and a whole day of sleep.
    const std::pair<int, float> steps[] = {{0, 300.0F}, {5000, 295.0F}, {-3600000, 295.0F}, {1000, 294.0F}, {86400000, 284.0F}};
    for (const auto& [advanceMs, timer] : steps) {
        clock.AdvanceMs(advanceMs);
        EXPECT_EQ(timer, standIn.Read(kTimerNumber)) << advanceMs;
    }
}

TEST_F(StandInTest, ReadsOneMomentWithinATickAndLosesNoTime) {
    StandIn standIn = Load();
    const float before = standIn.Read(kBspNumber);
    for (int ms = 1; ms <= 1000; ++ms) {
        clock.AdvanceMs(1);
        const float now = standIn.Read(kBspNumber);
        EXPECT_TRUE(ms >= 20 || now == before) << ms;
    }
    SailingSimulation simulation(1, 300);
    simulation.Advance(1.0);
    EXPECT_EQ(simulation.Now()[Quantity::kBsp], standIn.Read(kBspNumber));
    EXPECT_NE(before, standIn.Read(kBspNumber));
}

TEST_F(StandInTest, FollowsItsSettings) {
    // A file, and the count after a second.
    const std::pair<const char*, float> rows[] = {
        {"", 299.0F},
        {"speed=10\nstart_lead = 60\n", 50.0F},
        {"# a demonstration\r\n speed = 2.5 \r\nseed=9\r\n", 298.0F},
        {"speed=0\nspeed=1000\nspeed=-1\nspeed=x\nspeed=\nstart_lead=0\nstart_lead=99999\nSPEED=10\nspeed\n=\n", 299.0F},
    };
    for (const auto& [text, timer] : rows) {
        Write(u"simulation.txt", text);
        StandIn standIn = Load();
        clock.AdvanceMs(1000);
        EXPECT_EQ(timer, standIn.Read(kTimerNumber)) << text;
    }
    Write(u"simulation.txt", "seed=18446744073709551615\n");
    EXPECT_EQ(SailingSimulation(UINT64_MAX, 300).Now()[Quantity::kTws], Load().Read(5));
}

TEST_F(StandInTest, ReplaysARecordingThatLiesBesideIt) {
    Write(u"recording.nmea", "$GPGLL,6005.071,N,02332.346,W,120000,A\n$IIVHW,,T,,M,6.5,N,,K\n");
    StandIn standIn = Load();
    EXPECT_EQ(6.5F, standIn.Read(kBspNumber));
    EXPECT_EQ(kAbsent, standIn.Read(kTimerNumber));
    float latitude = 0.0F, longitude = 0.0F;
    files.files.clear();
    clock.AdvanceMs(5000);
    standIn.Position(latitude, longitude);
    EXPECT_EQ(kAbsent, latitude);
    EXPECT_EQ(kAbsent, longitude);
}

}  // namespace
}  // namespace twr::testing
