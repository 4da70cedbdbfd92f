
#include <cmath>

#include "base/wide_text.h"
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
        {kAlt1, 7.0, "- -"},       {kChannelCount, 1.0, "- -"}};
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

TEST_F(ChannelTextTest, FormatsTellTheDecimals) {
    const struct {
        ChannelId channel;
        std::uint16_t prec;
        const char* format;
    } rows[] = {
        {kTwd, 0, "%03.0lf"}, {kTwd, 2, "%06.2lf"}, {kTwd, 255, "%0259.255lf"}, {kAlt0, 7, "%0259.255lf"},
        {kBsp, 0, "%.0lf"},   {kBsp, 2, "%.2lf"},   {kBsp, 255, "%lf"},         {kBsp, 65535, "%.65535lf"},
    };
    for (const auto& row : rows) {
        Prec(row.channel, row.prec);
        EXPECT_EQ(row.format, core->ChannelFormat(row.channel));
    }
    EXPECT_EQ("", core->ChannelFormat(kChannelCount));
}

TEST_F(ChannelTextTest, TakesAnyNumber) {
    EXPECT_EQ(312u, Text(kBsp, 1e308).size());
    for (const double value : {1e15, 1e17, 1e308, -1e308, double{INFINITY}, -double{INFINITY}, double{NAN}, 5e-324, 2147483648.0}) {
        for (ChannelId channel = 0; channel < kChannelCount; ++channel) Text(channel, value);  // the sanitizers watch
        EXPECT_LT(CompactDurationText(value).size(), 80u) << value;
    }
    for (const ChannelId channel : {kTwd, kBsp, kMagVar}) {
        Prec(channel, 65534);
        EXPECT_LE(Text(channel, -1e308).size(), 66000u);
    }
}

}  // namespace
}  // namespace twr::testing
