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
        const bool found = core->CalibrationLookup(index, out, raw);
        EXPECT_EQ(out != kNoValue, found);
        return out;
    }
};

constexpr std::size_t kAwaOffset = 4, kAwaTable = 5, kTwaTable = 7, kLeewayFactor = 10, kMastHeight = 16;

TEST_F(CalibrateTest, WithoutTablesOnlyTheRangeStepActs) {
    const struct {
        ChannelId channel;
        double raw, calibrated;
    } rows[] = {
        {kTwd, 123, 123},   {kTwd, 370, 10},    {kTwd, 360, 0},        {kTwd, -10, 350},   {kTwd, 800, 440},
        {kAwa, 190, -170},  {kAwa, 180, 180},   {kAwa, -180, -180},    {kAwa, -190, 170},  {kHeel, 181, -179},
        {kBsp, -0.2, 0},    {kBsp, 7, 7},       {kTws, -3, 0},         {kSeaTemp, -3, -3}, {kTwd, kNoValue, kNoValue},
        {kDepth, -40, -40}, {kUser0, 400, 400}, {kUser31, -400, -400},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(::testing::Message() << "channel " << row.channel << ", raw " << row.raw);
        MarkCalibrated(row.channel, false);
        EXPECT_EQ(row.raw, core->ApplyCalibration(row.channel, row.raw)) << "not marked";
        MarkCalibrated(row.channel);
        EXPECT_EQ(row.calibrated, core->ApplyCalibration(row.channel, row.raw));
    }
    record.Set<std::int16_t>(R::Channel(kUser0) + 10, 6);
    EXPECT_EQ(40.0, core->ApplyCalibration(kUser0, 400.0));
}

// Each calibration corrects the channel that the catalogue gives for it, and no other.
TEST_F(CalibrateTest, EachCorrectsItsOwnChannel) {
    for (ChannelId channel = 1; channel < kChannelCount; ++channel) MarkCalibrated(channel);
    for (std::size_t index = 0; index < kCalibrationCount; ++index) {
        Constant(index, 2.0);
        for (ChannelId channel = 1; channel < kChannelCount; ++channel) {
            const bool corrected = channel == CalibrationCatalogue()[index].corrected && index != kLeewayFactor;
            EXPECT_EQ(corrected ? 32.0 : 30.0, core->ApplyCalibration(channel, 30.0)) << index << " on channel " << channel;
        }
        Object(index) = {};
    }
}

TEST_F(CalibrateTest, ATrueWindAngleGrowsOnEitherSide) {
    MarkCalibrated(kTwa);
    Constant(kTwaTable, 2.0);
    EXPECT_EQ(-32.0, core->ApplyCalibration(kTwa, -30.0));
    EXPECT_EQ(32.0, core->ApplyCalibration(kTwa, 30.0));
    EXPECT_EQ(2.0, core->ApplyCalibration(kTwa, 0.0));
    EXPECT_EQ(-179.0, core->ApplyCalibration(kTwa, 179.0));
    EXPECT_EQ(179.0, core->ApplyCalibration(kTwa, -179.0));
}

TEST_F(CalibrateTest, TheSecondCorrectionOfAwaSeesTheFirst) {
    MarkCalibrated(kAwa);
    Constant(kAwaOffset, 5.0);
    Along(kAwaTable, kAwa, kAwa, {{0, 0}, {100, 100}});
    EXPECT_EQ(30.0, core->ApplyCalibration(kAwa, 10.0));
    Object(kAwaOffset).active = false;
    EXPECT_EQ(20.0, core->ApplyCalibration(kAwa, 10.0));
    Object(kAwaTable).active = false;
    EXPECT_EQ(10.0, core->ApplyCalibration(kAwa, 10.0));
}

