#include <limits>

#include "bridge/instrument_pass.h"
#include "bridge_fixture.h"

namespace twr::testing {
namespace {

using R = RecordBytes;

class ReadPassTest : public BridgeTest {};

TEST(InstrumentValue, BringsAReadingToItsChannel) {
    constexpr float kNone = 32767.0f;
    const struct {
        ChannelId channel;
        float reading;
        bool degreesTrue, feet;
        double variation;
        float value;
    } rows[] = {
        {kHdg, 185.0f, true, false, 10.0, 175.0f},     {kHdg, 185.0f, false, false, 10.0, 185.0f},
        {kHdg, 359.0f, true, false, -5.0, 4.0f},       {kHdg, 3.0f, true, false, 10.0, 353.0f},
        {kCog, 90.0f, true, false, 2.0, 88.0f},        {kTwd, 90.0f, true, false, 2.0, 88.0f},
        {kCourse, 90.0f, true, false, 2.0, 88.0f},     {kSet, 90.0f, true, false, 2.0, 88.0f},
        {kSog, 90.0f, true, false, 2.0, 90.0f},        {kHdg, kNone, true, false, 10.0, kNone},
        {kHdg, 90.0f, true, false, kNoValue, kNone},   {kHdg, 720.0f, true, false, 0.0, 360.0f},
        {kHeel, 5.0f, true, true, 10.0, -5.0f},        {kLeeway, -3.0f, false, false, 0.0, 3.0f},
        {kHeel, kNone, false, false, 0.0, -kNone},     {kDepth, 32.808f, false, true, 0.0, 10.0f},
        {kDepth, 32.808f, false, false, 0.0, 32.808f}, {kBsp, 7.5f, true, true, 10.0, 7.5f},
    };
    for (const auto& row : rows) {
        const float value = InstrumentValue(row.channel, row.reading, {row.degreesTrue, row.feet, row.variation});
        EXPECT_FLOAT_EQ(row.value, value) << "channel " << row.channel << " read " << row.reading;
    }
}

TEST_F(ReadPassTest, ASteadyReadingGoesOutOnceASecond) {
    MapOne(kBsp);
    deckman.variables[12] = 6.5f;
    Run([&] {
        host.Tick();
        const double first = OwnTime(kBsp);
        EXPECT_EQ(6.5, Own(kBsp));
        host.Tick(9);
        EXPECT_EQ(first, OwnTime(kBsp));
        host.Tick(2);
        EXPECT_NEAR(1.05, (OwnTime(kBsp) - first) * 86400, 0.051);
        deckman.variables[12] = 6.6f;
        host.Tick();
        EXPECT_EQ(machine.clock.Days(), OwnTime(kBsp)) << "a change goes out at once";
        EXPECT_EQ(static_cast<double>(6.6f), Own(kBsp));
    });
}

TEST_F(ReadPassTest, EvenAnAbsentReadingGoesOutOnTheFirstTick) {
    MapOne(kBsp);
    deckman.variables[12] = 32767.0f;
    Run([&] {
        host.Tick();
        EXPECT_EQ(machine.clock.Days(), OwnTime(kBsp));
        EXPECT_EQ(kNoValue, Own(kBsp));
        EXPECT_EQ(1, record->U8(R::SysFlag(38))) << "set at the end of every pass";
    });
}

TEST_F(ReadPassTest, TheFilterBelongsToTheChannelNotToTheRow) {
    Variables("1 A\n2 B\n");
    MappingXml("<var twr='1' dfw='1'/><var twr='1' dfw='2' boat='5'/>");
    deckman.variables = {{1, 6.0f}, {2, 6.0f}};
    Run([&] {
        host.Tick();
        EXPECT_EQ(6.0, Own(kBsp));
        EXPECT_EQ(0.0, record->F64(R::FarTime(5, 10))) << "the same value of the same channel has just gone out";
        deckman.variables[2] = 7.0f;
        host.Tick();
        EXPECT_EQ(7.0, record->F64(R::FarValue(5, 10)));
    });
}

TEST_F(ReadPassTest, PositionsComeFromDeckmanOnlyWhenChosen) {
    Variables("1 LAT\n2 LON\n3 COG\n4 SOG\n5 BSP\n");
    MappingXml(
        "<var twr='48' dfw='1'/><var twr='49' dfw='2'/><var twr='50' dfw='3'/><var twr='51' dfw='4'/><var twr='1' dfw='5'/>");
    deckman.variables = {{1, 10.0f}, {2, 20.0f}, {3, 30.0f}, {4, 4.0f}, {5, 5.0f}};
    deckman.latitude = 50.5f;
    deckman.longitude = -1.25f;
    Run([&] {
        host.Tick();
        EXPECT_EQ(std::vector<int>{5}, deckman.reads);
        EXPECT_EQ(0, deckman.positions);
        EXPECT_EQ(kNoValue, Own(kLat));
        record->Set(R::SysInt(6), 3);
        deckman.reads.clear();
        host.Tick();
        EXPECT_EQ((std::vector<int>{1, 2, 3, 4, 5}), deckman.reads);
        EXPECT_EQ(50.5, Own(kLat)) << "the position goes out behind the rows";
        EXPECT_EQ(-1.25, Own(kLon));
        EXPECT_EQ(30.0, Own(kCog));
        host.Tick(3);
        EXPECT_EQ(4, deckman.positions) << "on every tick";
        EXPECT_EQ(machine.clock.Days(), OwnTime(kLat));
    });
}

TEST_F(ReadPassTest, TheTimerSetsTheGunWhileItFalls) {
    Variables("0 TIMER\n10 X\n");
    SaveSetting(u"DfwTimer", DwordValue(1));
    Run([&] {
        const auto gun = [&] { return record->F64(R::SysValue(36)); };
        const struct {
            float reading;
            bool sets;
        } rows[] = {{300, false}, {299, true}, {298, true},  {298, false}, {299, false},
                    {1, true},    {0, false},  {300, false}, {299, true},  {-5, true}};
        for (const auto& row : rows) {
            SCOPED_TRACE(row.reading);
            deckman.variables[0] = row.reading;
            record->Set(R::SysValue(36), 1.0);
            host.Tick();
            EXPECT_EQ(row.sets ? static_cast<double>(row.reading) / 60.0 / 60.0 / 24.0 + machine.clock.Days() : 1.0, gun());
        }
        host.SetChecked(kTimerCheck, false);
        deckman.reads.clear();
        host.Tick();
        EXPECT_TRUE(deckman.reads.empty());
        host.SetChecked(kTimerCheck, true);
        deckman.variables[0] = 300.0f;
        host.Tick();
        deckman.variables[0] = 100.0f;
        host.PickFolder(machine.folder.File("Deckman"));
        record->Set(R::SysValue(36), 1.0);
        host.Tick();
        EXPECT_EQ(1.0, gun()) << "the first reading after a reload sets nothing";
    });
}

TEST_F(ReadPassTest, TrueBearingsNeedTheVariationOfTheRecord) {
    Variables("12 HDG\n13 VARIATION\n");
    MappingXml("<var twr='93' dfw='13'/><var twr='13' dfw='12'/>");
    SaveSetting(u"DfwTrue", DwordValue(1));
    deckman.variables = {{12, 185.0f}, {13, 32767.0f}};
    Run([&] {
        host.Tick();
        EXPECT_EQ(kNoValue, Own(kHdg));
        deckman.variables[13] = 10.0f;
        host.Tick();
        EXPECT_EQ(175.0, Own(kHdg)) << "the row before has just published it";
        host.SetChecked(kTrueCheck, false);
        host.Tick();
        EXPECT_EQ(185.0, Own(kHdg)) << "a click takes effect on the next tick";
    });
}

TEST_F(ReadPassTest, RowsThatNameNoChannelMakeNoCall) {
    MapOne(kTime);
    Run([&] {
        host.Tick();
        EXPECT_TRUE(deckman.reads.empty());
    });
}

TEST_F(ReadPassTest, AMissingFunctionStopsOnlyItsOwnStep) {
    Variables("1 BSP\n9 TIMER\n");
    MappingXml("<var twr='1' dfw='1'/>");
    SaveSetting(u"DfwTimer", DwordValue(1));
    const struct {
        std::string missing;
        bool rows, position;
    } rows[] = {{"Usr_Read", false, true}, {"Usr_GetPosition", true, false}, {"Usr_SetISData", true, true}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.missing);
        deckman.missing = {row.missing};
        deckman.reads.clear();
        deckman.positions = 0;
        Run([&] {
            record->Set(R::SysInt(6), 3);
            record->Set<std::uint8_t>(R::SysFlag(38), 0);
            host.Tick();
            EXPECT_EQ(row.rows, !deckman.reads.empty());
            EXPECT_EQ(row.position, deckman.positions == 1);
            EXPECT_EQ(1, record->U8(R::SysFlag(38)));
        });
        other.reset();
    }
}

// A day of ticks at the true pace of the clock: neither values nor time stamps drift, and nothing piles up.
TEST_F(ReadPassTest, ADayOfTicksStaysTrue) {
    Variables("1 BSP\n2 HDG\n9 TIMER\n");
    MappingXml("<var twr='1' dfw='1'/><var twr='13' dfw='2'/>");
    SaveSetting(u"DfwTimer", DwordValue(1));
    Run([&] {
        const double start = machine.clock.Days();
        constexpr int kTicks = 24 * 60 * 60 * 10;
        for (int tick = 0; tick < kTicks; ++tick) {
            deckman.variables = {{1, 5.0f + static_cast<float>(tick % 100) / 50},
                                 {2, static_cast<float>(tick % 360)},
                                 {9, static_cast<float>(300 - tick / 10 % 301)}};
            deckman.reads.clear();
            host.Tick();
            ASSERT_EQ(3u, deckman.reads.size());
        }
        EXPECT_NEAR(1.0, machine.clock.Days() - start, 1e-9);
        EXPECT_EQ(machine.clock.Days(), OwnTime(kBsp));
        EXPECT_EQ(static_cast<double>(deckman.variables[1]), Own(kBsp));
        EXPECT_EQ(1u, record->Get<std::uint32_t>(R::kBoatCount));
    });
}

}  // namespace
}  // namespace twr::testing
