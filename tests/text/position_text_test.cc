#include "text/position_text.h"

#include <gtest/gtest.h>

#include <cmath>

#include "base/no_value.h"
#include "base/wide_text.h"

namespace twr {
namespace {

TEST(PositionText, DegreesAndMinutes) {
    const struct {
        double degrees;
        const char *latitude, *longitude;
    } rows[] = {
        {45.2057, "45 12.3420n", "045 12.3420e"},
        {-45.2057, "45 12.3420s", "045 12.3420w"},
        {0.0, "00 00.0000n", "000 00.0000e"},
        {-0.0, "00 00.0000n", "000 00.0000e"},
        {90.0, "90 00.0000n", "090 00.0000e"},
        {90.0001, "", "090 00.0060e"},
        {-9.0916666666666668, "09 05.5000s", "009 05.5000w"},
        {45.9999999, "45 60.0000n", "045 60.0000e"},
        {180.0, "", "180 00.0000e"},
        {-180.0, "", "180 00.0000w"},
        {190.0, "", "170 00.0000w"},
        {-190.0, "", "170 00.0000e"},
        {541.0, "", ""},
        {-541.0, "", ""},
        {kNoValue, "", ""},
        {-INFINITY, "", ""},
        {NAN, "", ""},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.latitude, ToUtf8(LatitudeText(row.degrees))) << row.degrees;
        EXPECT_EQ(row.longitude, ToUtf8(LongitudeText(row.degrees))) << row.degrees;
    }
}

}  // namespace
}  // namespace twr
