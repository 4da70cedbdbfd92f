#include "text/channel_text.h"

#include <gtest/gtest.h>

#include <cmath>

#include "platform/wide_text.h"
#include "support/fakes.h"
#include "support/record_writer.h"

namespace twr {
namespace {

class ChannelTextTest : public ::testing::Test {
protected:
    void Prec(ChannelId channel, std::uint16_t prec) { record.Set(6300 + 108 * channel + 6, prec); }
    void Type(ChannelId channel, std::int16_t type) { record.Set(6300 + 108 * channel + 10, type); }
    std::string Text(ChannelId channel, double value) { return ToUtf8(core.ChannelText(channel, value)); }

    testing::FakeMachine machine;
    CCore core{machine.Services()};
    testing::RecordWriter record{core};
};

TEST_F(ChannelTextTest, GoesByChannelTypeAndDecimals) {
    record.SetText(1588, u"J2 up");
    record.SetText(1780, u"Main+J1");
    record.SetText(1844, u"A2");
    Type(kUser30, kTypeBearing);
    Type(kUser31, kTypeBearing);
    Type(kUser1, -7);
    Prec(kUser31, 1);
    Prec(kUser30, 1);
    Prec(kCog, 1);
    const struct {
        ChannelId channel;
        double value;
        const char* text;
    } rows[] = {
        {kAwa, -23.4, "-23"},
        {kTwd, 5.4, "005"},
        {kTwd, 359.6, "360"},
        {kTwd, -5.0, "-05"},
        {kCog, 5.4, "005.4"},
        {kUser30, 5.4, "005.4"},
        {kUser31, 5.4, "5.4"},
        {kUser1, 5.4, "5.400000"},
        {kBsp, 7.126, "7.13"},
        {kBsp, kNoValue, "- -"},
        {kTmOnS, 0.0084, "12m 06s"},
        {kLat, 45.2057, "45 12.3420n"},
        {kLon, 200.0, "160 00.0000w"},
        {kGpsTime, 46345.5, "19-Nov-2026 12:00:00"},
        {kMagVar, -2.5, "2.50°w"},
        {kMagVar, 2.5, "2.50°e"},
        {kMagVar, 0.0, "0.00°w"},
        {kBiasAng, 3.0, "3°s"},
        {kBiasAng, -3.0, "3°p"},
        {kBiasL, 0.0, "0.00p"},
        {kGateBiasL, 0.5, "0.50s"},
        {kDMkBrgCog, 0.0, "0R"},
        {kDMkBrgCog, -4.0, "4L"},
        {kGpsMethod, 0.5, "GPS"},
        {kGpsMethod, 1.5, "DGPS"},
        {kGpsMethod, -0.4, "No GPS"},
        {kGpsMethod, 4.0, "RTK"},
        {kGpsMethod, 5.0, "RTK"},
        {kGpsMethod, 8.0, "Simulate"},
        {kGpsMethod, 9.0, "9"},
        {kGpsMethod, -1.0, "-1"},
        {kGpsMethod, 1e10, "-2147483648"},
        {kGpsMethod, NAN, "-2147483648"},
        {kGpsMode, 3.0, "Auto"},
        {kGpsMode, 4.0, "4"},
        {kGpsMode, 5.0, "5"},
        {kGpsMode, 7.0, "Null"},
        {kGpsMode, kNoValue, "- -"},
        {kSail, 1.0, "Main+J1"},
        {kSail, kNoValue, "- -"},
        {kSailMark, 0.0, "A2"},
        {kSailNext, 0.0, ""},
        {kSailEvt, 0.0, "J2 up"},
        {kChannelCount, 1.0, "- -"},
        {kAlt0, 1.0, "- -"},
    };
    for (const auto& row : rows) EXPECT_EQ(row.text, Text(row.channel, row.value)) << row.channel << " at " << row.value;
}

TEST_F(ChannelTextTest, FormatsTellTheDecimals) {
    const struct {
        ChannelId channel;
        std::uint16_t prec;
        const char* format;
    } rows[] = {
        {kTwd, 0, "%03.0lf"}, {kTwd, 1, "%05.1lf"}, {kTwd, 2, "%06.2lf"}, {kTwd, 255, "%0259.255lf"},
        {kBsp, 0, "%.0lf"},   {kBsp, 2, "%.2lf"},   {kBsp, 255, "%lf"},   {kBsp, 65535, "%.65535lf"},
    };
    for (const auto& row : rows) {
        Prec(row.channel, row.prec);
        EXPECT_EQ(row.format, core.ChannelFormat(row.channel));
    }
    EXPECT_EQ("", core.ChannelFormat(kChannelCount));
}

TEST_F(ChannelTextTest, AnAlternatingChannelShowsAsTheOneItStandsFor) {
    record.SetSlot(0, 1, kTwd);
    EXPECT_EQ("007", Text(kAlt0, 7.0));
    EXPECT_EQ("%03.0lf", core.ChannelFormat(kAlt0));
}

TEST_F(ChannelTextTest, TakesAnyNumber) {
    EXPECT_EQ(312u, Text(kBsp, 1e308).size());
    for (const ChannelId channel : {kTwd, kBsp, kMagVar}) {
        Prec(channel, 65534);
        EXPECT_LE(Text(channel, -1e308).size(), 66000u);
    }
    Prec(kBsp, 2);
    EXPECT_EQ("inf", Text(kBsp, INFINITY));
    EXPECT_EQ("-inf", Text(kBsp, -INFINITY));
    EXPECT_EQ("nan", Text(kBsp, NAN));
    for (ChannelId channel = 0; channel < kChannelCount; ++channel) {
        for (const double value : {1e308, -1e308, double{INFINITY}, -double{INFINITY}, double{NAN}, 5e-324, 2147483648.0}) {
            Text(channel, value);  // the sanitizers watch
        }
    }
}

}  // namespace
}  // namespace twr
