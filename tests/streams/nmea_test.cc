// SPDX-License-Identifier: MIT
#include "streams/follow_fixture.h"
#include "streams/stream_format.h"
#include "support/test_system.h"

namespace twr::testing {
namespace {

struct NmeaTest : FollowTest {
    // The sentences without talker and checksum.
    std::string Sentences() {
        std::string out, all;
        StreamFormatOf("nmea").make()->Append(out, follower->Look(), *follower);
        for (const std::string& line : LinesOf(out)) {
            EXPECT_TRUE(line.starts_with("$II") && line.ends_with('\r') && line.size() <= 81) << line.size() << line;
            all += line.substr(3, line.find('*') - 3) + "\n";
        }
        return all;
    }
};

TEST_F(NmeaTest, SaysWhatIsKnownWithoutTheVariation) {
    const std::pair<ChannelId, double> published[] = {{kLat, 50.503456}, {kLon, -6.996}, {kSog, 7.04},  {kCog, 1.0},
                                                      {kHdg, 280.0},     {kBsp, 6.39},   {kAwa, -32.7}, {kAws, 14.2},
                                                      {kTwa, 58.9},      {kTws, 10.0},   {kTwd, 225.5}};
    for (const auto& [channel, value] : published) Publish(channel, value);
    EXPECT_EQ(
        "RMC,000000.00,A,5030.20736,N,00659.76000,W,7.04,,191126,,,A\n"
        "GLL,5030.20736,N,00659.76000,W,000000.00,A,A\n"
        "GGA,000000.00,5030.20736,N,00659.76000,W,1,,,,,,,,\n"
        "VTG,,,1.0,M,7.04,N,13.04,K,A\n"
        "HDG,280.0,,,,\n"
        "HDM,280.0,M\n"
        "VHW,,,280.0,M,6.39,N,11.83,K\n"
        "MWV,327.3,R,14.2,N,A\n"
        "MWV,58.9,T,10.0,N,A\n"
        "MWD,,,225.5,M,10.0,N,5.1,M\n",
        Sentences());
}

TEST_F(NmeaTest, LeavesMissingFieldsEmpty) {
    const std::pair<std::vector<std::pair<ChannelId, double>>, const char*> rows[] = {
        {{}, ""},
        {{{kMagVar, 3.0}, {kLat, 50.0}, {kGpsNum, 9.0}}, ""},
        {{{kBsp, 0.0}}, "VHW,,,,,0.00,N,0.00,K\n"},
        {{{kAws, 5.0}}, "MWV,,R,5.0,N,A\n"},
        {{{kLogBsp, 12.0}}, "VLW,12.00,N\n"},
        {{{kSet, 90.0}, {kDrift, 1.5}}, "VDR,,,90.0,M,1.50,N\n"},
        {{{kMkRng, 1.5}}, ""},
        {{{kMkRng, 1.5}, {kMkBrg, 90.0}}, "BWC,,,,,,,,90.0,M,1.50,N,MARK,N\nRMB,V,,,,MARK,,,,,1.50,,,V,N\n"},
        {{{kMkRng, 20000.0}, {kMkBrg, 90.0}}, ""},
        {{{kTrim, 2.0}}, "XDR,A,2.0,D,PTCH\n"},
        {{{kBsp, 1e9}, {kTws, kNoValue}, {kLon, 5.0}}, ""},
        {{{kLat, -0.0000001}, {kLon, 359.99999999}},
         "RMC,000000.00,A,0000.00001,S,00000.00000,W,,,191126,,,A\nGLL,0000.00001,S,00000.00000,W,000000.00,A,A\n"
         "GGA,000000.00,0000.00001,S,00000.00000,W,1,,,,,,,,\n"},
        {{{kLat, 49.99999999}, {kLon, 180.0}, {kGpsMethod, 8.0}},
         "RMC,000000.00,V,5000.00000,N,18000.00000,E,,,191126,,,S\nGLL,5000.00000,N,18000.00000,E,000000.00,V,S\n"}};
    for (const auto& [values, sentences] : rows) {
        for (const auto& [channel, value] : values) Publish(channel, value);
        EXPECT_EQ(sentences, Sentences());
        for (const auto& [channel, value] : values) Publish(channel, kNoValue);
    }
}

TEST_F(NmeaTest, TellsTheChosenBoatAndChannels) {
    Publish(kBsp, 5.0), Publish(kBsp, 6.0, 7), Publish(kHdg, 90.0, 7), Publish(kMagVar, 3.0);
    EXPECT_EQ("VHW,,,,,5.00,N,9.26,K\n", Sentences());
    Follow({.channels = {kHdg}, .boat = 7});
    EXPECT_EQ("HDG,90.0,,,3.0,E\nHDM,90.0,M\nHDT,93.0,T\nVHW,93.0,T,90.0,M,,,,\n", Sentences());
}

TEST_F(NmeaTest, ComesFromTheTalkersThatAreWanted) {
    Publish(kCog, 90.0), Publish(kBsp, 5.0);
    for (const auto& [typed, begins] : {std::pair("SD", "$SDVTG $SDVHW "), {"gps=GP", "$GPVTG $IIVHW "}}) {
        Talkers talkers;
        EXPECT_TRUE(TakeTalker(talkers, typed));
        const auto format = StreamFormatOf("nmea").make();
        format->SetTalkers(talkers);
        std::string out, found;
        format->Append(out, follower->Look(), *follower);
        for (const std::string& line : LinesOf(out)) found += line.substr(0, 6) + " ";
        EXPECT_EQ(begins, found);
    }
    Talkers talkers;
    for (const char* no : {"", "G", "GPS", "gp", "PX", "gps=", "wind=WI", "G,"}) EXPECT_FALSE(TakeTalker(talkers, no)) << no;
}

}  // namespace
}  // namespace twr::testing
