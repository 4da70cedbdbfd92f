// SPDX-License-Identifier: MIT
// What publication and the settings of the suite write into the record.
#include <atomic>
#include <set>
#include <thread>

#include "core/record_access.h"
#include "support/core_fixture.h"

namespace twr::testing {
namespace {

using R = RecordBytes;

class PublishTest : public CoreTest {};

TEST_F(PublishTest, WrapsOneTurnAndThenTestsTheRange) {
    const std::tuple<ChannelId, double, double> rows[] = {
        {kTwd, 0.0, 0.0},        {kTwd, -10.0, 350.0},     {kTwd, 360.0, 0.0},         {kTwd, 720.0, 360.0},
        {kTwd, 721.0, kNoValue}, {kTwd, -360.0, 0.0},      {kTwd, -361.0, kNoValue},   {kAwa, 190.0, -170.0},
        {kAwa, -180.0, -180.0},  {kAwa, 180.0, 180.0},     {kAwa, -181.0, 179.0},      {kAwa, 540.0, 180.0},
        {kAwa, 541.0, kNoValue}, {kAwa, -540.0, -180.0},   {kAwa, kNoValue, kNoValue}, {kHeel, 181.0, -179.0},
        {kRake, 200.0, -160.0},  {kMastAng, 190.0, 190.0}, {kMastAng, 361, kNoValue},  {kLat, 91.0, kNoValue},
        {kLat, -90.0, -90.0},    {kLon, 361.0, kNoValue},  {kBsp, -3.0, -3.0},         {kBsp, 1000.0, 1000.0},
        {kAws, 150.0, 150.0},    {kAws, 150.1, kNoValue},  {kAws, -0.1, kNoValue},     {kUser30, -10.0, 350.0},
        {kUser31, -10.0, -10.0}};
    for (const ChannelId user : {kUser30, kUser31}) record.Set<std::int16_t>(R::Channel(user) + 10, kTypeBearing);
    for (const auto& [channel, published, stored] : rows) {
        EXPECT_TRUE(Publish(channel, published));
        EXPECT_EQ(stored, Own(channel)) << "channel " << channel << " published " << published;
    }
}

TEST_F(PublishTest, EveryChannelHasItsPlaceInTheStoreOfTheBoat) {
    for (const BoatSlot boat : {0u, 1u, 2u, 99u}) {
        std::set<std::size_t> places;
        for (const ChannelInfo& info : ChannelCatalogue().subspan(1)) {
            SCOPED_TRACE(::testing::Message() << "channel " << info.id << " of boat " << boat);
            const bool hasEntry = boat < 2 || info.shortIndex < 34;
            const double value = std::min<double>(info.max, 90.0);  // in range, and nothing that wraps
            machine.clock.AdvanceMs(7);
            ASSERT_EQ(hasEntry, Publish(info.id, value, boat));
            if (!hasEntry) continue;
            const std::size_t place = boat < 2 ? R::Value(boat, info.id) : R::FarValue(boat, info.shortIndex);
            EXPECT_TRUE(places.insert(place).second) << "is another channel's";
            EXPECT_EQ(value, record.F64(place));
            EXPECT_EQ(machine.clock.Days(), record.F64(boat < 2 ? R::Time(boat, info.id) : R::FarTime(boat, info.shortIndex)));
            EXPECT_TRUE(record.U8(R::Channel(info.id) + 2) == 1 && record.U8(R::Boat(boat) + 4) == 1 && Boats() == boat + 1);
        }
        EXPECT_EQ(boat < 2 ? 413u : 33u, places.size()) << "and the Time channel";
    }
}

TEST_F(PublishTest, RefusesAndStoresNothing) {
    record.Set<std::uint8_t>(R::Channel(kBsp) + 1, 1);  // blocked
    record.Set<std::uint8_t>(R::Channel(kAws) + 4, 1);  // held
    SetFlag(kFlagHoldActive);
    const std::pair<ChannelId, BoatSlot> rows[] = {{kTime, 0},  {kChannelCount, 0}, {32767, 0}, {~0u, 0},
                                                   {kTws, 100}, {kTws, ~0u},        {kBsp, 0},  {kAws, 0}};
    for (const auto& [channel, boat] : rows) {
        SCOPED_TRACE(::testing::Message() << "channel " << channel << " boat " << boat);
        machine.clock.AdvanceMs(100);
        EXPECT_FALSE(Publish(channel, 5.0, boat));
        EXPECT_EQ(machine.clock.Days(), Own(kTime)) << "the Time channel follows the clock all the same";
        EXPECT_EQ(0u, Boats() + record.U8(R::SysFlag(38)));
    }
    EXPECT_EQ(kNoValue, Own(kBsp));
    EXPECT_FALSE(core->SetOwnChannel(kAws, 1.0, 0.0));
    EXPECT_TRUE(core->SetOwnChannel(kBsp, 7.5, 0.0)) << "an own channel passes blocks";
    EXPECT_TRUE(Own(kBsp) == 7.5 && record.U8(R::Channel(kBsp) + 2) == 1);
    EXPECT_EQ(0, record.U8(R::SysFlag(38))) << "and is no published data";
    EXPECT_TRUE(core->SetOwnChannel(kTws, kNoValue, 0.0));
    EXPECT_EQ(0, record.U8(R::Channel(kTws) + 2)) << "without a value nothing has been published";
    SetFlag(kFlagHoldActive, false);
    EXPECT_TRUE(Publish(kAws, 5.0)) << "held only counts while the hold is active";
}

TEST_F(PublishTest, OnlyARealValueSignalsEvenWithoutAPlace) {
    EXPECT_TRUE(Publish(kBsp, kNoValue, 3, 46000.25));
    EXPECT_EQ(46000.25, record.F64(R::FarTime(3, 10))) << "the time of the call";
    EXPECT_EQ(0, record.U8(R::Channel(kBsp) + 2) + record.U8(R::Boat(3) + 4) + record.U8(R::SysFlag(38)));
    EXPECT_FALSE(Publish(kRot, 1.0, 5));
    EXPECT_TRUE(record.U8(R::Channel(kRot) + 2) == 1 && record.U8(R::SysFlag(38)) == 1 && Boats() == 0);
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
    EXPECT_EQ(0.0, record.F64(R::Aux(1, 0)) + record.F64(R::FarTime(8, 0)));
    for (const std::uint32_t spoiled : {101u, 0xFFFFFFFFu}) {  // by another program
        record.SetBoatCount(spoiled);
        core->StampTime();
        EXPECT_EQ(machine.clock.Days(), record.F64(R::FarTime(99, 0)));
        EXPECT_EQ(0, record.I32(166312)) << "the record's tail is as it was";
    }
}

TEST_F(PublishTest, OtherChannelsFollowAtOnce) {
    const std::tuple<ChannelId, double, BoatSlot, std::size_t, double, const char*> steps[] = {
        {kMastAng, 12.0, 0, R::Value(0, kMastAng), 12.0, "the mast itself"},
        {kAwa, -175.0, 0, R::Value(0, kAwa), -187.0, "less the mast's angle, not wrapped again"},
        {kAwa, 31.0, 4, R::FarValue(4, 8), 19.0, "the own boat's mast for every boat"},
        {kMastAng, kNoValue, 0, R::Value(0, kMastAng), kNoValue, "the mast itself"},
        {kAwa, 31.0, 0, R::Value(0, kAwa), 31.0, "no mast's angle"},
        {kRudderP, 5.0, 0, R::Value(0, kRudderToe), kNoValue, "one rudder alone"},
        {kRudderS, 3.0, 0, R::Value(0, kRudderToe), 2.0, "port less starboard"},
        {kRudderP, 7.0, 0, R::Value(0, kRudderToe), 4.0, "port less starboard in the other order"},
        {kRudderP, 5.0, 6, R::Value(0, kRudderToe), 4.0, "another boat's"},
        {kRudderS, 1.0, 6, R::Value(0, kRudderToe), 4.0, "a far boat has no place for it"},
        {kGpsTime, machine.clock.Days() - 0.5, 1, R::Value(1, kGpsTOffset), 0.5, "behind the clock"}};
    SetFlag(kFlagMastAngle);
    for (const auto& [channel, value, boat, place, held, why] : steps) {
        Publish(channel, value, boat);
        EXPECT_EQ(held, record.F64(place)) << why;
    }
    SetFlag(kFlagMastAngle, false);
    for (const ChannelId channel : {kMastAng, kAwa}) Publish(channel, 31.0);
    EXPECT_EQ(31.0, Own(kAwa)) << "not while the flag is clear";
}

TEST_F(PublishTest, RatesComeFromTheEntryBefore) {
    // ms: since the step before
    const std::tuple<bool, int, double, double, const char*> steps[] = {
        {true, 0, 10.0, kNoValue, "there was no entry before"}, {false, 1000, 20.0, kNoValue, "the flag is clear"},
        {true, 500, 24.0, 8.0, "4 in half a second"},           {true, 0, 30.0, 8.0, "no time has passed"},
        {true, 500, kNoValue, 8.0, "there is no value"},        {true, 500, 31.0, 8.0, "there was no value before"}};
    const std::tuple<ChannelId, ChannelId, std::size_t> rows[] = {{kHdg, kRot, 27}, {kHeel, kHeelRate, 24}, {kTrim, kTrimRate, 24}};
    for (const auto& [channel, derived, switchedBy] : rows) {
        SCOPED_TRACE(channel);
        for (const auto& [flag, ms, value, rate, why] : steps) {
            SetFlag(switchedBy, flag);
            machine.clock.AdvanceMs(ms);
            Publish(channel, value, 1);
            EXPECT_NEAR(rate, record.F64(R::Value(1, derived)), 1e-4) << why;
        }
        EXPECT_NEAR(machine.clock.Days() - 1.0 / 86400, record.F64(R::Time(1, derived)), 1e-9) << "of the one rate";
        EXPECT_EQ(0, record.U8(R::Channel(derived) + 2)) << "a derived channel is not marked as published";
    }
    SetFlag(kFlagDeriveRot);
    Publish(kHdg, 359.0);
    machine.clock.AdvanceMs(1000);
    machine.clock.readings = 0;
    Publish(kHdg, 1.0);
    EXPECT_EQ(1, machine.clock.readings);
    EXPECT_NEAR(-358.0, Own(kRot), 0.01) << "through north";
}

TEST_F(PublishTest, SettingsAreStoredWithinTheirBounds) {
    const double values[][3] = {{0, 0.5, 1.0},   {0, 30.0, 30.0}, {5, 0.001, 0.01},       {5, 20.0, 10.0},
                                {1, -7.0, -7.0}, {92, 4.0, 4.0},  {7, kNoValue, kNoValue}};
    for (const auto& [index, value, stored] : values) {
        EXPECT_TRUE(core->SetSystemValue(static_cast<std::uint32_t>(index), value));
        EXPECT_EQ(stored, record.F64(R::SysValue(static_cast<std::size_t>(index)))) << index << " set to " << value;
    }
    for (const std::uint32_t index : {93u, ~0u}) EXPECT_FALSE(core->SetSystemValue(index, 1.0));
    EXPECT_EQ(0, record.I32(R::SysInt(0))) << "what stands behind the values is as it was";
    const std::int32_t ints[][3] = {{0, -1, 0}, {0, 99, 99}, {1, 9, 2},   {2, 3, 2}, {3, 6, 5}, {4, 5, 5},    {5, 2, 1},
                                    {6, 7, 6},  {6, -7, 0},  {7, 99, 99}, {8, 4, 2}, {9, 5, 4}, {10, -1, -1}, {12, -9, -9}};
    for (const auto& [index, value, stored] : ints) {
        core->SetSystemInt(static_cast<std::uint32_t>(index), value);
        EXPECT_EQ(stored, record.I32(R::SysInt(static_cast<std::size_t>(index)))) << index << " set to " << value;
    }
    core->SetSystemInt(13, 1);
    EXPECT_EQ(0, record.U8(R::SysFlag(0))) << "what stands behind the ints is as it was";
}

TEST_F(PublishTest, TheGunResetsTheStartOfTheOwnBoatOnly) {
    for (const BoatSlot boat : {0u, 1u}) Publish(kGunBlwLn, 0.25, boat);
    record.Set(R::Damped(0, kGunBlwLn), 0.25), record.Set(R::Aux(0, kGunBlwLn), 0.25);
    machine.clock.AdvanceMs(1000);
    EXPECT_TRUE(core->SetSystemValue(36, 46345.75));
    EXPECT_EQ(46345.75, record.F64(R::SysValue(36)));
    for (const std::size_t place : {R::Value(0, kGunBlwLn), R::Aux(0, kGunBlwLn), R::Damped(0, kGunBlwLn)})
        EXPECT_EQ(kNoValue, record.F64(place)) << place;
    for (const double day : {OwnTime(kGunBlwLn), Own(kTime)}) EXPECT_EQ(machine.clock.Days(), day);
    EXPECT_EQ(0.25, record.F64(R::Value(1, kGunBlwLn)));
}

// A double is never seen half written, not even by a 32-bit process. Both halves differ, so that any mixture is neither.
constexpr double kFirst = 1.2345678901234567, kSecond = -9.8765432109876543e+200;

TEST(TornDouble, IsNeverSeen) {
    alignas(64) double entry = kFirst;
    alignas(64) std::atomic<bool> enough = false;  // a cache line apart
    std::thread writer([&] {
        while (!enough) {
            for (int i = 0; i < 1000; ++i) Put(entry, i % 2 == 0 ? kSecond : kFirst);
        }
    });
    int seen[2] = {}, torn = 0;
    for (int i = 0; i < 2000000000 && torn == 0 && (i < 20000000 || seen[0] == 0 || seen[1] == 0); ++i) {
        const double value = Load(entry);
        torn += value != kFirst && value != kSecond;
        ++seen[value == kFirst];
    }
    enough = true;
    writer.join();
    EXPECT_EQ(0, torn);
    EXPECT_TRUE(seen[0] > 0 && seen[1] > 0) << "both values have been seen";
}

// Two programs at the same record, here as two threads: under the sanitizer of threads any access that is not one atomic access of
// the field's width is a fault. Values are also never seen that were not published.
TEST_F(CoreTest, OneProgramWritesWhileAnotherReads) {
    FakeMachine another;
    const CoreServices own = another.Services();
    const CCore reader({own.clock, own.zone, machine.memory, own.registry, own.files, own.xml, own.desktop});
    ASSERT_EQ(core->View(), reader.View());
    std::atomic<bool> enough = false;
    std::thread writer([&] {
        for (int i = 0; !enough; ++i) {
            for (const BoatSlot boat : {0u, 1u, 2u, 99u}) {
                for (ChannelId channel = 0; channel < kChannelCount; ++channel)
                    Publish(channel, i % 2 == 0 ? 0.75 : kNoValue, boat);
            }
            for (std::uint32_t index = 0; index < kSysValueCount; ++index) core->SetSystemValue(index, 5.0);
            for (std::uint32_t index = 0; index < kSysIntCount; ++index) core->SetSystemInt(index, i % 2);
            core->SetMarksPath(i % 2 == 0 ? u"/a/marks.xml" : u"/another/marks.xml");
            core->LoadAlternatesFile(), core->LoadBoatsFile(), core->LoadChannelsFile();
            SetFieldText(core->View()->dataFolder, i % 2 == 0 ? u"/a" : u"/another");
            SetFieldText(core->View()->channels[kUser0].userShortName, i % 2 == 0 ? u"" : u"another");
        }
    });
    for (int round = 0; round < 10; ++round) {
        for (const BoatSlot boat : {0u, 1u, 2u, 99u}) {
            for (ChannelId channel = 0; channel < kChannelCount; ++channel) {
                double value = 0.0;
                if (reader.GetChannel(channel, value, boat, round % 2 == 0, true, false) && channel == kTwd) {
                    EXPECT_EQ(0.75, value);
                }
                reader.GetFreshChannel(channel, value, boat, false, false, kNoValue);
                reader.ChannelText(channel, 0.75), reader.ChannelName(channel), reader.RemoteLabel(channel);
            }
        }
        EXPECT_FALSE(reader.QuitRequested() || FieldTextIs(reader.View()->dataFolder, u"/nowhere"));
    }
    enough = true;
    writer.join();
}

}  // namespace
}  // namespace twr::testing