TEST_F(CalibrateTest, IsInForceWhenActiveOrAlways) {
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

TEST_F(CalibrateTest, InputsAreLiveValuesAndTheRawValueItself) {
    const std::vector<CalibrationPoint> identity = {{0, 0}, {100, 100}};
    Along(2, kBsp, kBsp, identity);
    Publish(kBsp, 3.0);
    EXPECT_EQ(7.0, Lookup(2, 7.0)) << "its own channel: the raw value, not the stored one";

    Along(2, kBsp, kHeel, identity);
    EXPECT_EQ(kNoValue, Lookup(2, 7.0)) << "never published";
    Publish(kHeel, -20.0);
    EXPECT_EQ(20.0, Lookup(2, 7.0)) << "a signed angle goes by its size";
    Publish(kHeel, kNoValue);
    EXPECT_EQ(kNoValue, Lookup(2, 7.0));

    Along(2, kBsp, kSeaTemp, identity);
    Publish(kSeaTemp, -2.0);
    EXPECT_EQ(-2.0, Lookup(2, 7.0)) << "anything else keeps its sign";
    Publish(kSeaTemp, 9.0, 1);
    EXPECT_EQ(-2.0, Lookup(2, 7.0)) << "always the own boat's";

    Along(2, kAwa, kAwa, identity);
    EXPECT_EQ(30.0, Lookup(2, -30.0));

    Along(2, kBsp, kChannelCount, identity);
    EXPECT_EQ(kNoValue, Lookup(2, 7.0)) << "no such channel";
}

TEST_F(CalibrateTest, AnInputWithoutABoatHasNoValue) {
    Along(2, kBsp, kSeaTemp, {{0, 0}, {100, 100}});
    record.Set(R::Value(0, kSeaTemp), 12.0);
    EXPECT_EQ(kNoValue, Lookup(2, 7.0));
    record.Set(R::kBoatCount, 1u);
    EXPECT_EQ(12.0, Lookup(2, 7.0));
}

TEST_F(CalibrateTest, AnAlternatingInputIsResolved) {
    Along(2, kBsp, kAlt3, {{-100, -100}, {100, 100}});
    Publish(kHeel, -20.0);
    EXPECT_EQ(kNoValue, Lookup(2, 7.0)) << "stands for nothing";
    record.Set(5080 + 36 * 3 + 4 * 1, 18);
    EXPECT_EQ(-20.0, Lookup(2, 7.0)) << "with its sign: the alternating channel itself is no angle";
}

TEST_F(CalibrateTest, TheSecondInputChoosesBetweenCurves) {
    CalibrationObject& object = Object(2);
    Along(2, kBsp, kBsp, {{0, 0}, {10, 1}});
    object.inputY = kHeel;
    object.curves.push_back({20.0, true, {{0, 2}, {10, 3}}});
    EXPECT_EQ(0.5, Lookup(2, 5.0)) << "no heel: the first curve";
    Publish(kHeel, -10.0);
    EXPECT_EQ(1.5, Lookup(2, 5.0));
    Publish(kHeel, 35.0);
    EXPECT_EQ(2.5, Lookup(2, 5.0));
}

TEST_F(CalibrateTest, ActsOnPublicationBeforeDerivation) {
    Constant(kAwaOffset, 5.0);
    SetFlag(kFlagMastAngle);
    Publish(kMastAng, 3.0);
    Publish(kAwa, 178.0);
    EXPECT_EQ(175.0, Own(kAwa)) << "not marked: only the mast's angle";
    MarkCalibrated(kAwa);
    Publish(kAwa, 178.0);
    EXPECT_EQ(-180.0, Own(kAwa)) << "corrected to 183, which is -177, then the mast's angle";
    core->SetOwnChannel(kAwa, 178.0, 0.0);
    EXPECT_EQ(178.0, Own(kAwa)) << "the short way in knows no calibration";
}

TEST_F(CalibrateTest, ACorrectionToNoValueClearsTheEntry) {
    MarkCalibrated(kBsp);
    Constant(2, kNoValue - 8.0);
    EXPECT_TRUE(Publish(kBsp, 8.0));
    EXPECT_EQ(kNoValue, Own(kBsp));
    EXPECT_EQ(machine.clock.Days(), OwnTime(kBsp));
    EXPECT_EQ(0, record.U8(R::Channel(kBsp) + 2));
    EXPECT_EQ(0u, Boats());
}

TEST(CalibrateWithoutARecordTest, LeavesTheValue) {
    FakeMachine machine;
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
}  // namespace twr::testing
