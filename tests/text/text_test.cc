// SPDX-License-Identifier: MIT
// Dates, durations, positions and labels, the texts of the record's channels, and the system log.
#include <gtest/gtest.h>

#include <cmath>

#include "base/calendar.h"
#include "base/no_value.h"
#include "base/numbers.h"
#include "base/wide_text.h"
#include "platform/files.h"
#include "support/core_fixture.h"
#include "text/texts.h"

namespace twr::testing {
namespace {

TEST(DateTimeFormat, SplitsDayNumbersAndFollowsThePattern) {
    const std::tuple<double, double, const char*> days[] = {
        {0.0, 0.0, "30-Dec-1899 00:00:00"},        {36585.0, 0.0, "29-Feb-2000 00:00:00"},
        {46345, 43200.4, "19-Nov-2026 12:00:00"},  {46387, 86399.6, "01-Jan-2027 00:00:00"},
        {-1, -21600, "29-Dec-1899 06:00:00"},      {-1, -86399.6, "30-Dec-1899 00:00:00"},
        {-657434, -64800, "01-Jan-0100 18:00:00"}, {2958465, 43200, "31-Dec-9999 12:00:00"}};
    for (const auto& [day, seconds, text] : days)
        EXPECT_EQ(text, ToUtf8(DateTimeFormat(day + seconds / 86400, u"%d-%b-%Y %H:%M:%S"))) << day << " and " << seconds;
    for (const double none : {-657435.0, 2958465.0 + 86399.6 / 86400, 2958466.0, -double{INFINITY}, double{NAN}})
        EXPECT_EQ(u"Invalid DateTime", DateTimeFormat(none, u"%d")) << none;
    const std::u16string fits(255, u'x');
    const std::tuple<double, std::u16string, std::u16string> patterns[] = {
        {46388.0, u"%a %A %B %j %m %y 100%%", u"Fri Friday January 001 01 27 100%"},
        {45657.0, u"%a %j", u"Tue 366"},  // 2024-12-31
        {-1.25, u"%a %j", u"Fri 363"},
        {0.0, u"5% %Q %", u"5% %Q %"},
        {0.0, fits, fits},
        {0.0, fits + u"x", u""}};
    for (const auto& [day, pattern, text] : patterns) EXPECT_EQ(text, DateTimeFormat(day, pattern)) << ToUtf8(pattern);
}

TEST(DurationText, ShowsTheTwoGreatestUnits) {
    const std::tuple<double, const char*, const char*> rows[] = {
        {0, "0.0s", "0.00"},         {-8.64, "-8.6s", "-0.09"},    {9.96, "10.0s", "0.10"},     {10, "10s", "0.10"},
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
    const std::tuple<std::u16string (*)(double), double, const char*> rows[] = {
        {LatitudeText, 45.2057, "45 12.3420n"},    {LatitudeText, -45.2057, "45 12.3420s"},
        {LatitudeText, -0.0, "00 00.0000n"},       {LatitudeText, 90.0, "90 00.0000n"},
        {LatitudeText, 45.9999999, "45 60.0000n"}, {LongitudeText, 45.2057, "045 12.3420e"},
        {LongitudeText, -0.0, "000 00.0000e"},     {LongitudeText, -5.5, "005 30.0000w"},
        {LongitudeText, 180.0, "180 00.0000e"},    {LongitudeText, -180.0, "180 00.0000w"},
        {LongitudeText, 190.0, "170 00.0000w"},    {LongitudeText, -190.0, "170 00.0000e"}};
    for (const auto& [text, degrees, expected] : rows) EXPECT_EQ(expected, ToUtf8(text(degrees))) << degrees;
    EXPECT_EQ(u"", LatitudeText(90.0001));
    for (const double none : {541.0, -541.0, kNoValue, -double{INFINITY}, double{NAN}})
        EXPECT_EQ(u"", LatitudeText(none) + LongitudeText(none)) << none;
}

TEST(RemoteLabel, FitsANameIntoEightCharacters) {
    const std::pair<const char16_t*, const char*> rows[] = {
        {u"VMG%", "VMG PC"},         {u"Burn%", "BURN PC"},        {u"Pol 0%", "POL 0PC"}, {u"PolBsp%", "POLBSP"},
        {u"1%2%3", "1 PC2 PC"},      {u"GPS tOffset", "GPS TOFF"}, {u"km/h", "KM H"},      {u"speed/hr", "SPEED HR"},
        {u"speed/hour", "SPEEDHOU"}, {u"TWD+90°%", "TWD+90"},      {u"é/ä", "é ä"}};
    for (const auto& [name, label] : rows) EXPECT_EQ(label, ToUtf8(RemoteLabelOf(name))) << ToUtf8(name);
}

struct ChannelTextTest : CoreTest {
    ChannelTextTest() { record.SetSlot(0, 1, kTwd); }  // Alt 0 stands for it

    void Prec(ChannelId channel, std::uint16_t prec) { record.Set(RecordBytes::Channel(channel) + 6, prec); }
    void Type(ChannelId channel, std::int16_t type) { record.Set(RecordBytes::Channel(channel) + 10, type); }
    std::string Text(ChannelId channel, double value) { return ToUtf8(core->ChannelText(channel, value)); }
};

TEST_F(ChannelTextTest, GoesByChannelTypeAndDecimals) {
    record.SetText(1588, u"J2 up");
    record.SetText(1780, u"Main+J1");
    record.SetText(1844, u"A2");
    for (const ChannelId bearing : {kUser30, kUser31}) Type(bearing, kTypeBearing);
    for (const ChannelId decimal : {kUser30, kUser31, kCog}) Prec(decimal, 1);
    Prec(kHdg, 2);
    Type(kUser1, -7);
    const std::tuple<ChannelId, double, const char*> rows[] = {
        {kAwa, -23.4, "-23"},      {kTwd, 5.4, "005"},          {kTwd, 359.6, "360"},           {kTwd, -5.0, "-05"},
        {kCog, 5.4, "005.4"},      {kUser30, 5.4, "005.4"},     {kUser31, 5.4, "5.4"},          {kUser1, 5.4, "5.400000"},
        {kBsp, 7.126, "7.13"},     {kBsp, INFINITY, "inf"},     {kBsp, -INFINITY, "-inf"},      {kBsp, NAN, "nan"},
        {kBsp, kNoValue, "- -"},   {kTmOnS, 0.0084, "12m 06s"}, {kLat, 45.2057, "45 12.3420n"}, {kLon, 200.0, "160 00.0000w"},
        {kMagVar, -2.5, "2.50°w"}, {kMagVar, 2.5, "2.50°e"},    {kMagVar, 0.0, "0.00°w"},       {kBiasAng, 3.0, "3°s"},
        {kBiasAng, 0.0, "0°p"},    {kBiasAng, -3.0, "3°p"},     {kBiasL, 0.0, "0.00p"},         {kGateBiasL, 0.5, "0.50s"},
        {kDMkBrgCog, 0.0, "0R"},   {kDMkBrgCog, -4.0, "4L"},    {kSail, 1.0, "Main+J1"},        {kSail, kNoValue, "- -"},
        {kSailMark, 0.0, "A2"},    {kSailNext, 0.0, ""},        {kSailEvt, 0.0, "J2 up"},       {kAlt0, 7.0, "007"},
        {kAlt1, 7.0, "- -"},       {kChannelCount, 1.0, "- -"}, {kHdg, 5.4, "005.40"}};
    for (const auto& [channel, value, text] : rows) EXPECT_EQ(text, Text(channel, value)) << channel << " at " << value;
    const std::pair<ChannelId, const char*> formats[] = {{kCog, "%05.1lf"}, {kBsp, "%.2lf"}, {kUser1, "%lf"}, {kAlt1, ""}};
    for (const auto& [channel, format] : formats) EXPECT_EQ(format, core->ChannelFormat(channel)) << channel;
}

TEST_F(ChannelTextTest, TheGpsHasNamesForItsMethodsAndModes) {
    std::string methods, modes;
    for (const double number : {-1.0, -0.4, 0.5, 1.5, 3.0, 4.0, 5.0, 6.0, 7.0, 8.0, 9.0, 1e10, double{NAN}, kNoValue}) {
        methods += Text(kGpsMethod, number) + ", ";
        modes += Text(kGpsMode, number) + ", ";
    }
    EXPECT_EQ("-1, No GPS, GPS, DGPS, PGPS, RTK, RTK, DR, Manual, Simulate, 9, -2147483648, -2147483648, - -, ", methods);
    EXPECT_EQ("-1, 1D, 2D, 3D, Auto, 4, 5, Error, Null, 8, 9, -2147483648, -2147483648, - -, ", modes);
}

TEST_F(ChannelTextTest, TakesAnyNumber) {
    for (const double value : {1e17, 1e308, -1e308, double{INFINITY}, -double{INFINITY}, double{NAN}, 5e-324, 2147483648.0}) {
        for (ChannelId channel = 0; channel < kChannelCount; ++channel) Text(channel, value);  // the sanitizers watch
        EXPECT_LT(CompactDurationText(value).size(), 80u) << value;
    }
    EXPECT_EQ(312u, Text(kBsp, 1e308).size());
    for (const ChannelId channel : {kTwd, kBsp, kMagVar}) {
        Prec(channel, 65534);
        EXPECT_LE(Text(channel, -1e308).size(), 66000u);
        const std::string tenth =
            Printed(channel == kTwd ? "%065538.65534lf" : "%.65534lf", 0.1) + (channel == kMagVar ? "°e" : "");
        EXPECT_TRUE(tenth == Text(channel, 0.1)) << channel;  // too long to be shown
    }
}

TEST_F(ChannelTextTest, NamesAreTheUsersWhereThereAreAny) {
    record.SetText(RecordBytes::Channel(174) + 76, u"Canard");
    record.SetSlot(2, 3, 174);
    record.SetSlot(1, 3, 500);
    const std::tuple<ChannelId, const char*, const char*> rows[] = {
        {0, "", ""},  {174, "Canard", "CANARD"}, {175, "User 3", "USER 3"}, {119, "Canard", "CANARD"}, {118, "Alt 1", "ALT 1"},
        {414, "", ""}};
    for (const auto& [channel, name, label] : rows) {
        EXPECT_EQ(name, ToUtf8(core->ChannelName(channel))) << channel;
        EXPECT_EQ(label, ToUtf8(core->RemoteLabel(channel))) << channel;
    }
}

TEST_F(ChannelTextTest, TimesStandInTheZoneThatTheUserChose) {
    constexpr double kNoon = 46345.5;
    // hours: from UTC
    const std::tuple<bool, std::optional<ZoneState>, double, const char*> rows[] = {
        {false, ZoneState{-60, 0, false}, 0, "19-Nov-2026 12:00:00"},
        {true, ZoneState{-60, -60, false}, 1, "19-Nov-2026 13:00:00"},
        {true, ZoneState{300, -60, true}, -4, "19-Nov-2026 08:00:00"},
        {true, std::nullopt, 0, ""}};
    for (const auto& [local, zone, hours, text] : rows) {
        SetFlag(kFlagLocalTime, local);
        machine.zone.state = zone;
        EXPECT_DOUBLE_EQ(kNoon + hours / 24, core->ToDisplayTime(kNoon)) << text;
        EXPECT_EQ(text, Text(kGpsTime, kNoon));
    }
}

// Of the user's day, with times of UTC.
TEST_F(ChannelTextTest, TheSystemLogFollowsItsMessageOnTheScreen) {
    std::size_t filesAtTheBox = 99;
    machine.desktop.answer = [&](const auto&) {
        machine.clock.AdvanceMs(1000);  // the user takes a second
        filesAtTheBox = machine.files.files.size();
        return BoxAnswer::kOk;
    };
    machine.zone.state = ZoneState{-60, 0, false};
    machine.clock.AdvanceMs(85'800'000);  // 23 h and 50 min
    core->WriteSystemLog(u"One");
    EXPECT_EQ(0u, filesAtTheBox);
    SetFlag(kFlagLocalTime, false);
    core->WriteSystemLog(u"");
    core->WriteSystemLog(u"Three");
    const auto& box = machine.desktop.boxes.at(0);
    EXPECT_TRUE(box.text == u"One" && box.caption == u"Halyrig32" && box.buttons == BoxButtons::kOk && box.icon == BoxIcon::kStop);
    std::string logs;
    for (const auto& file : machine.files.files) logs += ToUtf8(file.path) + "|" + file.bytes;
    const std::string folder = ToUtf8(JoinPath(core->GetDataFolder(u"log_system"), u"log_system_")), end(kLineEnd);
    EXPECT_EQ(folder + "20Nov2026.log|23:50:01 : One" + end + folder + "19Nov2026.log|23:50:02 : " + end + "23:50:03 : Three" + end,
              logs);
}

}  // namespace
}  // namespace twr::testing
