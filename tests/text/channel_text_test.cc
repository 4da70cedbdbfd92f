// The texts of the record's channels, and the system log.
#include <cmath>

#include "base/wide_text.h"
#include "platform/paths.h"
#include "support/core_fixture.h"
#include "text/time_text.h"

namespace twr::testing {
namespace {

class ChannelTextTest : public CoreTest {
protected:
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
    const struct {
        ChannelId channel;
        double value;
        const char* text;
    } rows[] = {
        {kAwa, -23.4, "-23"},      {kTwd, 5.4, "005"},          {kTwd, 359.6, "360"},           {kTwd, -5.0, "-05"},
        {kCog, 5.4, "005.4"},      {kUser30, 5.4, "005.4"},     {kUser31, 5.4, "5.4"},          {kUser1, 5.4, "5.400000"},
        {kBsp, 7.126, "7.13"},     {kBsp, INFINITY, "inf"},     {kBsp, -INFINITY, "-inf"},      {kBsp, NAN, "nan"},
        {kBsp, kNoValue, "- -"},   {kTmOnS, 0.0084, "12m 06s"}, {kLat, 45.2057, "45 12.3420n"}, {kLon, 200.0, "160 00.0000w"},
        {kMagVar, -2.5, "2.50°w"}, {kMagVar, 2.5, "2.50°e"},    {kMagVar, 0.0, "0.00°w"},       {kBiasAng, 3.0, "3°s"},
        {kBiasAng, 0.0, "0°p"},    {kBiasAng, -3.0, "3°p"},     {kBiasL, 0.0, "0.00p"},         {kGateBiasL, 0.5, "0.50s"},
        {kDMkBrgCog, 0.0, "0R"},   {kDMkBrgCog, -4.0, "4L"},    {kSail, 1.0, "Main+J1"},        {kSail, kNoValue, "- -"},
        {kSailMark, 0.0, "A2"},    {kSailNext, 0.0, ""},        {kSailEvt, 0.0, "J2 up"},       {kAlt0, 7.0, "007"},
        {kAlt1, 7.0, "- -"},       {kChannelCount, 1.0, "- -"}, {kHdg, 5.4, "005.40"}};
    for (const auto& row : rows) EXPECT_EQ(row.text, Text(row.channel, row.value)) << row.channel << " at " << row.value;
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
    }
}

TEST_F(ChannelTextTest, NamesAreTheUsersWhereThereAreAny) {
    record.SetText(RecordBytes::Channel(174) + 76, u"Canard");
    record.SetSlot(2, 3, 174);
    record.SetSlot(1, 3, 500);
    const struct {
        ChannelId channel;
        const char *name, *label;
    } rows[] = {
        {0, "", ""},  {174, "Canard", "CANARD"}, {175, "User 3", "USER 3"}, {119, "Canard", "CANARD"}, {118, "Alt 1", "ALT 1"},
        {414, "", ""}};
    for (const auto& row : rows) {
        EXPECT_EQ(row.name, ToUtf8(core->ChannelName(row.channel))) << row.channel;
        EXPECT_EQ(row.label, ToUtf8(core->RemoteLabel(row.channel))) << row.channel;
    }
}

TEST_F(ChannelTextTest, TimesStandInTheZoneThatTheUserChose) {
    constexpr double kNoon = 46345.5;
    const struct {
        bool local;
        std::optional<ZoneState> zone;
        double hours;  // from UTC
        const char* text;
    } rows[] = {
        {false, ZoneState{-60, 0, false}, 0, "19-Nov-2026 12:00:00"},
        {true, ZoneState{-60, -60, false}, 1, "19-Nov-2026 13:00:00"},
        {true, ZoneState{300, -60, true}, -4, "19-Nov-2026 08:00:00"},
        {true, std::nullopt, 0, ""},
    };
    for (const auto& row : rows) {
        SetFlag(kFlagLocalTime, row.local);
        machine.zone.state = row.zone;
        EXPECT_DOUBLE_EQ(kNoon + row.hours / 24, core->ToDisplayTime(kNoon)) << row.text;
        EXPECT_EQ(row.text, Text(kGpsTime, kNoon));
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
    machine.clock.AdvanceMs((23 * 3600 + 3000) * 1000);
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
