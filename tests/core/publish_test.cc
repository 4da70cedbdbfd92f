#include <algorithm>
#include <set>

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
        {kAwa, kNoValue, kNoValue}, {kMastAng, 190.0, 190.0}, {kMastAng, 361, kNoValue}, {kUser30, -10.0, 350.0},
        {kUser31, -10.0, -10.0},    {kAwa, -540.0, -180.0},   {kTwd, 0.0, 0.0},
    };
    for (const ChannelId user : {kUser30, kUser31}) record.Set<std::int16_t>(R::Channel(user) + 10, kTypeBearing);
    for (const auto& row : rows) {
        SCOPED_TRACE(::testing::Message() << "channel " << row.channel << " published " << row.published);
        EXPECT_TRUE(Publish(row.channel, row.published));
        EXPECT_EQ(row.stored, Own(row.channel));
    }
}

TEST_F(PublishTest, EveryChannelHasItsPlaceInTheStoreOfTheBoat) {
    for (const BoatSlot boat : {0u, 1u, 2u, 99u}) {
        std::set<std::size_t> places;
        for (ChannelId channel = 1; channel < kChannelCount; ++channel) {
            SCOPED_TRACE(::testing::Message() << "channel " << channel << " of boat " << boat);
            const ChannelInfo& info = ChannelCatalogue()[channel];
            EXPECT_EQ(channel, info.id);
            const bool hasEntry = boat < 2 || info.shortIndex < 34;
            const double value = std::min<double>(info.max, 90.0);  // in range, and nothing that wraps
            machine.clock.AdvanceMs(7);
            ASSERT_EQ(hasEntry, Publish(channel, value, boat));
            if (!hasEntry) continue;
            const std::size_t place = boat < 2 ? R::Value(boat, channel) : R::FarValue(boat, info.shortIndex);
            EXPECT_TRUE(places.insert(place).second) << "is another channel's";
            EXPECT_EQ(value, record.F64(place));
            EXPECT_EQ(machine.clock.Days(), record.F64(boat < 2 ? R::Time(boat, channel) : R::FarTime(boat, info.shortIndex)));
            EXPECT_EQ(1, record.U8(R::Channel(channel) + 2));
            EXPECT_EQ(1, record.U8(R::Boat(boat) + 4));
            EXPECT_EQ(boat + 1, Boats());
        }
        EXPECT_EQ(boat < 2 ? 413u : 33u, places.size()) << "and the Time channel";
    }
}

TEST_F(PublishTest, RefusesAndStoresNothing) {
    record.Set<std::uint8_t>(R::Channel(kBsp) + 1, 1);  // blocked
    record.Set<std::uint8_t>(R::Channel(kAws) + 4, 1);  // held
    SetFlag(kFlagHoldActive);
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
    SetFlag(kFlagHoldActive, false);
    EXPECT_TRUE(Publish(kAws, 5.0)) << "held only counts while the hold is active";
}

TEST_F(PublishTest, OnlyARealValueSignalsEvenWithoutAPlace) {
    EXPECT_TRUE(Publish(kBsp, kNoValue, 3, 46000.25));
    EXPECT_EQ(46000.25, record.F64(R::FarTime(3, 10))) << "the time of the call";
    EXPECT_EQ(0, record.U8(R::Channel(kBsp) + 2));
    EXPECT_EQ(0, record.U8(R::Boat(3) + 4));
    EXPECT_EQ(0, record.U8(R::SysFlag(38)));
    EXPECT_FALSE(Publish(kRot, 1.0, 5));
    EXPECT_EQ(1, record.U8(R::Channel(kRot) + 2));
    EXPECT_EQ(1, record.U8(R::SysFlag(38)));
    EXPECT_EQ(0u, Boats());
}

TEST_F(PublishTest, AnOwnChannelPassesBlocksButNotHolds) {
    record.Set<std::uint8_t>(R::Channel(kLogBsp) + 1, 1);
    EXPECT_TRUE(core->SetOwnChannel(kLogBsp, 1234.5, 0.0));
    EXPECT_EQ(1234.5, Own(kLogBsp));
    EXPECT_EQ(1, record.U8(R::Channel(kLogBsp) + 2));
    EXPECT_EQ(0, record.U8(R::SysFlag(38))) << "an own channel is no published data";
    record.Set<std::uint8_t>(R::Channel(kLogBsp) + 4, 1);
    SetFlag(kFlagHoldActive);
    EXPECT_FALSE(core->SetOwnChannel(kLogBsp, 1.0, 0.0));
    EXPECT_EQ(1234.5, Own(kLogBsp));
}

