#include "support/core_fixture.h"

namespace twr::testing {
namespace {

using R = RecordBytes;
constexpr double X = kNoValue;
constexpr double kSecond = 1.0 / 86400.0;

class ReadTest : public CoreTest {
protected:
    ReadTest() { record.SetBoatCount(5); }

    void Hold(BoatSlot boat, ChannelId channel, double value, double ageSeconds = 0.0) {
        record.SetEntry(boat, channel, value, machine.clock.Days() - ageSeconds * kSecond, X);
    }
    double Read(ChannelId channel, BoatSlot boat = 0, bool angleFlag = true, bool damped = false) {
        double value = 1.0;
        const bool found = core->GetChannel(channel, value, boat, damped, angleFlag, true);
        EXPECT_EQ(value != X, found);
        return value;
    }
    double Fresh(ChannelId channel, BoatSlot boat = 0, double maxAge = X) {
        double value = 1.0;
        const bool found = core->GetFreshChannel(channel, value, boat, false, true, maxAge);
        EXPECT_EQ(value != X, found);
        return value;
    }
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
    for (const BoatSlot boat : {100u, 101u, ~0u}) {
        EXPECT_EQ(X, Read(kBsp, boat)) << boat;
        EXPECT_EQ(X, Fresh(kBsp, boat)) << boat;
    }
    for (const ChannelId channel : {414u, 32767u, ~0u}) EXPECT_EQ(X, Fresh(channel)) << channel;
    Fresh(kBsp, 1);
    EXPECT_EQ(100u, Boats());
}

TEST_F(ReadTest, FarBoatsHoldTheChannelsOfTheShortStore) {
    record.SetFarEntry(3, 19, 0.5, machine.clock.Days(), 0.6);   // Ahead
    record.SetFarEntry(3, 8, 30.0, machine.clock.Days(), 31.0);  // AWA
    record.SetEntry(1, kAwa, 10.0, machine.clock.Days(), 11.0);
    record.SetInt(4, 0);
    EXPECT_EQ(0.5, Read(kAhead, 3));
    EXPECT_EQ(X, Read(kAhead, 3, true, true)) << "damped, above channel 33";
    EXPECT_EQ(30.0, Fresh(kAwa, 3));
    EXPECT_EQ(31.0, Read(kAwa, 3, true, true));
    EXPECT_EQ(11.0, Read(kAwa, 1, true, true));
    EXPECT_EQ(X, Read(kCourse, 3)) << "no short index";
    EXPECT_EQ(X, Fresh(kCourse, 3));
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
        SetFlag(kFlagMagnetic, row.by == kAngleFlag);
        EXPECT_DOUBLE_EQ(row.expected, Read(kTwd, 3, row.by == kSysFlag)) << row.own << ", " << row.far << ", " << row.bearing;
    }
}

TEST_F(ReadTest, ConvertsWhenAskedAndAlwaysWhenFresh) {
    record.SetInt(2, 2);
    Hold(0, kBsp, 10.0);
    EXPECT_DOUBLE_EQ(18.52, Read(kBsp));
    EXPECT_DOUBLE_EQ(18.52, Fresh(kBsp));
    double value = 0.0;
    EXPECT_TRUE(core->GetChannel(kBsp, value, 0, false, true, false));
    EXPECT_EQ(10.0, value);
}

// Limits are 10 s for BSP, 60 s for AirTemp and none for Mk Lat.
TEST_F(ReadTest, AValueCountsUntilItsLimitOfAge) {
    const struct {
        ChannelId channel;
        double age, maxAge;  // seconds, days
        bool fresh;
    } rows[] = {
        {kBsp, 9.99, X, true},     {kBsp, 10.01, X, false},      {kBsp, -9.99, X, true},    {kBsp, -10.01, X, false},
        {kBsp, 10.0, 0.001, true}, {kBsp, 10.0, kSecond, false}, {kAirTemp, 59.9, X, true}, {kAirTemp, 61.0, X, false},
        {kMkLat, 1e9, X, true},    {kMkLat, 1e9, kSecond, true},
    };
    for (const auto& row : rows) {
        Hold(0, row.channel, 7.0, row.age);
        EXPECT_EQ(row.fresh, Fresh(row.channel, 0, row.maxAge) != X) << row.channel << " of " << row.age << " s";
    }
    for (const ChannelId channel : {kBsp, kMkLat}) record.SetEntry(0, channel, 7.0, 0.0, X);
    EXPECT_EQ(X, Fresh(kBsp, 0, 1e6)) << "never written";
    EXPECT_EQ(7.0, Fresh(kMkLat)) << "its time is not looked at";
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
        record.Set(R::Boat(row.boat), row.ageLimit), record.Set(R::Boat(row.boat) + 72, row.mmsi);
        Hold(row.boat, kBsp, 7.0, row.age);
        EXPECT_EQ(row.fresh, Fresh(kBsp, row.boat) != X)
            << "boat " << row.boat << ", limit " << row.ageLimit << ", age " << row.age;
    }
}

TEST_F(ReadTest, OneReadingOfTheClockServesARead) {
    Hold(0, kBsp, 7.0);
    record.SetSlot(0, 2, kBsp);
    const int before = machine.clock.readings;
    Fresh(kAlt0);
    EXPECT_EQ(before + 1, machine.clock.readings);
}

}  // namespace
}  // namespace twr::testing
