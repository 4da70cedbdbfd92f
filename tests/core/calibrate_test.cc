#include <gtest/gtest.h>

#include <array>

#include "core/core.h"
#include "support/fakes.h"

namespace twr {
namespace {

class Calibration : public ::testing::Test {
protected:
    CalibrationObject& Object(std::size_t index) { return core.Calibrations()[index]; }

    void MarkCalibrated(ChannelId channel) { core.View()->channels[channel].calibrated = 1; }

    // A calibration that gives one correction whatever its inputs.
    void Constant(std::size_t index, double correction) {
        Object(index).active = true;
        Object(index).curves = {{0.0, true, {{0.0, correction}}}};
    }

    // A calibration over one input, on straight lines.
    void Along(std::size_t index, ChannelId self, ChannelId input, std::vector<CalibrationPoint> points) {
        CalibrationObject& object = Object(index);
        object.active = object.linear = true;
        object.self = self;
        object.inputX = input;
        object.curves = {{0.0, true, std::move(points)}};
    }

    double Lookup(std::size_t index, double raw) {
        double out = 1.0;
        const bool found = core.CalibrationLookup(index, out, raw);
        EXPECT_EQ(out != kNoValue, found);
        return out;
    }

    double Stored(ChannelId channel) const { return core.View()->fullBlocks[0].value[channel]; }

