// SPDX-License-Identifier: MIT
#include "support/core_fixture.h"

namespace twr::testing {
namespace {

constexpr std::size_t kOffset = 4, kTable = 5, kTwaTable = 7;  // the first two correct the apparent wind angle

struct CalibrateTest : CoreTest {
    void Mark(ChannelId channel, bool on = true) { record.Set<std::uint8_t>(RecordBytes::Channel(channel), on); }
    CalibrationObject& Object(std::size_t index) { return core->Calibrations()[index]; }

    // A calibration that gives one correction whatever its inputs.
    void Constant(std::size_t index, double y) { Object(index) = {.curves = {{0.0, true, {{0.0, y}}}}, .active = true}; }

    // A calibration whose correction is its input.
    void Along(ChannelId self, ChannelId input) {
        Object(kTable) = {{{0.0, true, {{0, 0}, {100, 100}}}}, input, CalibrationObject::kNoInput, self, true, true};
    }

    double out = 1.0;  // of a look-up
};

TEST_F(CalibrateTest, CorrectsAndThenBringsIntoRange) {
    const std::tuple<ChannelId, double, double> rows[] = {
        {kTwd, 370, 10},   {kTwd, 360, 0},   {kTwd, -10, 350},   {kTwd, 800, 440},   {kTwd, kNoValue, kNoValue},
        {kAwa, 190, -170}, {kAwa, 180, 180}, {kAwa, -180, -180}, {kHeel, 181, -179}, {kHeel, -181, 179},
        {kBsp, -0.2, 0},   {kTws, -3, 0},    {kSeaTemp, -3, -3}, {kUser0, 400, 40},  {kUser31, -400, -400},
        {kTwa, -30, -32},  {kTwa, 0, 2},     {kTwa, 179, -179},  {kTwa, -179, 179}};
    Constant(kTwaTable, 2.0);
    record.Set<std::int16_t>(RecordBytes::Channel(kUser0) + 10, kTypeBearing);
    for (const auto& [channel, raw, calibrated] : rows) {
        Mark(channel, true);
        EXPECT_EQ(calibrated, core->ApplyCalibration(channel, raw)) << channel << " at " << raw;
        Mark(channel, false);
        EXPECT_EQ(raw, core->ApplyCalibration(channel, raw)) << channel << " not marked";
    }
}

// Each corrects the channel that the catalogue gives for it, and no other.
TEST_F(CalibrateTest, EachCorrectsItsOwnChannelWhenActiveOrAlways) {
    for (ChannelId channel = 1; channel < kChannelCount; ++channel) Mark(channel);
    for (std::size_t index = 0; index < kCalibrationCount; ++index) {
        Object(index).active = true;
        EXPECT_FALSE(core->CalibrationLookup(index, out, 1.0)) << index << " is empty";
        Constant(index, 2.0);
        for (ChannelId channel = 1; channel < kChannelCount; ++channel) {
            const bool corrected = channel == CalibrationCatalogue()[index].corrected && channel != kLeeway;
            EXPECT_EQ(corrected ? 32.0 : 30.0, core->ApplyCalibration(channel, 30.0)) << index << ", channel " << channel;
        }
        Object(index).active = false;
        const bool always = index == 0 || index == 1 || index == 10 || index == 16;
        EXPECT_EQ(always, core->CalibrationLookup(index, out, 1.0)) << index << " is switched off";
        EXPECT_EQ(always ? 2.0 : kNoValue, out);
    }
    EXPECT_FALSE(core->CalibrationLookup(kCalibrationCount, out, 1.0));
}

TEST_F(CalibrateTest, InputsAreTheRawValueItselfAndLiveValuesOfTheOwnBoat) {
    record.SetSlot(3, 1, kHeel);
    Publish(kBsp, 3.0), Publish(kHeel, -20.0), Publish(kSeaTemp, -2.0), Publish(kSeaTemp, 9.0, 1);
    // Its own channel gives the raw value, not the stored one. An angle goes by its size; an alternating channel itself is none.
    const std::tuple<ChannelId, ChannelId, double, double> rows[] = {
        {kBsp, kBsp, 7, 7},      {kAwa, kAwa, -30, 30},        {kBsp, kHeel, 7, 20},       {kBsp, kAlt3, 7, -20},
        {kBsp, kSeaTemp, 7, -2}, {kBsp, kRudder, 7, kNoValue}, {kBsp, kAlt4, 7, kNoValue}, {kBsp, kChannelCount, 7, kNoValue}};
    for (const auto& [self, input, raw, found] : rows) {
        Along(self, input);
        EXPECT_EQ(found != kNoValue, core->CalibrationLookup(kTable, out, raw));
        EXPECT_EQ(found, out) << self << " over " << input;
    }
    Along(kBsp, kBsp);
    Object(kTable).inputY = kHeel;
    Object(kTable).curves.push_back({20.0, true, {{0, 100}, {100, 200}}});
    EXPECT_TRUE(core->CalibrationLookup(kTable, out, 5.0) && out == 105.0) << "the second input chooses the curve: " << out;
    record.SetBoatCount(0);
    EXPECT_TRUE(core->CalibrationLookup(kTable, out, 5.0) && out == 5.0) << "without a boat there is none: " << out;
}

TEST_F(CalibrateTest, ActsOnPublicationBeforeDerivation) {
    SetFlag(kFlagMastAngle);
    Mark(kAwa);
    Publish(kMastAng, 3.0);
    Constant(kOffset, 5.0);
    Publish(kAwa, 178.0);
    EXPECT_EQ(-180.0, Own(kAwa)) << "183, brought into range, less the mast's angle";
    Along(kAwa, kAwa);
    EXPECT_EQ(30.0, core->ApplyCalibration(kAwa, 10.0)) << "the second correction of a channel sees the first";
    core->SetOwnChannel(kAwa, 178.0, 0.0);
    EXPECT_EQ(178.0, Own(kAwa)) << "the short way in knows no calibration";
}

}  // namespace
}  // namespace twr::testing
