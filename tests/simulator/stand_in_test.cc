#include "simulator/stand_in.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/paths.h"
#include "simulator/sailing_simulation.h"
#include "support/fakes.h"

namespace twr {
namespace {

constexpr std::u16string_view kFolder = u"/deckman";
constexpr std::int32_t kBspNumber = 1;
constexpr std::int32_t kTimerNumber = 50;

struct Bench {
    testing::FakeClock clock;
    testing::FakeFiles files;
    testing::FakeMemory memory;

    void Write(std::u16string_view name, const std::string& bytes) { files.files.push_back({JoinPath(kFolder, name), bytes}); }
    StandIn Load() { return StandIn({clock, files, memory}, kFolder); }
};

TEST(StandIn, MovesWithTheClock) {
    Bench bench;
    StandIn standIn = bench.Load();
    EXPECT_EQ(300.0F, standIn.Read(kTimerNumber));
    bench.clock.AdvanceMs(5000);
    EXPECT_EQ(295.0F, standIn.Read(kTimerNumber));
    bench.clock.AdvanceMs(-3600000);
    EXPECT_EQ(295.0F, standIn.Read(kTimerNumber)) << "set back";
    bench.clock.AdvanceMs(1000);
    EXPECT_EQ(294.0F, standIn.Read(kTimerNumber));
    bench.clock.AdvanceMs(86400000);
    EXPECT_EQ(284.0F, standIn.Read(kTimerNumber)) << "a computer that slept";
}

TEST(StandIn, ReadsOneMomentWithinATick) {
    Bench bench;
    StandIn standIn = bench.Load();
    const float before = standIn.Read(kBspNumber);
    for (int i = 0; i < 19; ++i) {
        bench.clock.AdvanceMs(1);
        EXPECT_EQ(before, standIn.Read(kBspNumber)) << i;
    }
    bench.clock.AdvanceMs(100);
    EXPECT_NE(before, standIn.Read(kBspNumber));
    // What was not played at once is not lost.
    for (int i = 0; i < 881; ++i) {
        bench.clock.AdvanceMs(1);
        standIn.Read(kBspNumber);
    }
    bench.clock.AdvanceMs(20);
    SailingSimulation simulation(1, 300);
    simulation.Advance(1.0);
    EXPECT_EQ(simulation.Now()[Quantity::kBsp], standIn.Read(kBspNumber));
}

TEST(StandIn, AnswersAbsentForNumbersThatNoVariableHas) {
    Bench bench;
    StandIn standIn = bench.Load();
    for (const std::int32_t number : {-1, 0, 24, 99, INT32_MAX, INT32_MIN}) EXPECT_EQ(32767.0F, standIn.Read(number)) << number;
}

TEST(StandIn, FollowsItsSettings) {
    const struct {
        const char* text;
        float timer;  // after a second
    } rows[] = {
        {"", 299.0F},
        {"speed=10\nstart_lead = 60\n", 50.0F},
        {"# a demonstration\r\n speed = 2.5 \r\nseed=9\r\n", 298.0F},
        {"speed=0\nspeed=1000\nspeed=-1\nspeed=x\nspeed=\nstart_lead=0\nstart_lead=99999\nSPEED=10\nspeed\n=\n", 299.0F},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        Bench bench;
        bench.Write(u"simulation.txt", row.text);
        StandIn standIn = bench.Load();
        bench.clock.AdvanceMs(1000);
        EXPECT_EQ(row.timer, standIn.Read(kTimerNumber));
    }
    Bench bench;
    bench.Write(u"simulation.txt", "seed=18446744073709551615\n");
    EXPECT_EQ(SailingSimulation(UINT64_MAX, 300).Now()[Quantity::kTws], bench.Load().Read(5));
}

TEST(StandIn, ReplaysARecordingThatLiesBesideIt) {
    Bench bench;
    bench.Write(u"recording.nmea", "$GPGLL,6005.071,N,02332.346,W,120000,A\n$IIVHW,,T,,M,6.5,N,,K\n");
    StandIn standIn = bench.Load();
    EXPECT_EQ(6.5F, standIn.Read(kBspNumber));
    EXPECT_EQ(kAbsent, standIn.Read(kTimerNumber));
    float latitude = 0.0F;
    float longitude = 0.0F;
    standIn.Position(latitude, longitude);
    EXPECT_NEAR(60.08452, latitude, 1e-4);
    EXPECT_NEAR(-23.5391, longitude, 1e-4);
    bench.files.files.clear();
    bench.clock.AdvanceMs(5000);
    standIn.Position(latitude, longitude);
    EXPECT_EQ(kAbsent, standIn.Read(kBspNumber));
    EXPECT_EQ(kAbsent, latitude);
    EXPECT_EQ(kAbsent, longitude);
}

}  // namespace
}  // namespace twr
