// The texts that need no record: dates, durations, positions, and what a remote of the instruments takes.
#include <gtest/gtest.h>

#include <cmath>

#include "base/calendar.h"
#include "base/no_value.h"
#include "base/wide_text.h"
#include "text/position_text.h"
#include "text/remote_label.h"
#include "text/time_text.h"

namespace twr {
namespace {

TEST(DateTimeFormat, SplitsDayNumbersAndFollowsThePattern) {
    const struct {
        double day, seconds;
        const char* text;
    } days[] = {{0.0, 0.0, "30-Dec-1899 00:00:00"},        {36585.0, 0.0, "29-Feb-2000 00:00:00"},
                {46345, 43200.4, "19-Nov-2026 12:00:00"},  {46387, 86399.6, "01-Jan-2027 00:00:00"},
                {-1, -21600, "29-Dec-1899 06:00:00"},      {-1, -86399.6, "30-Dec-1899 00:00:00"},
                {-657434, -64800, "01-Jan-0100 18:00:00"}, {2958465, 43200, "31-Dec-9999 12:00:00"}};
    for (const auto& [day, seconds, text] : days) {
        EXPECT_EQ(text, ToUtf8(DateTimeFormat(day + seconds / 86400, u"%d-%b-%Y %H:%M:%S"))) << day << " and " << seconds;
    }
    for (const double none : {-657435.0, 2958465.0 + 86399.6 / 86400, 2958466.0, -double{INFINITY}, double{NAN}}) {
        EXPECT_EQ(u"Invalid DateTime", DateTimeFormat(none, u"%d")) << none;
    }
    const std::u16string fits(255, u'x');
    const struct {
        double day;
        std::u16string pattern, text;
    } patterns[] = {
        {46388.0, u"%a %A %B %j %m %y 100%%", u"Fri Friday January 001 01 27 100%"},
        {45657.0, u"%a %j", u"Tue 366"},  // 2024-12-31
        {-1.25, u"%a %j", u"Fri 363"},
        {0.0, u"5% %Q %", u"5% %Q %"},
        {0.0, fits, fits},
        {0.0, fits + u"x", u""},
    };
    for (const auto& row : patterns) EXPECT_EQ(row.text, DateTimeFormat(row.day, row.pattern)) << ToUtf8(row.pattern);
}

TEST(DurationText, ShowsTheTwoGreatestUnits) {
    const struct {
        double seconds;
        const char *text, *compact;
    } rows[] = {{0, "0.0s", "0.00"},         {-8.64, "-8.6s", "-0.09"},    {9.96, "10.0s", "0.10"},     {10, "10s", "0.10"},
                {59.6, "01m 00s", "1.00"},   {725.76, "12m 06s", "12.06"}, {3599.6, "01h 00m", "1.00"}, {3900, "01h 05m", "1.05"},
                {86399.6, "1d 00h", "1.00"}, {-129600, "-1d 12h", "-1.12"}};
    for (const auto& [seconds, text, compact] : rows) {
        EXPECT_EQ(text, ToUtf8(DurationText(seconds / 86400))) << seconds;
        EXPECT_EQ(compact, ToUtf8(CompactDurationText(seconds / 86400))) << seconds;
    }
    EXPECT_EQ(u"10s", DurationText(0.00011574074074074073)) << "the double next to ten seconds";
    EXPECT_EQ(u"3000000000d 00h 3000000000.00", DurationText(3e9) + u" " + CompactDurationText(3e9));
    EXPECT_EQ(u"- -", DurationText(kNoValue) + CompactDurationText(kNoValue));
}

TEST(PositionText, DegreesAndMinutes) {
    const struct {
        std::u16string (*text)(double);
        double degrees;
        const char* expected;
    } rows[] = {{LatitudeText, 45.2057, "45 12.3420n"},    {LatitudeText, -45.2057, "45 12.3420s"},
                {LatitudeText, -0.0, "00 00.0000n"},       {LatitudeText, 90.0, "90 00.0000n"},
                {LatitudeText, 45.9999999, "45 60.0000n"}, {LongitudeText, 45.2057, "045 12.3420e"},
                {LongitudeText, -0.0, "000 00.0000e"},     {LongitudeText, -5.5, "005 30.0000w"},
                {LongitudeText, 180.0, "180 00.0000e"},    {LongitudeText, -180.0, "180 00.0000w"},
                {LongitudeText, 190.0, "170 00.0000w"},    {LongitudeText, -190.0, "170 00.0000e"}};
    for (const auto& [text, degrees, expected] : rows) EXPECT_EQ(expected, ToUtf8(text(degrees))) << degrees;
    EXPECT_EQ(u"", LatitudeText(90.0001));
    for (const double none : {541.0, -541.0, kNoValue, -double{INFINITY}, double{NAN}}) {
        EXPECT_EQ(u"", LatitudeText(none) + LongitudeText(none)) << none;
    }
}

TEST(RemoteLabel, FitsANameIntoEightCharacters) {
    const std::pair<const char16_t*, const char*> rows[] = {
        {u"VMG%", "VMG PC"},         {u"Burn%", "BURN PC"},        {u"Pol 0%", "POL 0PC"}, {u"PolBsp%", "POLBSP"},
        {u"1%2%3", "1 PC2 PC"},      {u"GPS tOffset", "GPS TOFF"}, {u"km/h", "KM H"},      {u"speed/hr", "SPEED HR"},
        {u"speed/hour", "SPEEDHOU"}, {u"TWD+90°%", "TWD+90"},      {u"é/ä", "é ä"}};
    for (const auto& [name, label] : rows) EXPECT_EQ(label, ToUtf8(RemoteLabelOf(name))) << ToUtf8(name);
}

}  // namespace
}  // namespace twr
