#include "core/units.h"

#include <gtest/gtest.h>

#include "core/channel_catalogue.h"
#include "core/no_value.h"
#include "platform/wide_text.h"

namespace twr {
namespace {

constexpr double kLength = 18.52;  // 100 to the nautical mile

TEST(Units, ConvertBySelectorAndCopeWithAny) {
    const struct {
        const char* what;
        double converted, expected;
    } rows[] = {
        {"metres", DepthInUserUnit(10.0, 0), 10.0},
        {"fathoms", DepthInUserUnit(10.0, 1), 5.468},
        {"feet", DepthInUserUnit(10.0, 2), 32.808},
        {"depth 3", DepthInUserUnit(10.0, 3), kNoValue},
        {"depth -1", DepthInUserUnit(10.0, -1), kNoValue},
        {"miles", DistanceInUserUnit(2.0, 0, kLength), 2.0},
        {"lengths", DistanceInUserUnit(2.0, 1, kLength), 200.0},
        {"lengths of a boat of 0", DistanceInUserUnit(2.0, 1, 0.0), 2.0},
        {"lengths of no boat", DistanceInUserUnit(2.0, 1, kNoValue), 2.0},
        {"metres run", DistanceInUserUnit(2.0, 2, kLength), 3704.0},
        {"kilometres", DistanceInUserUnit(2.0, 3, kLength), 3.704},
        {"yards", DistanceInUserUnit(2.0, 4, kLength), 4050.7436570428694},
        {"feet run", DistanceInUserUnit(2.0, 5, kLength), 12152.230971128608},
        {"distance 6", DistanceInUserUnit(2.0, 6, kLength), 2.0},
        {"distance -1", DistanceInUserUnit(2.0, -1, kLength), 2.0},
        {"knots", SpeedInUserUnit(10.0, 0), 10.0},
        {"m/s", SpeedInUserUnit(10.0, 1), 5.144444704055786},
        {"km/h", SpeedInUserUnit(10.0, 2), 18.52},
        {"speed 7", SpeedInUserUnit(10.0, 7), 10.0},
        {"pascals", PressureInUserUnit(1e5, 0), 1e5},
        {"kPa", PressureInUserUnit(1e5, 1), 100.0},
        {"psi", PressureInUserUnit(1e5, 2), 14.504},
        {"bar", PressureInUserUnit(1e5, 3), 1.0},
        {"inHg", PressureInUserUnit(1e5, 4), 29.529983071445},
        {"pressure 5", PressureInUserUnit(1e5, 5), 1e5},
        {"Celsius", TemperatureInUserUnit(100.0, false), 100.0},
        {"Fahrenheit", TemperatureInUserUnit(100.0, true), 212.0},
    };
    for (const auto& row : rows) EXPECT_DOUBLE_EQ(row.expected, row.converted) << row.what;
}

// A label must name the unit that the value was converted to, also where the conversion leaves the value alone.
TEST(Units, LabelsFollowTheConversion) {
    const auto label = [](std::int16_t type, std::int32_t selector, double boatLength, bool flag) {
        return ToUtf8(UnitLabel(type, {selector, selector, selector, selector, selector, boatLength, flag, flag}));
    };
    const struct {
        std::int16_t type;
        std::int32_t selector;
        double boatLength;
        bool flag;
        const char* label;
    } rows[] = {
        {kTypeDepth, 1, kLength, false, "fth"},        {kTypeDepth, 3, kLength, false, ""},
        {kTypeDistance, 4, kLength, false, "yd"},      {kTypeDistance, 9, kLength, false, "nm"},
        {kTypeShortDistance, 1, kLength, false, "bl"}, {kTypeShortDistance, 1, kNoValue, false, "nm"},
        {kTypeBoatSpeed, 2, kLength, false, "km/hr"},  {kTypeWindSpeed, -1, kLength, false, "kt"},
        {kTypePressure, 3, kLength, false, "bar"},     {kTypeTemperature, 0, kLength, true, "°F"},
        {kTypeBearing, 0, kLength, true, "°M"},        {kTypeBearing, 0, kLength, false, "°T"},
        {kTypeNumber, 1, kLength, false, ""},          {-5, 1, kLength, false, ""},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.label, label(row.type, row.selector, row.boatLength, row.flag)) << row.type << " by " << row.selector;
    }
}

}  // namespace
}  // namespace twr
