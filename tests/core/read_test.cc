#include <gtest/gtest.h>

#include <limits>

#include "support/fakes.h"
#include "support/record_writer.h"

namespace twr {
namespace {

constexpr double X = kNoValue;
constexpr double kSecond = 1.0 / 86400.0;

class ReadTest : public ::testing::Test {
protected:
    ReadTest() { record.SetBoatCount(5); }

    void Hold(BoatSlot boat, ChannelId channel, double value, double ageSeconds = 0.0) {
        record.SetEntry(boat, channel, value, machine.clock.Days() - ageSeconds * kSecond, X);
    }
    double Read(ChannelId channel, BoatSlot boat = 0, bool angleFlag = true, bool damped = false) {
        double value = 1.0;
        const bool real = core.GetChannel(channel, value, boat, damped, angleFlag, true);
        EXPECT_EQ(real, value != X);
        return value;
    }
    double Fresh(ChannelId channel, BoatSlot boat = 0, double maxAge = X) {
        double value = 1.0;
        const bool real = core.GetFreshChannel(channel, value, boat, false, true, maxAge);
        EXPECT_EQ(real, value != X);
        return value;
    }

    testing::FakeMachine machine;
    CCore core{machine.Services()};
    testing::RecordWriter record{core};
};

TEST_F(ReadTest, FindsNothingBeyondTheBoatsInUse) {
    Hold(0, kBsp, 7.0);
    Hold(1, kBsp, 8.0);
    EXPECT_EQ(7.0, Read(kBsp));
    EXPECT_EQ(8.0, Read(kBsp, 1));
    record.SetBoatCount(1);
    EXPECT_EQ(X, Read(kBsp, 1));
    record.SetBoatCount(0);
    EXPECT_EQ(X, Read(kBsp));
    EXPECT_EQ(X, Fresh(kBsp));
    record.SetBoatCount(4000000000u);  // by another program
    for (const BoatSlot boat : {100u, 101u, ~0u}) EXPECT_EQ(X, Read(kBsp, boat)) << boat;
    for (const BoatSlot boat : {100u, 101u, ~0u}) EXPECT_EQ(X, Fresh(kBsp, boat)) << boat;
    for (const ChannelId channel : {414u, 32767u, ~0u}) EXPECT_EQ(X, Fresh(channel)) << channel;
}

TEST_F(ReadTest, FarBoatsHoldTheChannelsOfTheShortStore) {
    record.SetFarEntry(3, 19, 0.5, machine.clock.Days(), 0.6);   // Ahead
    record.SetFarEntry(3, 8, 30.0, machine.clock.Days(), 31.0);  // AWA
    record.SetInt(4, 0);
    EXPECT_EQ(0.5, Read(kAhead, 3));
    EXPECT_EQ(X, Read(kAhead, 3, true, true)) << "damped, above channel 33";
    EXPECT_EQ(31.0, Read(kAwa, 3, true, true));
    EXPECT_EQ(30.0, Fresh(kAwa, 3));
    EXPECT_EQ(X, Read(kCourse, 3)) << "no short index";
    EXPECT_EQ(X, Fresh(kCourse, 3));
    record.SetEntry(1, kAwa, 10.0, machine.clock.Days(), 11.0);
    EXPECT_EQ(11.0, Read(kAwa, 1, true, true));
}

TEST_F(ReadTest, MakesBearingsTrue) {
    enum By { kAngleFlag, kSysFlag };
    const struct {
        double own, far, bearing;  // variation of boats 0 and 3, bearing of boat 3
        By by;
        double expected;
    } rows[] = {
        {10.0, X, 355.0, kAngleFlag, 5.0},     {-5.0, X, 3.0, kAngleFlag, 358.0},  {X, X, 3.0, kAngleFlag, X},
        {10.0, 2.0, 355.0, kAngleFlag, 357.0}, {X, 2.0, 355.0, kAngleFlag, 357.0}, {10.0, 2.0, 355.0, kSysFlag, 5.0},
        {X, 2.0, 355.0, kSysFlag, X},          {0.0, X, 360.0, kAngleFlag, 0.0},
    };
    for (const auto& row : rows) {
        record.SetEntry(0, 93, row.own, 0.0, X);
        record.SetFarEntry(3, 1, row.far, 0.0, X);
        record.SetFarEntry(3, 5, row.bearing, 0.0, X);  // TWD
        record.SetFlag(3, row.by == kAngleFlag);
        EXPECT_DOUBLE_EQ(row.expected, Read(kTwd, 3, row.by == kSysFlag)) << row.own << ", " << row.far << ", " << row.bearing;
    }
}

TEST_F(ReadTest, ConvertsByTheTypeOfTheChannel) {
    const struct {
        ChannelId channel;
        double stored, shown;
    } rows[] = {
        {kDepth, 10.0, 32.808}, {kMkRng, 1.0, 1.852},    {kBiasL, 1.0, 100.0},  {kBsp, 10.0, 18.52},    {kTws, 10.0, 18.52},
        {kAirTemp, 20.0, 68.0}, {kEngOilPres, 1e5, 1.0}, {kTwd, 360.0, 0.0},    {kTwd, -1.0, 359.0},    {kMkTwa, 350.0, -10.0},
        {kHeel, -190.0, 170.0}, {kHeel, -180.0, -180.0}, {kVmcPct, 50.0, 50.0}, {kUser30, 10.0, 18.52}, {kUser31, 10.0, 10.0},
    };
    record.SetInt(1, 2), record.SetInt(2, 2), record.SetInt(3, 3), record.SetInt(4, 1), record.SetInt(9, 3);
    record.SetFlag(4, true);
    record.SetValue(0, 18.52);
    for (const std::size_t user : {202u, 203u}) record.Set(6300 + 108 * user + 10, std::int16_t{12});
    for (const auto& row : rows) {
        Hold(0, row.channel, row.stored);
        EXPECT_DOUBLE_EQ(row.shown, Read(row.channel)) << row.channel << " holds " << row.stored;
        double value = 0.0;
        EXPECT_TRUE(core.GetChannel(row.channel, value, 0, false, true, false));
        EXPECT_EQ(row.stored, value);
    }
    EXPECT_EQ(30.0, core.ToDisplayUnits(kHdg, 30.0, 5.0));
    record.SetFlag(3, false);
    EXPECT_EQ(35.0, core.ToDisplayUnits(kHdg, 30.0, 5.0));
    record.SetInt(1, 7);
    EXPECT_EQ(X, Read(kDepth));
}

// Limits are 10 s for BSP and none for Mk Lat.
TEST_F(ReadTest, AValueCountsUntilItsLimitOfAge) {
    const struct {
        ChannelId channel;
        double age, maxAge;  // seconds, days
        bool fresh;
    } rows[] = {
        {kBsp, 0.0, X, true},       {kBsp, 9.99, X, true},     {kBsp, 10.01, X, false},      {kBsp, -9.99, X, true},
        {kBsp, -10.01, X, false},   {kBsp, 10.0, 0.001, true}, {kBsp, 10.0, kSecond, false}, {kAirTemp, 59.9, X, true},
        {kAirTemp, 61.0, X, false}, {kMkLat, 1e9, X, true},    {kMkLat, 1e9, kSecond, true},
    };
    for (const auto& row : rows) {
        Hold(0, row.channel, 7.0, row.age);
        EXPECT_EQ(row.fresh, Fresh(row.channel, 0, row.maxAge) != X) << row.channel << " of " << row.age << " s";
    }
    record.SetEntry(0, kBsp, 7.0, 0.0, X);
    EXPECT_EQ(X, Fresh(kBsp, 0, 1e6)) << "never written";
    record.SetEntry(0, kMkLat, 7.0, 0.0, X);
    EXPECT_EQ(7.0, Fresh(kMkLat));
}

TEST_F(ReadTest, ABoatWithAnMmsiLivesByItsOwnLimit) {
    const struct {
        BoatSlot boat;
        std::uint32_t mmsi;
        std::int32_t ageLimit;
        double age;
        bool fresh;
    } rows[] = {
        {1, 0, 32767, 11.0, false}, {1, 5, 32767, 32760.0, true}, {1, 5, 32767, 32770.0, false},  {1, 5, 3, 9.0, true},
        {1, 5, -1, 1e6, true},      {1, 5, 40000, 1e6, true},     {1, 5, 65536 + 20, 19.0, true}, {1, 5, 65536 + 20, 21.0, false},
        {0, 5, 32767, 11.0, false}, {1, 5, 65536, 1e6, true},
    };
    for (const auto& row : rows) {
        const std::size_t boat = 51012 + 80 * row.boat;
        record.Set(boat, row.ageLimit), record.Set(boat + 72, row.mmsi);
        Hold(row.boat, kBsp, 7.0, row.age);
        EXPECT_EQ(row.fresh, Fresh(kBsp, row.boat) != X)
            << "boat " << row.boat << ", limit " << row.ageLimit << ", age " << row.age;
    }
    record.SetBoatCount(101);
    Fresh(kBsp, 1);
    EXPECT_EQ(100u, record.Get<std::uint32_t>(6296));
}

TEST_F(ReadTest, OneReadingOfTheClockServesARead) {
    Hold(0, kBsp, 7.0);
    record.SetSlot(0, 2, kBsp);
    const int before = machine.clock.readings;
    Fresh(kAlt0);
    EXPECT_EQ(before + 1, machine.clock.readings);
}

TEST(ReadWithoutRecord, GivesNoValue) {
    testing::FakeMachine machine;
    machine.memory.failMap = true;
    CCore core(machine.Services());
    double value = 1.0;
    EXPECT_FALSE(core.GetChannel(kBsp, value, 0, false, true, true));
    EXPECT_EQ(X, value);
    EXPECT_FALSE(core.GetFreshChannel(kBsp, value = 1.0, 0, false, true, X));
    EXPECT_EQ(X, value);
    EXPECT_EQ(X, core.ApplyVariation(10.0, 0));
    EXPECT_EQ(10.0, core.ToDisplayUnits(kTwd, 10.0, 5.0));
    EXPECT_EQ(kBsp, core.ResolveAlternate(kBsp, true));
    EXPECT_EQ(kNoChannel, core.ResolveAlternate(414, true));
}

}  // namespace
}  // namespace twr
