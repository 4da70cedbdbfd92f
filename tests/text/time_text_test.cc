#include "text/time_text.h"

#include <cmath>

#include "base/calendar.h"
#include "base/wide_text.h"
#include "support/core_fixture.h"

namespace twr::testing {
namespace {

constexpr double kSecond = 1.0 / 86400.0;

TEST(DateTimeFormat, SplitsDayNumbersAndFollowsThePattern) {
    constexpr const char* kInvalid = "Invalid DateTime";
    constexpr double kFriday = 46388.0 + (14 * 3600 + 5 * 60 + 9) * kSecond;  // 2027-01-01
    const std::u16string full = u"%d-%b-%Y %H:%M:%S", fits(255, u'x');
    const struct {
        double day;
        std::u16string pattern;
        std::string text;
    } rows[] = {
        {0.0, full, "30-Dec-1899 00:00:00"},
        {25569.0, full, "01-Jan-1970 00:00:00"},
        {36585.0, full, "29-Feb-2000 00:00:00"},
        {46345.0 + 43200.4 * kSecond, full, "19-Nov-2026 12:00:00"},
        {46345.0 + 43200.6 * kSecond, full, "19-Nov-2026 12:00:01"},
        {46387.0 + 86399.6 * kSecond, full, "01-Jan-2027 00:00:00"},
        {-0.25, full, "30-Dec-1899 06:00:00"},
        {-1.25, full, "29-Dec-1899 06:00:00"},
        {-1.0 - 86399.6 * kSecond, full, "30-Dec-1899 00:00:00"},
        {-657434.75, full, "01-Jan-0100 18:00:00"},
        {-657435.0, full, kInvalid},
        {2958465.5, full, "31-Dec-9999 12:00:00"},
        {2958465.0 + 86399.6 * kSecond, full, kInvalid},
        {2958466.0, full, kInvalid},
        {-INFINITY, full, kInvalid},
        {NAN, full, kInvalid},
        {kFriday, u"", ""},
        {kFriday, u"%H:%M:%S : ", "14:05:09 : "},
        {kFriday, u"log_%d%b%Y.log", "log_01Jan2027.log"},
        {kFriday, u"%a %A %B %j %m %y 100%%", "Fri Friday January 001 01 27 100%"},
        {45657.0, u"%a %j", "Tue 366"},  // 2024-12-31
        {-1.25, u"%a %j", "Fri 363"},
        {kFriday, u"5% %Q %", "5% %Q %"},
        {kFriday, fits, std::string(255, 'x')},
        {kFriday, fits + u"x", ""},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.text, ToUtf8(DateTimeFormat(row.day, row.pattern))) << row.day << " as " << ToUtf8(row.pattern);
    }
}

TEST(DurationText, ShowsTheTwoGreatestUnits) {
    const struct {
        double days;
        const char *text, *compact;
    } rows[] = {
        {0.0, "0.0s", "0.00"},
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
        {-1.5, "-1d 12h", "-1.12"},
        {3e9, "3000000000d 00h", "3000000000.00"},
        {kNoValue, "- -", ""},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.text, ToUtf8(DurationText(row.days))) << row.days;
        EXPECT_EQ(row.compact, ToUtf8(CompactDurationText(row.days))) << row.days;
    }
}

class TimeTextTest : public CoreTest {};

TEST_F(TimeTextTest, StandsInTheZoneThatTheUserChose) {
    constexpr double kNoon = 46345.5;
    using State = std::optional<ZoneState>;
    const struct {
        bool local;
        State zone;
        double display;
        const char* text;
    } rows[] = {
        {false, State({-60, 0, false}), kNoon, "19-Nov-2026 12:00:00"},
        {true, State({-60, -60, false}), kNoon + 1.0 / 24, "19-Nov-2026 13:00:00"},
        {true, State({300, -60, true}), kNoon - 4.0 / 24, "19-Nov-2026 08:00:00"},
        {true, State({-780, 0, false}), kNoon + 13.0 / 24, "20-Nov-2026 01:00:00"},
        {true, std::nullopt, kNoon, ""},
        {false, std::nullopt, kNoon, "19-Nov-2026 12:00:00"},
    };
    for (const auto& row : rows) {
        SetFlag(kFlagLocalTime, row.local);
        machine.zone.state = row.zone;
        EXPECT_DOUBLE_EQ(row.display, core->ToDisplayTime(kNoon)) << row.text;
        EXPECT_EQ(row.text, ToUtf8(core->TimeText(kNoon)));
        EXPECT_EQ(row.text, ToUtf8(core->ChannelText(kGpsTime, kNoon)));
    }
}

}  // namespace
}  // namespace twr::testing
