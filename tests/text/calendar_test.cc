#include "text/calendar.h"

#include <gtest/gtest.h>

#include <cmath>

#include "platform/wide_text.h"

namespace twr {
namespace {

constexpr double kSecond = 1.0 / 86400.0;
constexpr const char* kInvalid = "Invalid DateTime";

TEST(DateTimeFormat, SplitsDayNumbers) {
    const struct {
        double day;
        const char* text;
    } rows[] = {
        {0.0, "30-Dec-1899 00:00:00"},
        {2.0, "01-Jan-1900 00:00:00"},
        {61.0, "01-Mar-1900 00:00:00"},
        {25569.0, "01-Jan-1970 00:00:00"},
        {36585.0, "29-Feb-2000 00:00:00"},
        {46345.5, "19-Nov-2026 12:00:00"},
        {46345.0 + 43200.4 * kSecond, "19-Nov-2026 12:00:00"},
        {46345.0 + 43200.6 * kSecond, "19-Nov-2026 12:00:01"},
        {46345.0 + 86399.6 * kSecond, "20-Nov-2026 00:00:00"},
        {46387.0 + 86399.6 * kSecond, "01-Jan-2027 00:00:00"},
        {-0.25, "30-Dec-1899 06:00:00"},
        {-1.25, "29-Dec-1899 06:00:00"},
        {-1.0 - 86399.6 * kSecond, "30-Dec-1899 00:00:00"},
        {-657434.0, "01-Jan-0100 00:00:00"},
        {-657434.75, "01-Jan-0100 18:00:00"},
        {-657435.0, kInvalid},
        {2958465.0, "31-Dec-9999 00:00:00"},
        {2958465.5, "31-Dec-9999 12:00:00"},
        {2958465.0 + 86399.6 * kSecond, kInvalid},
        {2958466.0, kInvalid},
        {1e300, kInvalid},
        {-INFINITY, kInvalid},
        {NAN, kInvalid},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.text, ToUtf8(DateTimeFormat(row.day, u"%d-%b-%Y %H:%M:%S"))) << row.day;
    }
}

TEST(DateTimeFormat, FollowsThePattern) {
    constexpr double kFriday = 46388.0 + (14 * 3600 + 5 * 60 + 9) * kSecond;  // 2027-01-01
    const std::u16string fits(255, u'x');
    const struct {
        double day;
        std::u16string pattern;
        std::string text;
    } rows[] = {
        {kFriday, u"", ""},
        {kFriday, u"%H:%M:%S : ", "14:05:09 : "},
        {kFriday, u"log_%d%b%Y.log", "log_01Jan2027.log"},
        {kFriday, u"%a %A %B %j %m %y 100%%", "Fri Friday January 001 01 27 100%"},
        {kFriday - 1.0, u"%a %j", "Thu 365"},
        {45657.0, u"%a %j", "Tue 366"},  // 2024-12-31
        {1.0, u"%a %j", "Sun 365"},
        {-1.25, u"%a %j", "Fri 363"},
        {kFriday, u"5% %Q %", "5% %Q %"},
        {kFriday, fits, std::string(255, 'x')},
        {kFriday, fits + u"x", ""},
    };
    for (const auto& row : rows) EXPECT_EQ(row.text, ToUtf8(DateTimeFormat(row.day, row.pattern))) << ToUtf8(row.pattern);
}

}  // namespace
}  // namespace twr