TEST_F(PublishTest, TheHighestBoatSetsTheCountAndFollowsTheTimeChannel) {
    Publish(kBsp, 6.0, 7);
    Publish(kBsp, 6.0, 2);
    EXPECT_EQ(8u, Boats());
    machine.clock.AdvanceMs(1000);
    core->StampTime();
    for (const std::size_t place : {R::Time(0, 0), R::Value(0, 0), R::Damped(0, 0), R::Value(1, 0), R::FarTime(7, 0),
                                    R::FarValue(2, 0), R::FarDamped(7, 0)}) {
        EXPECT_EQ(machine.clock.Days(), record.F64(place)) << place;
    }
    EXPECT_EQ(0.0, record.F64(R::Aux(1, 0)));
    EXPECT_EQ(0.0, record.F64(R::FarTime(8, 0)));
    for (const std::uint32_t spoiled : {101u, 0x80000000u, 0xFFFFFFFFu}) {  // by another program
        record.SetBoatCount(spoiled);
        core->StampTime();
        EXPECT_EQ(machine.clock.Days(), record.F64(R::FarTime(99, 0)));
        EXPECT_EQ(0, record.I32(166312)) << "the record's tail is as it was";
    }
}

TEST_F(PublishTest, OtherChannelsFollowAtOnce) {
    const struct {
        ChannelId channel;
        double value;
        BoatSlot boat;
        std::size_t place;
        double held;
        const char* why;
    } steps[] = {
        {kMastAng, 12.0, 0, R::Value(0, kMastAng), 12.0, "the mast itself"},
        {kAwa, 31.0, 0, R::Value(0, kAwa), 19.0, "less the mast's angle"},
        {kAwa, -175.0, 0, R::Value(0, kAwa), -187.0, "not wrapped again"},
        {kAwa, 31.0, 4, R::FarValue(4, 8), 19.0, "the own boat's mast for every boat"},
        {kMastAng, kNoValue, 0, R::Value(0, kMastAng), kNoValue, "the mast itself"},
        {kAwa, 31.0, 0, R::Value(0, kAwa), 31.0, "no mast's angle"},
        {kRudderP, 5.0, 0, R::Value(0, kRudderToe), kNoValue, "one rudder alone"},
        {kRudderS, 3.0, 0, R::Value(0, kRudderToe), 2.0, "port less starboard"},
        {kRudderP, 7.0, 0, R::Value(0, kRudderToe), 4.0, "port less starboard in the other order"},
        {kRudderP, 5.0, 6, R::Value(0, kRudderToe), 4.0, "another boat's"},
        {kRudderS, 1.0, 6, R::Value(0, kRudderToe), 4.0, "a far boat has no place for it"},
        {kGpsTime, machine.clock.Days() - 0.5, 1, R::Value(1, kGpsTOffset), 0.5, "behind the clock"},
    };
    SetFlag(kFlagMastAngle);
    for (const auto& step : steps) {
        Publish(step.channel, step.value, step.boat);
        EXPECT_EQ(step.held, record.F64(step.place)) << step.why;
    }
    SetFlag(kFlagMastAngle, false);
    Publish(kMastAng, 12.0);
    Publish(kAwa, 31.0);
    EXPECT_EQ(31.0, Own(kAwa)) << "not while the flag is clear";
}

TEST_F(PublishTest, RatesComeFromTheEntryBefore) {
    const struct {
        bool flag;
        int ms;  // since the step before
        double value, rate;
        const char* why;
    } steps[] = {
        {true, 0, 10.0, kNoValue, "there was no entry before"}, {false, 1000, 20.0, kNoValue, "the flag is clear"},
        {true, 500, 24.0, 8.0, "4 in half a second"},           {true, 0, 30.0, 8.0, "no time has passed"},
        {true, 500, kNoValue, 8.0, "there is no value"},        {true, 500, 31.0, 8.0, "there was no value before"},
    };
    const struct {
        ChannelId channel, rate;
        std::size_t flag;
    } rows[] = {{kHdg, kRot, 27}, {kHeel, kHeelRate, 24}, {kTrim, kTrimRate, 24}};
    for (const auto& row : rows) {
        for (const BoatSlot boat : {0u, 1u}) {
            for (const auto& step : steps) {
                SCOPED_TRACE(::testing::Message() << "channel " << row.channel << " of boat " << boat << ": " << step.why);
                SetFlag(row.flag, step.flag);
                machine.clock.AdvanceMs(step.ms);
                Publish(row.channel, step.value, boat);
                EXPECT_NEAR(step.rate, record.F64(R::Value(boat, row.rate)), 1e-4);
            }
            EXPECT_NEAR(machine.clock.Days() - 1.0 / 86400, record.F64(R::Time(boat, row.rate)), 1e-9) << "of the one rate";
            EXPECT_EQ(0, record.U8(R::Channel(row.rate) + 2)) << "a derived channel is not marked as published";
        }
    }
}

TEST_F(PublishTest, AHeadingThatPassesNorthGivesItsLargeRateOnOneReadingOfTheClock) {
    SetFlag(kFlagDeriveRot);
    Publish(kHdg, 359.0);
    machine.clock.AdvanceMs(1000);
    machine.clock.readings = 0;
    Publish(kHdg, 1.0);
    EXPECT_EQ(1, machine.clock.readings);
    EXPECT_NEAR(-358.0, Own(kRot), 0.01);
}

}  // namespace
}  // namespace twr::testing
