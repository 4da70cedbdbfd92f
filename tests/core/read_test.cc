// SPDX-License-Identifier: MIT
// What comes out of the record: a channel's value, the channel that an alternating one stands for, and the user's units.

#include "base/wide_text.h"
#include "core/alternates.h"
#include "core/units.h"
#include "support/core_fixture.h"

namespace twr::testing {
namespace {

using R = RecordBytes;
constexpr double X = kNoValue;
constexpr double kOneSecond = 1.0 / 86400.0;

struct ReadTest : CoreTest {
    ReadTest() { record.SetBoatCount(5); }

    void Hold(BoatSlot boat, ChannelId channel, double value, double ageSeconds = 0.0) {
        record.SetEntry(boat, channel, value, machine.clock.Days() - ageSeconds * kOneSecond, X);
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
    std::string Label(ChannelId channel) { return ToUtf8(UnitLabel(core->ChannelTypeOf(channel), UnitSettingsOf(*core->View()))); }
};

TEST_F(ReadTest, FindsNothingBeyondTheBoatsInUse) {
    Hold(0, kBsp, 7.0);
    Hold(1, kBsp, 8.0);
    EXPECT_EQ(7.0, Read(kBsp));
    EXPECT_EQ(8.0, Read(kBsp, 1));
    record.SetBoatCount(1);
    EXPECT_EQ(X, Read(kBsp, 1));
    record.SetBoatCount(0);
    EXPECT_TRUE(Read(kBsp) == X && Fresh(kBsp) == X);
    record.SetBoatCount(4000000000u);  // by another program
    for (const std::uint32_t none : {414u, 32767u, ~0u})
        EXPECT_TRUE(Read(kBsp, none) == X && Fresh(kBsp, none) == X && Fresh(none) == X);
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
    for (const BoatSlot boat : {1u, 3u}) EXPECT_EQ(10.0 * boat + 1.0, Read(kAwa, boat, true, true));
    EXPECT_TRUE(Read(kCourse, 3) == X && Fresh(kCourse, 3) == X) << "no short index";
}

TEST_F(ReadTest, MakesBearingsTrue) {
    // own, far, bearing: variation of boats 0 and 3, bearing of boat 3
    // bySetting: the user's, rather than the caller's
    const std::tuple<double, double, double, bool, double> rows[] = {
        {10.0, X, 355.0, false, 5.0},  {-5.0, X, 3.0, false, 358.0},  {X, X, 3.0, false, X},    {10.0, 2.0, 355.0, false, 357.0},
        {X, 2.0, 355.0, false, 357.0}, {10.0, 2.0, 355.0, true, 5.0}, {X, 2.0, 355.0, true, X}, {0.0, X, 360.0, false, 0.0}};
    for (const auto& [own, far, bearing, bySetting, expected] : rows) {
        record.SetEntry(0, 93, own, 0.0, X);
        record.SetFarEntry(3, 1, far, 0.0, X);
        record.SetFarEntry(3, 5, bearing, 0.0, X);  // TWD
        SetFlag(kFlagMagnetic, !bySetting);
        EXPECT_DOUBLE_EQ(expected, Read(kTwd, 3, bySetting)) << own << ", " << far << ", " << bearing;
    }
}

// Limits are 10 s for BSP, 60 s for AirTemp and none for Mk Lat; another boat with an MMSI lives by its own limit if that is
// longer.
TEST_F(ReadTest, AValueCountsUntilItsLimitOfAge) {
    // age, maxAge: seconds, days
    const std::tuple<BoatSlot, std::uint32_t, std::int32_t, ChannelId, double, double, bool> rows[] = {
        {0, 0, 0, kBsp, 9.99, X, true},      {0, 0, 0, kBsp, 10.01, X, false},      {0, 0, 0, kBsp, -9.99, X, true},
        {0, 0, 0, kBsp, -10.01, X, false},   {0, 0, 0, kBsp, 10.0, 0.001, true},    {0, 0, 0, kBsp, 10.0, kOneSecond, false},
        {0, 0, 0, kAirTemp, 59.9, X, true},  {0, 0, 0, kAirTemp, 61.0, X, false},   {0, 0, 0, kMkLat, 1e9, kOneSecond, true},
        {1, 0, 32767, kBsp, 11.0, X, false}, {1, 5, 32767, kBsp, 32760.0, X, true}, {1, 5, 32767, kBsp, 32770.0, X, false},
        {1, 5, 3, kBsp, 9.0, X, true},       {1, 5, -1, kBsp, 1e6, X, true},        {1, 5, 65556, kBsp, 19.0, X, true},
        {1, 5, 65556, kBsp, 21.0, X, false}, {0, 5, 32767, kBsp, 11.0, X, false},   {1, 5, 65536, kBsp, 1e6, X, true}};
    for (const auto& [boat, mmsi, ageLimit, channel, age, maxAge, fresh] : rows) {
        record.Set(R::Boat(boat), ageLimit), record.Set(R::Boat(boat) + 72, mmsi);
        Hold(boat, channel, 7.0, age);
        EXPECT_EQ(fresh, Fresh(channel, boat, maxAge) != X)
            << channel << " of " << boat << ", " << age << " s old, by " << ageLimit;
    }
    for (const ChannelId channel : {kBsp, kMkLat}) record.SetEntry(0, channel, 7.0, 0.0, X);
    EXPECT_EQ(X, Fresh(kBsp, 0, 1e6)) << "never written";
    EXPECT_EQ(7.0, Fresh(kMkLat)) << "its time is not looked at";
    record.SetSlot(0, 2, kBsp);
    machine.clock.readings = 0;
    Fresh(kAlt0);
    EXPECT_EQ(1, machine.clock.readings);
}

TEST_F(ReadTest, AnAlternatingChannelGoesByTheStateOfTheBoat) {
    // flags: 1: slot 0 rather than 1, 2: slot 8
    // slot: -1 for none
    const std::tuple<const char*, double, double, double, double, int, int> rows[] = {
        {"", 1, 40, 42, 10, 3, -1},     {"3", X, 30, 42, 10, 0, 3},     {"01258", 1, 40, 42, 10, 3, 8},
        {"0125", 1, 40, 42, 10, 3, 5},  {"01258", 0, 40, 42, 10, 0, 5}, {"01258", -1, 40, 42, 10, 0, 1},
        {"01258", X, 40, 42, 10, 1, 0}, {"1246", X, 40, 42, 10, 1, 2},  {"23467", X, 60, 42, 10, 0, 3},
        {"2467", X, 60, 42, 10, 0, 7},  {"2467", X, -60, 42, 10, 0, 6}, {"234", X, -51, -42, -10, 0, 2},
        {"234", X, 52, 42, 10, 0, 3},   {"234", X, 130, 140, 10, 0, 3}, {"234", X, -131, 140, 10, 0, 4},
        {"24", X, 90, 90, 10, 0, 4},    {"234", X, -89, X, 10, 0, 2},   {"26", X, -30, X, 10, 0, 6},
        {"67", X, 0, X, 10, 0, 7},      {"678", X, X, 42, 10, 0, 6}};
    for (const auto& [filled, toGun, twa, target, margin, flags, slot] : rows) {
        std::array<std::int32_t, 9> slots;
        slots.fill(kNoInt);
        for (const char* digit = filled; *digit; ++digit) slots[static_cast<std::size_t>(*digit - '0')] = *digit - '0';
        const SailingState state = {toGun, twa, target, margin, flags % 2 != 0, flags > 1};
        const std::int32_t chosen = ChooseAlternate(slots, state);
        EXPECT_EQ(slot, chosen == kNoInt ? -1 : chosen) << filled << ", gun " << toGun << ", TWA " << twa;
    }
}

TEST_F(ReadTest, AChainOfAlternatesIsFollowedForOneStepWhereverItLeads) {
    const std::int32_t slots[][2] = {{0, 118}, {1, 119}, {2, 117}, {3, 120}, {5, -1}, {6, 414}, {7, 40000}};  // row, channel
    for (const auto& [row, channel] : slots) record.SetSlot(static_cast<std::size_t>(row), 1, channel);
    const ChannelId rows[][3] = {{0, 0, 0},           {116, 116, 116},     {127, 127, 127},     {413, 413, 413},
                                 {414, 32767, 32767}, {~0u, 32767, 32767}, {117, 118, 119},     {120, 120, 120},
                                 {121, 32767, 32767}, {122, 32767, 32767}, {123, 32767, 32767}, {124, 32767, 32767}};
    for (const auto& [channel, without, with] : rows) {
        EXPECT_EQ(without, core->ResolveAlternate(channel, false)) << channel;
        EXPECT_EQ(with, core->ResolveAlternate(channel, true)) << channel;
    }
    for (const ChannelId channel : {117, 120, 122}) EXPECT_TRUE(Read(channel) == X && Fresh(channel) == X) << channel;
}

TEST_F(ReadTest, AnAlternatingChannelGoesByTheOwnBoatWhicheverIsRead) {
    record.SetSlot(0, 2, kBsp), record.SetSlot(0, 3, kHeel), record.SetSlot(0, 4, kSog);  // upwind, reaching, downwind
    record.SetSlot(0, 5, kBurn);                                                          // before the start
    record.SetValue(7, 20.0);                                                             // degrees round the target
    const std::tuple<ChannelId, double, BoatSlot, ChannelId> steps[] = {{kTwa, -40.0, 0, kBsp},    {kTwa, 150.0, 1, kBsp},
                                                                        {kTargTwa, 30.0, 0, kBsp}, {kTargTwa, 10.0, 0, kHeel},
                                                                        {kTwa, 170.0, 0, kSog},    {kTmToGun, 0.0, 0, kBurn}};
    for (const auto& [published, value, boat, chosen] : steps) {
        Publish(published, value, boat);
        EXPECT_EQ(chosen, core->ResolveAlternate(kAlt0, true)) << published << " of " << value;
    }
    Publish(kBurn, 9.0, 1);
    EXPECT_EQ(9.0, Read(kAlt0, 1));
}

// The label names the unit that the value was converted to, also where the conversion leaves the value alone.
TEST_F(ReadTest, ValueAndLabelFollowTheSelector) {
    using Shown = std::vector<std::pair<double, const char*>>;  // by selector, from -1
    const Shown depths = {{X, ""}, {10, "m"}, {5.468, "fth"}, {32.808, "ft"}, {X, ""}};
    const Shown speeds = {{10, "kt"}, {10, "kt"}, {5.144444704055786, "m/s"}, {18.52, "km/hr"}, {10, "kt"}};
    const Shown distances = {
        {10, "nm"}, {10, "nm"}, {1000, "bl"}, {18520, "m"}, {18.52, "km"}, {20253.718285214347, "yd"}, {60761.15485564304, "ft"},
        {10, "nm"}};
    const Shown pressures = {
        {10, "Pa"}, {10, "Pa"}, {0.01, "kPa"}, {0.0014504, "psi"}, {0.0001, "bar"}, {0.0029529983071445, "InHg"}, {10, "Pa"}};
    // shown: for a value of 10
    const std::tuple<ChannelId, std::size_t, const Shown&> rows[] = {
        {kDepth, 1, depths},    {kBsp, 2, speeds},      {kTws, 2, speeds},          {kUser30, 2, speeds},
        {kMkRng, 3, distances}, {kBiasL, 4, distances}, {kEngOilPres, 9, pressures}};
    record.SetValue(0, 18.52);  // 100 boats to the nautical mile
    record.Set<std::int16_t>(R::Channel(kUser30) + 10, kTypeBoatSpeed);
    for (const auto& [channel, setting, shown] : rows) {
        for (const std::size_t other : {1, 2, 3, 4, 9}) record.SetInt(other, 0);
        Hold(0, channel, 10.0);
        for (std::int32_t selector = -1; const auto& [value, label] : shown) {
            SCOPED_TRACE(::testing::Message() << "channel " << channel << " by " << selector);
            record.SetInt(setting, selector++);
            EXPECT_DOUBLE_EQ(value, Read(channel));
            EXPECT_DOUBLE_EQ(value, Fresh(channel));
            EXPECT_EQ(label, Label(channel));
        }
    }
    double value = 0.0;
    record.SetInt(9, 1);
    EXPECT_TRUE(core->GetChannel(kEngOilPres, value, 0, false, true, false));
    EXPECT_EQ(10.0, value) << "not asked to convert";
    record.SetInt(3, 1);
    for (const double length : {0.0, X}) {
        record.SetValue(0, length);
        EXPECT_TRUE(core->ToDisplayUnits(kMkRng, 2.0, X) == 2.0 && Label(kMkRng) == "nm") << length;
    }
}

TEST_F(ReadTest, OtherTypesHaveOneUnitOrGoByAFlag) {
    // flags: degrees Fahrenheit, magnetic
    const std::tuple<ChannelId, bool, double, double, const char*> rows[] = {
        {kMkTwa, false, 350.0, -10.0, "°"},   {kHeel, false, -190.0, 170.0, "°"},
        {kHeel, false, -180.0, -180.0, "°"},  {kHeel, false, 180.0, 180.0, "°"},
        {kVmcPct, false, 50.0, 50.0, "%"},    {kHpe, false, 50.0, 50.0, "m"},
        {kRot, false, 50.0, 50.0, "°/s"},     {kRpm1, false, 50.0, 50.0, ""},
        {kUser31, false, 10.0, 10.0, ""},     {kAirTemp, false, 100.0, 100.0, "°C"},
        {kAirTemp, true, 100.0, 212.0, "°F"}, {kHdg, false, 30.0, 35.0, "°T"},
        {kHdg, true, 30.0, 30.0, "°M"},       {kTwd, true, 360.0, 0.0, "°M"},
        {kTwd, true, -1.0, 359.0, "°M"},      {kTwd, true, X, X, "°M"}};
    record.Set<std::int16_t>(R::Channel(kUser31) + 10, kTypeBoatSpeed);  // has the catalogue's type all the same
    record.SetInt(2, 2);
    for (const auto& [channel, flags, value, shown, label] : rows) {
        for (const std::size_t flag : {kFlagFahrenheit, kFlagMagnetic}) SetFlag(flag, flags);
        EXPECT_EQ(shown, core->ToDisplayUnits(channel, value, 5.0)) << channel << ": " << value;
        EXPECT_EQ(label, Label(channel)) << channel;
    }
    EXPECT_EQ(7.0, core->ToDisplayUnits(kChannelCount, 7.0, X));
}

}  // namespace
}  // namespace twr::testing
