#include <cmath>

#include "core/shared_field.h"
#include "support/core_fixture.h"

namespace twr::testing {
namespace {

using R = RecordBytes;

class PublishTest : public CoreTest {};

TEST_F(PublishTest, WrapsOneTurnAndThenTestsTheRange) {
    const struct {
        ChannelId channel;
        double published, stored;
    } rows[] = {
        {kTwd, -10.0, 350.0},       {kTwd, 360.0, 0.0},       {kTwd, 370.0, 10.0},       {kTwd, 720.0, 360.0},
        {kTwd, 721.0, kNoValue},    {kTwd, -360.0, 0.0},      {kTwd, -361.0, kNoValue},  {kAwa, 190.0, -170.0},
        {kAwa, -180.0, -180.0},     {kAwa, 180.0, 180.0},     {kAwa, -181.0, 179.0},     {kAwa, 540.0, 180.0},
        {kAwa, 541.0, kNoValue},    {kHeel, 181.0, -179.0},   {kLat, 91.0, kNoValue},    {kLat, -90.0, -90.0},
        {kLon, 270.0, 270.0},       {kLon, 361.0, kNoValue},  {kBsp, 1000.0, 1000.0},    {kBsp, -3.0, -3.0},
        {kAws, 150.0, 150.0},       {kAws, 150.1, kNoValue},  {kAws, -0.1, kNoValue},    {kRake, 200.0, -160.0},
        {kAwa, kNoValue, kNoValue}, {kMastAng, 190.0, 190.0}, {kMastAng, 361, kNoValue},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(::testing::Message() << "channel " << row.channel << " published " << row.published);
        EXPECT_TRUE(Publish(row.channel, row.published));
        EXPECT_EQ(row.stored, Own(row.channel));
    }
}

TEST_F(PublishTest, AUserChannelWrapsByItsOwnTypeButTheLastOne) {
    record.Set<std::int16_t>(R::Channel(kUser30) + 10, 6);
    record.Set<std::int16_t>(R::Channel(kUser31) + 10, 6);
    Publish(kUser30, -10.0);
    Publish(kUser31, -10.0);
    EXPECT_EQ(350.0, Own(kUser30));
    EXPECT_EQ(-10.0, Own(kUser31));
}

// A second, separate account of what every channel does with a value, over literal offsets.
TEST_F(PublishTest, EveryChannelTakesRandomValuesAsTold) {
    std::uint32_t seed = 12345;
    const auto random = [&](double low, double high) {
        seed = seed * 1664525 + 1013904223;
        return low + (high - low) * (seed >> 8) / 16777216.0;
    };
    for (int round = 0; round < 40; ++round) {
        for (ChannelId channel = 1; channel < kChannelCount; ++channel) {
            const ChannelInfo& info = ChannelCatalogue()[channel];
            const auto boat = static_cast<BoatSlot>(random(0, 104));
            double value = round % 8 == 7 ? kNoValue : random(-800.0, 800.0);
            if (round % 3 == 0) value = random(info.min, info.max + 1);
            const double published = value;
            machine.clock.AdvanceMs(7);
            const bool stored = Publish(channel, published, boat);

            if (value != 32767.0 && info.type == 6) {
                if (value < 0 && value >= -360) {
                    value += 360;
                } else if (value >= 360 && value <= 720) {
                    value -= 360;
                }
            } else if (value != 32767.0 && (info.type == 7 || info.type == 13)) {
                if (value < -180 && value >= -540) {
                    value += 360;
                } else if (value > 180 && value <= 540) {
                    value -= 360;
                }
            }
            if (info.min != info.max && (value < info.min || value > info.max)) value = 32767.0;

            SCOPED_TRACE(::testing::Message() << "channel " << channel << " boat " << boat << " value " << published);
            const bool hasEntry = boat < 2 || (boat < 100 && info.shortIndex < 34);
            ASSERT_EQ(hasEntry, stored);
            if (!hasEntry) continue;
            const std::size_t place = boat < 2 ? R::Value(boat, channel) : R::FarValue(boat, info.shortIndex);
            const std::size_t stamp = boat < 2 ? R::Time(boat, channel) : R::FarTime(boat, info.shortIndex);
            ASSERT_EQ(value, record.F64(place));
            ASSERT_EQ(machine.clock.Days(), record.F64(stamp));
            if (value == 32767.0) continue;
            ASSERT_EQ(1, record.U8(R::Channel(channel) + 2));
            ASSERT_EQ(1, record.U8(R::Boat(boat) + 4));
            ASSERT_GT(Boats(), boat);
        }
    }
}

TEST_F(PublishTest, RefusesAndStoresNothing) {
    record.Set<std::uint8_t>(R::Channel(kBsp) + 1, 1);  // blocked
    record.Set<std::uint8_t>(R::Channel(kAws) + 4, 1);  // held
    SetFlag(52);
    const struct {
        ChannelId channel;
        BoatSlot boat;
    } rows[] = {{kTime, 0}, {414, 0}, {32767, 0}, {0xFFFFFFFF, 0}, {kTws, 100}, {kTws, 0xFFFFFFFF}, {kBsp, 0}, {kAws, 0}};
    for (const auto& row : rows) {
        SCOPED_TRACE(::testing::Message() << "channel " << row.channel << " boat " << row.boat);
        machine.clock.AdvanceMs(100);
        EXPECT_FALSE(Publish(row.channel, 5.0, row.boat));
        EXPECT_EQ(machine.clock.Days(), Own(kTime)) << "the Time channel follows the clock all the same";
        EXPECT_EQ(0u, Boats());
        EXPECT_EQ(0, record.U8(R::SysFlag(38)));
    }
    EXPECT_EQ(kNoValue, Own(kBsp));
    SetFlag(52, false);
    EXPECT_TRUE(Publish(kAws, 5.0)) << "held only counts while the hold is active";
}

TEST_F(PublishTest, NoValueClearsAnEntryAndSignalsNothing) {
    EXPECT_TRUE(Publish(kBsp, kNoValue, 3));
    EXPECT_EQ(machine.clock.Days(), record.F64(R::FarTime(3, 10)));
    EXPECT_EQ(0, record.U8(R::Channel(kBsp) + 2));
    EXPECT_EQ(0, record.U8(R::Boat(3) + 4));
    EXPECT_EQ(0, record.U8(R::SysFlag(38)));
    EXPECT_EQ(0u, Boats());
}

TEST_F(PublishTest, AValueWithoutAPlaceStillSignals) {
    EXPECT_FALSE(Publish(kRot, 1.0, 5));
    EXPECT_EQ(1, record.U8(R::Channel(kRot) + 2));
    EXPECT_EQ(1, record.U8(R::SysFlag(38)));
    EXPECT_EQ(0u, Boats());
}

TEST_F(PublishTest, TheHighestBoatSetsTheCountAndFollowsTheTimeChannel) {
    Publish(kBsp, 6.0, 7);
    EXPECT_EQ(8u, Boats());
    Publish(kBsp, 6.0, 2);
    EXPECT_EQ(8u, Boats());
    machine.clock.AdvanceMs(1000);
    core->StampTime();
    const double now = machine.clock.Days();
    for (const std::size_t place : {R::Time(0, 0), R::Value(0, 0), R::Damped(0, 0), R::Value(1, 0), R::FarTime(7, 0),
                                    R::FarValue(2, 0), R::FarDamped(7, 0)}) {
        EXPECT_EQ(now, record.F64(place)) << place;
    }
    EXPECT_EQ(0.0, record.F64(R::Aux(1, 0)));
    EXPECT_EQ(0.0, record.F64(R::FarTime(8, 0)));
}

TEST_F(PublishTest, ACountThatAnotherProgramSpoiledReachesNoFurtherThanTheBoats) {
    for (const std::uint32_t count : {101u, 0x80000000u, 0xFFFFFFFFu}) {
        record.Set(R::kBoatCount, count);
        core->StampTime();
        EXPECT_EQ(machine.clock.Days(), record.F64(R::FarTime(99, 0)));
        EXPECT_EQ(0, record.I32(166312)) << "the record's tail is as it was";
    }
}

TEST_F(PublishTest, TheTimeOfTheCallIsKept) {
    Publish(kBsp, 6.0, 0, 46000.25);
    EXPECT_EQ(46000.25, OwnTime(kBsp));
}

TEST_F(PublishTest, OneReadingOfTheClockServesOnePublication) {
    SetFlag(27);
    Publish(kHdg, 100.0);
    machine.clock.readings = 0;
    Publish(kHdg, 110.0);
    EXPECT_EQ(1, machine.clock.readings);
}

TEST_F(PublishTest, TheMastAngleOfTheOwnBoatCorrectsAwa) {
    Publish(kAwa, 30.0);
    Publish(kMastAng, 12.0);
    Publish(kAwa, 31.0);
    EXPECT_EQ(31.0, Own(kAwa)) << "not before the flag is set";
    SetFlag(33);
    Publish(kAwa, 31.0);
    EXPECT_EQ(19.0, Own(kAwa));
    Publish(kAwa, -175.0);
    EXPECT_EQ(-187.0, Own(kAwa)) << "not wrapped again";
    Publish(kAwa, 31.0, 4);
    EXPECT_EQ(19.0, record.F64(R::FarValue(4, 8)));
    Publish(kMastAng, kNoValue);
    Publish(kAwa, 31.0);
    EXPECT_EQ(31.0, Own(kAwa));
}

TEST_F(PublishTest, RatesComeFromTheEntryBefore) {
    const struct {
        ChannelId channel, rate;
        std::size_t flag;
    } rows[] = {{kHdg, kRot, 27}, {kHeel, kHeelRate, 24}, {kTrim, kTrimRate, 24}};
    for (const auto& row : rows) {
        SCOPED_TRACE(::testing::Message() << "channel " << row.channel);
        for (const BoatSlot boat : {0u, 1u}) {
            const auto rate = [&] { return record.F64(R::Value(boat, row.rate)); };
            SetFlag(row.flag, false);
            Publish(row.channel, 10.0, boat);
            machine.clock.AdvanceMs(1000);
            Publish(row.channel, 20.0, boat);
            EXPECT_EQ(kNoValue, rate()) << "the flag is clear";
            SetFlag(row.flag);
            machine.clock.AdvanceMs(500);
            Publish(row.channel, 24.0, boat);
            EXPECT_NEAR(8.0, rate(), 1e-4);
            EXPECT_EQ(machine.clock.Days(), record.F64(R::Time(boat, row.rate)));
            EXPECT_EQ(0, record.U8(R::Channel(row.rate) + 2)) << "a derived channel is not marked as published";
            Publish(row.channel, 30.0, boat);
            EXPECT_NEAR(8.0, rate(), 1e-4) << "no time has passed";
            Publish(row.channel, kNoValue, boat);
            machine.clock.AdvanceMs(500);
            Publish(row.channel, 31.0, boat);
            EXPECT_NEAR(8.0, rate(), 1e-4) << "there was no value before";
        }
    }
}

TEST_F(PublishTest, AHeadingThatPassesNorthGivesItsLargeRate) {
    SetFlag(27);
    Publish(kHdg, 359.0);
    machine.clock.AdvanceMs(1000);
    Publish(kHdg, 1.0);
    EXPECT_NEAR(-358.0, Own(kRot), 0.01);
}

TEST_F(PublishTest, TheSecondRudderGivesTheToe) {
    const struct {
        ChannelId first, second;
        double firstValue, secondValue;
    } rows[] = {{kRudderP, kRudderS, 5.0, 3.0}, {kRudderS, kRudderP, 3.0, 5.0}};
    for (const auto& row : rows) {
        Publish(kRudderP, kNoValue);
        Publish(kRudderS, kNoValue);
        Publish(row.first, row.firstValue);
        const double before = Own(kRudderToe);
        Publish(row.second, row.secondValue);
        EXPECT_EQ(2.0, Own(kRudderToe)) << "before: " << before;
        record.Set(R::Value(0, kRudderToe), 99.0);
    }
    Publish(kRudderP, 5.0, 6);
    Publish(kRudderS, 1.0, 6);
    EXPECT_EQ(99.0, Own(kRudderToe)) << "a far boat has no place for it";
}

TEST_F(PublishTest, GpsTimeGivesItsOffsetAndMakesTheBoatActive) {
    Publish(kGpsTime, machine.clock.Days() - 0.5, 1);
    EXPECT_EQ(0.5, record.F64(R::Value(1, kGpsTOffset)));
    EXPECT_EQ(1, record.U8(R::Boat(1) + 4));
    EXPECT_EQ(2u, Boats());
}

TEST_F(PublishTest, AnOwnChannelPassesBlocksButNotHolds) {
    record.Set<std::uint8_t>(R::Channel(kLogBsp) + 1, 1);
    EXPECT_TRUE(core->SetOwnChannel(kLogBsp, 1234.5, 0.0));
    EXPECT_EQ(1234.5, Own(kLogBsp));
    EXPECT_EQ(1, record.U8(R::Channel(kLogBsp) + 2));
    EXPECT_EQ(0, record.U8(R::SysFlag(38))) << "an own channel is no published data";
    record.Set<std::uint8_t>(R::Channel(kLogBsp) + 4, 1);
    SetFlag(52);
    EXPECT_FALSE(core->SetOwnChannel(kLogBsp, 1.0, 0.0));
    EXPECT_EQ(1234.5, Own(kLogBsp));
}

}  // namespace
}  // namespace twr::testing
