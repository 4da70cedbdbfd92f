#include "support/core_fixture.h"

namespace twr::testing {
namespace {

using R = RecordBytes;

class CalibrateTest : public CoreTest {
protected:
    CalibrationObject& Object(std::size_t index) { return core->Calibrations()[index]; }

    void MarkCalibrated(ChannelId channel, bool on = true) { record.Set<std::uint8_t>(R::Channel(channel), on); }

    // A calibration that gives one correction whatever its inputs.
    void Constant(std::size_t index, double correction) {
        Object(index).active = true;
        Object(index).curves = {{0.0, true, {{0.0, correction}}}};
    }

    // A calibration over one input, whose correction is the input itself.
    void Along(std::size_t index, ChannelId self, ChannelId input) {
        Object(index) = {{{0.0, true, {{0, 0}, {100, 100}}}}, input, CalibrationObject::kNoInput, self, true, true};
    }

    double Lookup(std::size_t index, double raw) {
        double out = 1.0;
        const bool found = core->CalibrationLookup(index, out, raw);
        EXPECT_EQ(out != kNoValue, found);
        return out;
    }
};

constexpr std::size_t kBspTable = 2, kAwaOffset = 4, kAwaTable = 5, kTwaTable = 7, kLeewayFactor = 10, kMastHeight = 16;

TEST_F(CalibrateTest, WithoutTablesOnlyTheRangeStepActs) {
    const struct {
        ChannelId channel;
        double raw, calibrated;
    } rows[] = {
        {kTwd, 123, 123},   {kTwd, 370, 10},   {kTwd, 360, 0},        {kTwd, -10, 350},   {kTwd, 800, 440},
        {kAwa, 190, -170},  {kAwa, 180, 180},  {kAwa, -180, -180},    {kAwa, -190, 170},  {kHeel, 181, -179},
        {kBsp, -0.2, 0},    {kBsp, 7, 7},      {kTws, -3, 0},         {kSeaTemp, -3, -3}, {kTwd, kNoValue, kNoValue},
        {kDepth, -40, -40}, {kUser0, 400, 40}, {kUser31, -400, -400},
    };
    record.Set<std::int16_t>(R::Channel(kUser0) + 10, kTypeBearing);
    for (const auto& row : rows) {
        SCOPED_TRACE(::testing::Message() << "channel " << row.channel << ", raw " << row.raw);
        MarkCalibrated(row.channel, false);
        EXPECT_EQ(row.raw, core->ApplyCalibration(row.channel, row.raw)) << "not marked";
        MarkCalibrated(row.channel);
        EXPECT_EQ(row.calibrated, core->ApplyCalibration(row.channel, row.raw));
    }
}

TEST_F(CalibrateTest, ATrueWindAngleGrowsOnEitherSide) {
    MarkCalibrated(kTwa);
    Constant(kTwaTable, 2.0);
    for (const auto& [raw, calibrated] : {std::pair(-30.0, -32.0), {30.0, 32.0}, {0.0, 2.0}, {179.0, -179.0}, {-179.0, 179.0}}) {
        EXPECT_EQ(calibrated, core->ApplyCalibration(kTwa, raw)) << raw;
    }
}

TEST_F(CalibrateTest, TheSecondCorrectionOfAwaSeesTheFirst) {
    MarkCalibrated(kAwa);
    Constant(kAwaOffset, 5.0);
    Along(kAwaTable, kAwa, kAwa);
    EXPECT_EQ(30.0, core->ApplyCalibration(kAwa, 10.0));
    Object(kAwaOffset).active = false;
    EXPECT_EQ(20.0, core->ApplyCalibration(kAwa, 10.0));
}

// Each corrects the channel that the catalogue gives for it, and no other.
TEST_F(CalibrateTest, EachCorrectsItsOwnChannelWhenActiveOrAlways) {
    for (ChannelId channel = 1; channel < kChannelCount; ++channel) MarkCalibrated(channel);
    for (std::size_t index = 0; index < kCalibrationCount; ++index) {
        SCOPED_TRACE(index);
        Object(index).active = true;
        EXPECT_EQ(kNoValue, Lookup(index, 1.0)) << "empty";
        Object(index).curves.resize(1);
        EXPECT_EQ(kNoValue, Lookup(index, 1.0)) << "without a point";
        Constant(index, 2.0);
        EXPECT_EQ(2.0, Lookup(index, 1.0));
        for (ChannelId channel = 1; channel < kChannelCount; ++channel) {
            const bool corrected = channel == CalibrationCatalogue()[index].corrected && index != kLeewayFactor;
            EXPECT_EQ(corrected ? 32.0 : 30.0, core->ApplyCalibration(channel, 30.0)) << "channel " << channel;
        }
        Object(index).active = false;
        const bool always = index == 0 || index == 1 || index == kLeewayFactor || index == kMastHeight;
        EXPECT_EQ(always ? 2.0 : kNoValue, Lookup(index, 1.0)) << "switched off";
    }
    EXPECT_EQ(kNoValue, Lookup(kCalibrationCount, 1.0));
    EXPECT_EQ(kNoValue, Lookup(static_cast<std::size_t>(-1), 1.0));
}

TEST_F(CalibrateTest, InputsAreTheRawValueItselfAndLiveValuesOfTheOwnBoat) {
    record.SetSlot(3, 1, kHeel);
    const struct {
        ChannelId self, input, published;
        double value;
        BoatSlot boat;
        double raw, found;
        const char* why;
    } steps[] = {
        {kBsp, kBsp, kBsp, 3.0, 0, 7.0, 7.0, "its own channel: the raw value, not the stored one"},
        {kAwa, kAwa, kBsp, 3.0, 0, -30.0, 30.0, "a signed angle goes by its size"},
        {kBsp, kHeel, kBsp, 3.0, 0, 7.0, kNoValue, "never published"},
        {kBsp, kHeel, kHeel, -20.0, 0, 7.0, 20.0, "a live angle goes by its size"},
        {kBsp, kAlt3, kHeel, -20.0, 0, 7.0, -20.0, "an alternating channel itself is no angle"},
        {kBsp, kAlt4, kHeel, -20.0, 0, 7.0, kNoValue, "stands for nothing"},
        {kBsp, kHeel, kHeel, kNoValue, 0, 7.0, kNoValue, "cleared"},
        {kBsp, kSeaTemp, kSeaTemp, -2.0, 0, 7.0, -2.0, "anything else keeps its sign"},
        {kBsp, kSeaTemp, kSeaTemp, 9.0, 1, 7.0, -2.0, "another boat's value"},
        {kBsp, kChannelCount, kBsp, 3.0, 0, 7.0, kNoValue, "no such channel"},
    };
    for (const auto& step : steps) {
        Publish(step.published, step.value, step.boat);
        Along(kBspTable, step.self, step.input);
        EXPECT_EQ(step.found, Lookup(kBspTable, step.raw)) << step.why;
    }
    Along(kBspTable, kBsp, kSeaTemp);
    record.SetBoatCount(0);
    EXPECT_EQ(kNoValue, Lookup(kBspTable, 7.0)) << "there is no boat";
}

TEST_F(CalibrateTest, TheSecondInputChoosesBetweenCurves) {
    CalibrationObject& object = Object(kBspTable);
    Along(kBspTable, kBsp, kBsp);
    object.inputY = kHeel;
    object.curves = {{0.0, true, {{0, 0}, {10, 1}}}, {20.0, true, {{0, 2}, {10, 3}}}};
    EXPECT_EQ(0.5, Lookup(kBspTable, 5.0)) << "no heel: the first curve";
    Publish(kHeel, -10.0);
    EXPECT_EQ(1.5, Lookup(kBspTable, 5.0));
}

TEST_F(CalibrateTest, ActsOnPublicationBeforeDerivation) {
    Constant(kAwaOffset, 5.0);
    SetFlag(kFlagMastAngle);
    Publish(kMastAng, 3.0);
    Publish(kAwa, 178.0);
    EXPECT_EQ(175.0, Own(kAwa)) << "not marked: only the mast's angle";
    MarkCalibrated(kAwa);
    Publish(kAwa, 178.0);
    EXPECT_EQ(-180.0, Own(kAwa)) << "183, brought into range, less the mast's angle";
    core->SetOwnChannel(kAwa, 178.0, 0.0);
    EXPECT_EQ(178.0, Own(kAwa)) << "the short way in knows no calibration";
}

TEST_F(CalibrateTest, ACorrectionToNoValueClearsTheEntry) {
    MarkCalibrated(kBsp);
    Constant(kBspTable, kNoValue - 8.0);
    EXPECT_TRUE(Publish(kBsp, 8.0));
    EXPECT_EQ(kNoValue, Own(kBsp));
    EXPECT_EQ(machine.clock.Days(), OwnTime(kBsp));
    EXPECT_EQ(0, record.U8(R::Channel(kBsp) + 2));
    EXPECT_EQ(0u, Boats());
}

}  // namespace
}  // namespace twr::testing