    testing::FakeMachine machine;
    CCore core{machine.Services()};
};

constexpr std::size_t kAwaOffset = 4, kAwaTable = 5, kTwaTable = 7, kLeewayFactor = 10, kMastHeight = 16;

TEST_F(Calibration, WithoutTablesOnlyTheRangeStepActs) {
    const struct {
        ChannelId channel;
        double raw, calibrated;
    } rows[] = {
        {kTwd, 123, 123},   {kTwd, 370, 10},    {kTwd, 360, 0},       {kTwd, -10, 350},    {kTwd, 800, 440},
        {kAwa, 190, -170},  {kAwa, 180, 180},   {kAwa, -180, -180},   {kAwa, -190, 170},   {kHeel, 181, -179},
        {kBsp, -0.2, 0},    {kBsp, 7, 7},       {kTws, -3, 0},        {kSeaTemp, -3, -3},  {kTwd, kNoValue, kNoValue},
        {kDepth, -40, -40}, {kUser0, 400, 400}, {kUser31, -400, -400},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(::testing::Message() << "channel " << row.channel << ", raw " << row.raw);
        EXPECT_EQ(row.raw, core.ApplyCalibration(row.channel, row.raw)) << "not marked";
        MarkCalibrated(row.channel);
        EXPECT_EQ(row.calibrated, core.ApplyCalibration(row.channel, row.raw));
    }
    core.View()->channels[kUser0].type = kTypeBearing;
    EXPECT_EQ(40.0, core.ApplyCalibration(kUser0, 400.0));
}

// Each calibration corrects the channel that the catalogue gives for it, and no other.
TEST_F(Calibration, EachCorrectsItsOwnChannel) {
    for (ChannelId channel = 1; channel < kChannelCount; ++channel) MarkCalibrated(channel);
    for (std::size_t index = 0; index < kCalibrationCount; ++index) {
        Constant(index, 2.0);
        for (ChannelId channel = 1; channel < kChannelCount; ++channel) {
            const bool corrected = channel == CalibrationCatalogue()[index].corrected && index != kLeewayFactor;
            EXPECT_EQ(corrected ? 32.0 : 30.0, core.ApplyCalibration(channel, 30.0)) << index << " on channel " << channel;
        }
        Object(index) = {};
    }
}

TEST_F(Calibration, ATrueWindAngleGrowsOnEitherSide) {
    MarkCalibrated(kTwa);
    Constant(kTwaTable, 2.0);
    EXPECT_EQ(-32.0, core.ApplyCalibration(kTwa, -30.0));
    EXPECT_EQ(32.0, core.ApplyCalibration(kTwa, 30.0));
    EXPECT_EQ(2.0, core.ApplyCalibration(kTwa, 0.0));
    EXPECT_EQ(-179.0, core.ApplyCalibration(kTwa, 179.0));
    EXPECT_EQ(179.0, core.ApplyCalibration(kTwa, -179.0));
}

TEST_F(Calibration, TheSecondCorrectionOfAwaSeesTheFirst) {
    MarkCalibrated(kAwa);
    Constant(kAwaOffset, 5.0);
    Along(kAwaTable, kAwa, kAwa, {{0, 0}, {100, 100}});
    EXPECT_EQ(30.0, core.ApplyCalibration(kAwa, 10.0));
    Object(kAwaOffset).active = false;
    EXPECT_EQ(20.0, core.ApplyCalibration(kAwa, 10.0));
    Object(kAwaTable).active = false;
    EXPECT_EQ(10.0, core.ApplyCalibration(kAwa, 10.0));
}

TEST_F(Calibration, IsInForceWhenActiveOrAlways) {
    for (std::size_t index = 0; index < kCalibrationCount; ++index) {
        SCOPED_TRACE(index);
        Object(index).active = true;
        EXPECT_EQ(kNoValue, Lookup(index, 1.0)) << "empty";
        Object(index).curves.resize(1);
        EXPECT_EQ(kNoValue, Lookup(index, 1.0)) << "without a point";
        Constant(index, 3.0);
        EXPECT_EQ(3.0, Lookup(index, 1.0));
        Object(index).active = false;
        const bool always = index == 0 || index == 1 || index == kLeewayFactor || index == kMastHeight;
        EXPECT_EQ(always ? 3.0 : kNoValue, Lookup(index, 1.0)) << "switched off";
    }
    EXPECT_EQ(kNoValue, Lookup(kCalibrationCount, 1.0));
    EXPECT_EQ(kNoValue, Lookup(static_cast<std::size_t>(-1), 1.0));
}

TEST_F(Calibration, InputsAreLiveValuesAndTheRawValueItself) {
    const std::vector<CalibrationPoint> identity = {{0, 0}, {100, 100}};
    Along(2, kBsp, kBsp, identity);
    core.SetChannel(kBsp, 0, 3.0, 0.0);
    EXPECT_EQ(7.0, Lookup(2, 7.0)) << "its own channel: the raw value, not the stored one";

    Along(2, kBsp, kHeel, identity);
    EXPECT_EQ(kNoValue, Lookup(2, 7.0)) << "never published";
    core.SetChannel(kHeel, 0, -20.0, 0.0);
    EXPECT_EQ(20.0, Lookup(2, 7.0)) << "a signed angle goes by its size";
    core.SetChannel(kHeel, 0, kNoValue, 0.0);
    EXPECT_EQ(kNoValue, Lookup(2, 7.0));

    Along(2, kBsp, kSeaTemp, identity);
    core.SetChannel(kSeaTemp, 0, -2.0, 0.0);
    EXPECT_EQ(-2.0, Lookup(2, 7.0)) << "anything else keeps its sign";
    core.SetChannel(kSeaTemp, 1, 9.0, 0.0);
    EXPECT_EQ(-2.0, Lookup(2, 7.0)) << "always the own boat's";

    Along(2, kAwa, kAwa, identity);
    EXPECT_EQ(30.0, Lookup(2, -30.0));

    Along(2, kBsp, kChannelCount, identity);
    EXPECT_EQ(kNoValue, Lookup(2, 7.0)) << "no such channel";
}

TEST_F(Calibration, AnInputWithoutABoatHasNoValue) {
    Along(2, kBsp, kSeaTemp, {{0, 0}, {100, 100}});
    core.View()->fullBlocks[0].value[kSeaTemp] = 12.0;
    EXPECT_EQ(kNoValue, Lookup(2, 7.0));
    core.View()->boatCount = 1;
    EXPECT_EQ(12.0, Lookup(2, 7.0));
}

TEST_F(Calibration, AnAlternatingInputIsResolved) {
    Along(2, kBsp, kAlt3, {{-100, -100}, {100, 100}});
    core.SetChannel(kHeel, 0, -20.0, 0.0);
    EXPECT_EQ(kNoValue, Lookup(2, 7.0)) << "stands for nothing";
    core.View()->alternates[3].slot[1] = kHeel;
    EXPECT_EQ(-20.0, Lookup(2, 7.0)) << "with its sign: the alternating channel itself is no angle";
}

TEST_F(Calibration, TheSecondInputChoosesBetweenCurves) {
    CalibrationObject& object = Object(2);
    Along(2, kBsp, kBsp, {{0, 0}, {10, 1}});
    object.inputY = kHeel;
    object.curves.push_back({20.0, true, {{0, 2}, {10, 3}}});
    EXPECT_EQ(0.5, Lookup(2, 5.0)) << "no heel: the first curve";
    core.SetChannel(kHeel, 0, -10.0, 0.0);
    EXPECT_EQ(1.5, Lookup(2, 5.0));
    core.SetChannel(kHeel, 0, 35.0, 0.0);
    EXPECT_EQ(2.5, Lookup(2, 5.0));
}

TEST_F(Calibration, ActsOnPublicationBeforeDerivation) {
    Constant(kAwaOffset, 5.0);
    core.View()->sysFlag[kFlagMastAngle] = 1;
    core.SetChannel(kMastAng, 0, 3.0, 0.0);
    core.SetChannel(kAwa, 0, 178.0, 0.0);
    EXPECT_EQ(175.0, Stored(kAwa)) << "not marked: only the mast's angle";
    MarkCalibrated(kAwa);
    core.SetChannel(kAwa, 0, 178.0, 0.0);
    EXPECT_EQ(-180.0, Stored(kAwa)) << "corrected to 183, which is -177, then the mast's angle";
    core.SetOwnChannel(kAwa, 178.0, 0.0);
    EXPECT_EQ(178.0, Stored(kAwa)) << "the short way in knows no calibration";
}

TEST_F(Calibration, ACorrectionToNoValueClearsTheEntry) {
    MarkCalibrated(kBsp);
    Constant(2, kNoValue - 8.0);
    EXPECT_TRUE(core.SetChannel(kBsp, 0, 8.0, 0.0));
    EXPECT_EQ(kNoValue, Stored(kBsp));
    EXPECT_EQ(machine.clock.Days(), core.View()->fullBlocks[0].time[kBsp]);
    EXPECT_EQ(0, core.View()->channels[kBsp].published);
    EXPECT_EQ(0u, core.View()->boatCount);
}

TEST(CalibrationWithoutARecord, LeavesTheValue) {
    testing::FakeMachine machine;
    machine.memory.failCreate = true;
    CCore core(machine.Services());
    core.Calibrations()[2].active = true;
    core.Calibrations()[2].inputX = kHeel;
    core.Calibrations()[2].curves = {{0.0, true, {{0, 1}, {1, 2}}}};
    double out = 1.0;
    EXPECT_FALSE(core.CalibrationLookup(2, out, 5.0));
    EXPECT_EQ(kNoValue, out);
    EXPECT_EQ(-5.0, core.ApplyCalibration(kBsp, -5.0));
}

}  // namespace
}  // namespace twr
