#include "core/units.h"

#include <utility>
#include <vector>

#include "base/wide_text.h"
#include "support/core_fixture.h"

namespace twr::testing {
namespace {

class UnitsTest : public CoreTest {
protected:
    double Display(ChannelId channel, double value) { return core->ToDisplayUnits(channel, value, kNoValue); }
    std::string Label(ChannelId channel) { return ToUtf8(UnitLabel(core->ChannelTypeOf(channel), UnitSettingsOf(*core->View()))); }
};

// The label names the unit that the value was converted to, also where the conversion leaves the value alone.
TEST_F(UnitsTest, ValueAndLabelFollowTheSelector) {
    using Shown = std::vector<std::pair<double, const char*>>;  // by selector, from -1
    const Shown depths = {{kNoValue, ""}, {10, "m"}, {5.468, "fth"}, {32.808, "ft"}, {kNoValue, ""}};
    const Shown speeds = {{10, "kt"}, {10, "kt"}, {5.144444704055786, "m/s"}, {18.52, "km/hr"}, {10, "kt"}};
    const Shown distances = {
        {10, "nm"}, {10, "nm"}, {1000, "bl"}, {18520, "m"}, {18.52, "km"}, {20253.718285214347, "yd"}, {60761.15485564304, "ft"},
        {10, "nm"}};
    const Shown pressures = {
        {10, "Pa"}, {10, "Pa"}, {0.01, "kPa"}, {0.0014504, "psi"}, {0.0001, "bar"}, {0.0029529983071445, "InHg"}, {10, "Pa"}};
    const struct {
        ChannelId channel;
        std::size_t setting;
        const Shown& shown;  // for a value of 10
    } rows[] = {{kDepth, 1, depths},    {kBsp, 2, speeds},      {kTws, 2, speeds},          {kUser30, 2, speeds},
                {kMkRng, 3, distances}, {kBiasL, 4, distances}, {kEngOilPres, 9, pressures}};
    record.SetValue(0, 18.52);  // 100 boats to the nautical mile
    record.Set<std::int16_t>(RecordBytes::Channel(kUser30) + 10, kTypeBoatSpeed);
    for (const auto& row : rows) {
        for (const std::size_t setting : {1, 2, 3, 4, 9}) record.SetInt(setting, 0);
        for (std::int32_t selector = -1; const auto& [value, label] : row.shown) {
            SCOPED_TRACE(::testing::Message() << "channel " << row.channel << " by " << selector);
            record.SetInt(row.setting, selector++);
            EXPECT_DOUBLE_EQ(value, Display(row.channel, 10.0));
            EXPECT_EQ(label, Label(row.channel));
        }
    }
}

TEST_F(UnitsTest, OtherTypesHaveOneUnit) {
    const struct {
        ChannelId channel;
        double value, shown;
        const char* label;
    } rows[] = {
        {kMkTwa, 350.0, -10.0, "°"}, {kHeel, -190.0, 170.0, "°"}, {kHeel, -180.0, -180.0, "°"},
        {kHeel, 180.0, 180.0, "°"},  {kVmcPct, 50.0, 50.0, "%"},  {kHpe, 50.0, 50.0, "m"},
        {kRot, 50.0, 50.0, "°/s"},   {kRpm1, 50.0, 50.0, ""},     {kUser31, 10.0, 10.0, ""},
    };
    record.Set<std::int16_t>(RecordBytes::Channel(kUser31) + 10, kTypeBoatSpeed);  // has the catalogue's type all the same
    record.SetInt(2, 2);
    for (const auto& row : rows) {
        EXPECT_EQ(row.shown, Display(row.channel, row.value)) << row.channel;
        EXPECT_EQ(row.label, Label(row.channel)) << row.channel;
    }
}

TEST_F(UnitsTest, ABoatWithoutALengthMeasuresNothing) {
    record.SetInt(3, 1);
    for (const double length : {0.0, kNoValue}) {
        record.SetValue(0, length);
        EXPECT_EQ(2.0, Display(kMkRng, 2.0)) << length;
        EXPECT_EQ("nm", Label(kMkRng)) << length;
    }
}

TEST_F(UnitsTest, TemperaturesAndBearingsFollowTheirFlags) {
    const struct {
        bool flag;
        double temperature, bearing;
        const char *degrees, *north;
    } rows[] = {{false, 100.0, 35.0, "°C", "°T"}, {true, 212.0, 30.0, "°F", "°M"}};
    for (const auto& row : rows) {
        SetFlag(kFlagFahrenheit, row.flag);
        SetFlag(kFlagMagnetic, row.flag);
        EXPECT_EQ(row.temperature, Display(kAirTemp, 100.0));
        EXPECT_EQ(row.degrees, Label(kAirTemp));
        EXPECT_EQ(row.bearing, core->ToDisplayUnits(kHdg, 30.0, 5.0));
        EXPECT_EQ(row.north, Label(kHdg));
    }
    EXPECT_EQ(0.0, Display(kTwd, 360.0));
    EXPECT_EQ(359.0, Display(kTwd, -1.0));
    EXPECT_EQ(kNoValue, Display(kTwd, kNoValue));
    EXPECT_EQ(7.0, Display(kChannelCount, 7.0));
}

}  // namespace
}  // namespace twr::testing
