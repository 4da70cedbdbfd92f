#include "pass_fixture.h"

namespace twr::testing {
namespace {

using R = RecordBytes;
using Reads = std::vector<int>;

class InstrumentPassTest : public PassTest {};

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

TEST_F(InstrumentPassTest, ASteadyReadingGoesOutOnceASecond) {
    const std::tuple<ChannelId, float, const char*> rows[] = {{kBsp, 6.5f, "a value"}, {kAws, 32767.0f, "even an absent one"}};
    for (const auto& [channel, reading, what] : rows) {
        SCOPED_TRACE(what);
        variables = {Mapped(channel, 12)};
        deckman.variables[12] = reading;
        Tick();
        const double first = machine.clock.Days();
        EXPECT_EQ(first, OwnTime(channel));
        EXPECT_EQ(reading, Own(channel));
        EXPECT_EQ(1, record.U8(R::SysFlag(38))) << "set at the end of every pass";
        Tick(9);
        EXPECT_EQ(first, OwnTime(channel));
        Tick(2);
        EXPECT_NEAR(1.05, (OwnTime(channel) - first) * 86400, 0.051);
        deckman.variables[12] = 6.6f;
        Tick();
        EXPECT_EQ(machine.clock.Days(), OwnTime(channel)) << "a change goes out at once";
        EXPECT_EQ(6.6f, Own(channel));
    }
}

TEST_F(InstrumentPassTest, TheFilterBelongsToTheChannelNotToTheRow) {
    variables = {Mapped(kBsp, 1), Mapped(kBsp, 2, 5)};
    deckman.variables = {{1, 6.0f}, {2, 6.0f}};
    Tick();
    EXPECT_EQ(6.0, Own(kBsp));
    EXPECT_EQ(0.0, record.F64(R::FarTime(5, 10))) << "the same value of the same channel has just gone out";
    deckman.variables[2] = 7.0f;
    Tick();
    EXPECT_EQ(7.0, record.F64(R::FarValue(5, 10)));
}

TEST_F(InstrumentPassTest, PositionsComeFromDeckmanOnlyWhenChosen) {
    const ChannelId channels[] = {kLat, kLon, kCog, kSog, kBsp};
    for (int i = 0; i < 5; ++i) {
        variables.push_back(Mapped(channels[i], i));
        deckman.variables[i] = 10.0f + static_cast<float>(i);
    }
    deckman.latitude = 50.5f;
    deckman.longitude = -1.25f;
    EXPECT_EQ(Reads{4}, TickReads());
    EXPECT_EQ(0, deckman.positions);
    EXPECT_EQ(kNoValue, Own(kLat));
    record.SetInt(6, 3);
    EXPECT_EQ((Reads{0, 1, 2, 3, 4}), TickReads());
    EXPECT_EQ(50.5, Own(kLat)) << "the position goes out behind the rows";
    EXPECT_EQ(-1.25, Own(kLon));
    EXPECT_EQ(12.0, Own(kCog));
    Tick(3);
    EXPECT_EQ(4, deckman.positions) << "on every tick";
    EXPECT_EQ(machine.clock.Days(), OwnTime(kLat));
}

TEST_F(InstrumentPassTest, TheTimerSetsTheGunWhileItFalls) {
    timer = 0;
    settings.useTimer = true;
    const struct {
        float reading;
        bool sets, forgets = false;
    } rows[] = {{300, false}, {299, true},  {298, true}, {298, false},       {299, false}, {1, true},
                {0, false},   {300, false}, {299, true}, {200, false, true}, {-5, true}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.reading);
        if (row.forgets) instruments.ForgetTimer();
        deckman.variables[0] = row.reading;
        record.SetValue(36, 1.0);
        Tick();
        const double gun = static_cast<double>(row.reading) / 60.0 / 60.0 / 24.0 + machine.clock.Days();
        EXPECT_EQ(row.sets ? gun : 1.0, record.F64(R::SysValue(36)));
    }
    settings.useTimer = false;
    EXPECT_EQ(Reads{}, TickReads());
}

TEST_F(InstrumentPassTest, TrueBearingsNeedTheVariationOfTheRecord) {
    variables = {Mapped(kMagVar, 13), Mapped(kHdg, 12)};
    settings.degreesTrue = true;
    deckman.variables = {{12, 185.0f}, {13, 32767.0f}};
    Tick();
    EXPECT_EQ(kNoValue, Own(kHdg));
    deckman.variables[13] = 10.0f;
    Tick();
    EXPECT_EQ(175.0, Own(kHdg)) << "the row before has just published it";
}

TEST_F(InstrumentPassTest, ReadsOnlyWhatItCan) {
    record.SetInt(6, 3);
    timer = 9;
    settings.useTimer = true;
    const struct {
        std::string missing;
        MappingVar row;
        Reads reads;
        bool position;
    } rows[] = {
        {"Usr_Read", Mapped(kBsp, 1), {}, true},
        {"Usr_GetPosition", Mapped(kBsp, 1), {1, 9}, false},
        {"Usr_SetISData", Mapped(kBsp, 1), {1, 9}, true},
        {"", Mapped(kTime, 1), {9}, true},
        {"", Mapped(414, 1), {9}, true},
        {"", Mapped(kBsp, kNoInt), {9}, true},
    };
    for (const auto& row : rows) {
        LoadLibrary(row.missing);
        variables = {row.row};
        deckman.positions = 0;
        SetFlag(38, false);
        EXPECT_EQ(row.reads, TickReads()) << row.missing << row.row.channel;
        EXPECT_EQ(row.position, deckman.positions == 1) << row.missing;
        EXPECT_EQ(1, record.U8(R::SysFlag(38)));
    }
}

}  // namespace
}  // namespace twr::testing
