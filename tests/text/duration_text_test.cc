#include "text/duration_text.h"

#include <gtest/gtest.h>

#include <cmath>

#include "core/no_value.h"
#include "platform/wide_text.h"

namespace twr {
namespace {

constexpr double kSecond = 1.0 / 86400.0;

TEST(DurationText, ShowsTheTwoGreatestUnits) {
    const struct {
        double days;
        const char *text, *compact;
    } rows[] = {
        {0.0, "0.0s", "0.00"},
        {0.0001, "8.6s", "0.09"},
        {-0.0001, "-8.6s", "-0.09"},
        {9.96 * kSecond, "10.0s", "0.10"},
        {0.00011574074074074073, "10s", "0.10"},
        {45.0 * kSecond, "45s", "0.45"},
        {59.6 * kSecond, "01m 00s", "1.00"},
        {0.0084, "12m 06s", "12.06"},
        {3599.6 * kSecond, "01h 00m", "1.00"},
        {0.0451388888888889, "01h 05m", "1.05"},
        {0.5, "12h 00m", "12.00"},
        {86399.6 * kSecond, "1d 00h", "1.00"},
        {1.5, "1d 12h", "1.12"},
        {-1.5, "-1d 12h", "-1.12"},
        {3.0006944444444446, "3d 00h", "3.00"},
        {46345.5, "46345d 12h", "46345.12"},
        {3e9, "3000000000d 00h", "3000000000.00"},
        {kNoValue, "- -", ""},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.text, ToUtf8(DurationText(row.days))) << row.days;
        EXPECT_EQ(row.compact, ToUtf8(CompactDurationText(row.days))) << row.days;
    }
}

// Nothing sensible can be shown; the sanitizers watch that the numbers are made without undefined conversions.
TEST(DurationText, SurvivesWhatNoIntegerHolds) {
    for (const double days : {1e13, 1e15, 1e17, 1e308, -1e308, double{INFINITY}, -double{INFINITY}, double{NAN}}) {
        EXPECT_LT(DurationText(days).size(), 80u) << days;
        EXPECT_LT(CompactDurationText(days).size(), 80u) << days;
    }
}

}  // namespace
}  // namespace twr
