// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <sstream>

#include "stand_in/log_replay.h"
#include "stand_in/log_survey.h"
#include "stand_in/variables.h"
#include "support/fakes.h"
#include "support/test_system.h"

namespace twr::testing {
namespace {

// What lines, separated by bars, say together: "NAME=value" of each variable that isn't absent.
std::string Heard(const std::string& lines) {
    Readings readings;
    for (const std::string& line : LinesOf(lines, '|')) {
        if (const auto sentence = ParseSentence(line)) readings.Take(*sentence, 0.0);
    }
    const Moment moment = readings.At(0.0);
    std::ostringstream heard;
    for (const Variable& variable : Variables()) {
        const float value = moment[variable.quantity];
        if (value != kAbsent) heard << variable.name << "=" << value << " ";
    }
    return heard.str();
}

// Nothing is made up: neither 0 for an empty field nor anything for what would need more than is there.
TEST(Readings, TakesEachSentence) {
    const std::pair<std::string, const char*> rows[] = {
        {"$GPRMC,095559,A,6005.071,N,02332.346,W,5.8,224.4,010704,7.5,W",
         "COG=224.4 SOG=5.8 LAT=60.0845 LON=-23.5391 VARIATION=-7.5 "},
        {"$GPRMC,095559,V,6005.071,N,02332.346,E,5.8,224.4,,,|$GPRMC,095559,A,6005.071,N,,,,,,,", ""},
        {"$GPGGA,095559,6005.071,S,02332.346,E,1,08,1.0,5,M,,M,,", "LAT=-60.0845 LON=23.5391 "},
        {"$GPGGA,095559,6005.071,N,02332.346,E,0,,,,,,,,|$GPGLL,6005.071,N,02332.346,E,095559,V", ""},
        {"$GPGLL,6005.071,N,02332.346,E,095559,A,D", "LAT=60.0845 LON=23.5391 "},
        {"$GPGLL,6005.071,N,02332.346,E", "LAT=60.0845 LON=23.5391 "},
        {"$GPGLL,,N,2332.3,E|$GPGLL,6005.1,,2332.3,E|$GPGLL,6005.1,E,2332.3,E|$GPGLL,6065.0,N,2332.3,E", ""},
        {"$GPGLL,9100.0,N,2332.3,E|$GPGLL,-6005.0,N,2332.3,E|$GPGLL,6005.1,N,18100.0,E", ""},
        {"$IIVTG,2.0,T,355.5,M,5.81,N,10.76,K,D|$IIHDM,12.0,M", "HDG=18.5 COG=2 SOG=5.81 VARIATION=6.5 "},
        {"$IIVTG,224.44,T,217.0,M,5.81,N,,K|$IIHDG,,,,7.5,W", "COG=224.44 SOG=5.81 VARIATION=-7.5 "},
        {"$IIVTG,,T,217.0,M,,N,18.52,K,D|$IIHDG,,,,7.5,E", "COG=224.5 SOG=10 VARIATION=7.5 "},
        {"$IIVTG,224.4,T,,M,5.8,N,,K,N|$IIVTG,500.0,T,217.0,M,,N,,K,D", ""},
        {"$IIHDT,,T|$IIHDT,12.0,M|$IIHDT,361.0,T|$IIHDM,,M|$IIHDM,12.0,M|$IIHDG,,,,,", ""},
        {"$IIHDM,5.0,M|$IIHDG,5.0,,,7.5,W", "HDG=357.5 VARIATION=-7.5 "},
        {"$IIHDG,350.0,2.0,E,10.0,E", "HDG=2 VARIATION=10 "},
        {"$IIVHW,12.5,T,,M,,N,18.52,K", "BSP=10 HDG=12.5 "},
        {"$IIVHW,,T,,M,,N,,K|$IIVHW,,T,,M,32767,N,,K|$IIVHW,,T,,M,-6.0,N,,K", ""},
        {"$IIMWV,338,R,36.0,K,A|$IIMWV,180,T,10.0,M,A", "AWA=-22 AWS=19.4384 TWA=-180 TWS=19.4384 "},
        {"$IIMWV,338,R,13.41,N,V|$IIMWV,338,X,13.41,N,A|$IIMWV,,R,,N,A", ""},
        {"$IIVWR,039,L,08.10,N,04.17,M,,|$IIVWT,039,R,,N,5.0,M,,", "AWA=-39 AWS=8.1 TWA=39 TWS=9.71922 "},
        {"$IIVWT,039,,,N,,,,|$IIMWD,,T,,M,,N,,M", ""},
        {"$IIMWD,200.0,T,192.5,M,08.16,N,04.20,M", "TWS=8.16 TWD=200 "},
        {"$IIMWD,,T,192.5,M,08.16,N,,|$IIHDG,,,,7.5,E", "TWS=8.16 TWD=200 VARIATION=7.5 "},
        {"$IIDPT,10.0,-1.5", "DEPTH=32.808 "},
        {"$IIDPT,10.0,0.5|$IIDBT,32.8,f,10.0,M,5.5,F", "DEPTH=34.4484 "},
        {"$IIDBT,034.25,f,010.44,M,005.64,F", "DEPTH=34.2516 "},
        {"$IIDBT,100.0,f,,M,,F", "DEPTH=99.9988 "},
        {"$IIDBT,,f,,M,20.0,F", "DEPTH=119.999 "},
        {"$IIDPT,,0.5|$IIDBT,,f,,M,,F|$IIMTW,,C", ""},
        {"$IIVDR,60.0,T,,M,1.2,N|$IIMTW,14.5,C|$IIHDT,12.5,T", "HDG=12.5 SET=60 DRIFT=1.2 SEATEMP=14.5 "},
        {"$IIROT,-120.0,A|$IIRSA,-3.5,A,,V|$IIVPW,-4.71,N,,", "RUDDER=-3.5 ROT=-2 VMG=-4.71 "},
        {"$IIVDR,,T,,M,,N|$IIVPW,,N,,|$IIROT,1.0,V|$IIRSA,,A,,|$IIRSA,5.0,V,,", ""},
        {"$IIXDR,A,12.0,D,HEEL,A,-1.5,D,PITCH,P,1.0132,B,BARO,C,17.5,C,AIRTEMP", "HEEL=-12 TRIM=-1.5 AIRTEMP=17.5 BARO=1013.2 "},
        {"$IIXDR,P,101320,P,Barometer,U,12.6,V,BATT1", "BARO=1013.2 VOLTS=12.6 "},
        {"$IIXDR,A,,D,HEEL,A,1.0,D,WING,P,1.0,B,OIL", ""},
        {"$IIXDR,A,-3.5,D,Rudder,A,12.0,D,Heel Angle,C,9.0,C,TempAir", "HEEL=-12 RUDDER=-3.5 AIRTEMP=9 "},
        // What follows from the rest.
        {"$IIMWD,,T,20.0,M,10.0,N,,|$IIHDM,350.0,M", "TWA=30 TWS=10 "},
        {"$IIHDT,350.0,T|$IIMWV,30,T,10.0,N,A", "TWA=30 TWS=10 TWD=20 HDG=350 "},
        {"$IIMWD,20.0,T,,M,10.0,N,,|$IIHDT,350.0,T", "TWA=30 TWS=10 TWD=20 HDG=350 "},
        {"$IIMWV,90,R,6.0,N,A|$IIVHW,,T,,M,6.0,N,,K", "BSP=6 AWA=90 AWS=6 TWA=135 TWS=8.48528 VMG=-4.24264 "},
        {"$IIMWV,60,T,6.0,N,A|$IIVHW,,T,,M,6.0,N,,K", "BSP=6 AWA=30 AWS=10.3923 TWA=60 TWS=6 VMG=3 "},
        // Forms of a line.
        {"$IIVHW,,T,,M,06.11,N,11.31,K*51|$IIMTW,+4.5,C|$IIVPW,5.,N,,|$IIXDR,C,.5,C,AIR",
         "BSP=6.11 SEATEMP=4.5 AIRTEMP=0.5 VMG=5 "},
        {"  $HEHDT, 123.4 ,T*2b\r", "HDG=123.4 "},
        {"$|$*|$IIHDT|IIHDT,1,T|!IIHDT,2,T|$IIHDT,3,T*00|$IIHDT,4,T*0|$IIHDT,5,T*0G|$IIHDT,6,T*|$IIHDT,7,T*3B1", ""},
        {"$IHDT,1,T|$iiHDT,2,T|$PAHDT,3,T|$IIHDT,4,T,$|$IIHDT,5,T,\xFF|$IIHDT,6,T" + std::string(60, ','), ""},
        {std::string("$IIHDT,12,T,\0", 13), ""},
        {"$IIHDT,-,T|$IIHDT,+,T|$IIHDT,.,T|$IIHDT,+-1,T|$IIHDT,1e1,T|$IIHDT,nan,T|$IIHDT,0x10,T|$IIHDT,1.2.3,T", ""},
        {"$IIHDT,inf,T|$IIHDT,000000000000000000001,T", ""}};
    for (const auto& [lines, heard] : rows) EXPECT_EQ(heard, Heard(lines)) << lines;
}

// The readings that only a record has.
TEST(Readings, TakesWhatSatellitesAndLogsTell) {
    using enum Reading;
    const std::tuple<const char*, Reading, std::optional<double>> rows[] = {
        {"$IIVLW,123.4,N,0.51,N", kLog, 123.4},
        {"$IIVLW,123.4,N,0.51,N", kTrip, 0.51},
        {"$IIVLW,,N,,N", kTrip, {}},
        {"$GPGSA,A,3,1,2,3,,,,,,,,,,2.5,1.3,2.1", kPdop, 2.5},
        {"$GPGSA,A,3,1,2,3,,,,,,,,,,2.5,1.3,2.1", kVdop, 2.1},
        {"$GPGSA,A,1,,,,,,,,,,,,,99,99,99", kHdop, {}},
        {"$GPGGA,1,6005.0,N,02332.0,E,2,09,0.9,12.5,M,19.6,M,3.0,0120", kFixQuality, 2},
        {"$GPGGA,1,6005.0,N,02332.0,E,2,09,0.9,12.5,M,19.6,M,3.0,0120", kAltitude, 12.5},
        {"$GPGGA,1,6005.0,N,02332.0,E,2,09,0.9,12.5,M,19.6,M,3.0,0120", kDifferentialStation, 120},
        {"$GPGGA,1,,,,,0,00,99,,M,,M,,", kFixQuality, 0},
        {"$GPGGA,1,,,,,0,00,99,,M,,M,,", kSatellites, {}}};
    for (const auto& [line, reading, value] : rows) {
        Readings readings;
        readings.Take(*ParseSentence(line), 0.0);
        EXPECT_EQ(value, readings.Get(reading, 0.0)) << line;
    }
    const std::pair<const char*, std::optional<double>> dates[] = {{"$GPRMC,1,A,,,,,,,251126,,", 46351},
                                                                   {"$GPRMC,1,A,,,,,,,310299,,", {}},
                                                                   {"$GPZDA,1,25,11,2026,00,00", 46351},
                                                                   {"$GPZDA,1,257,1,2026,00,00", {}},
                                                                   {"$GPZDA,1,,,,00,00", {}}};
    for (const auto& [line, date] : dates) EXPECT_EQ(date, DateOf(*ParseSentence(line))) << line;
}

constexpr const char16_t* kPath = u"/deckman/recording.nmea";

std::string Speed(int knots) { return "$IIVHW,,T,,M," + std::to_string(knots) + ",N,,K\r\n"; }
std::string At(const std::string& time) { return "$GPZDA," + time + ",,,,00,\r\n"; }

// The boat speed says where in the recording the replay is.
TEST(LogReplay, KeepsTheRecordingsTime) {
    constexpr float kGone = kAbsent;
    std::string lost = At("120000") + Speed(1);
    for (int i = 0; i < 1000; ++i) lost += Speed(2);
    // steps: seconds, and the speed after them
    const std::tuple<const char*, std::string, std::vector<std::pair<double, float>>> rows[] = {
        {"its own clock",
         At("120000") + Speed(1) + At("120002") + Speed(2) + At("120002.50") + Speed(3) + At("120100") + Speed(4),
         {{0, 1}, {1.9, 1}, {0.2, 2}, {0.5, 3}, {9.5, 3}, {1, kGone}, {46, kGone}, {1, 4}}},
        {"midnight, behind a leap second", At("235960") + Speed(1) + At("000001") + Speed(2), {{0, 1}, {0.9, 1}, {0.2, 2}}},
        {"position", "$GPGLL,,,,,120000,V\n" + Speed(1) + "$GPGLL,,,,,120002,V\n" + Speed(2), {{0, 1}, {1.9, 1}, {0.2, 2}}},
        {"no clock", Speed(1) + "$IIHDT,1,T\n$IIHDT,1,T\n" + Speed(2), {{0, 1}, {0.9, 1}, {0.2, 2}}},
        {"empty clock", At("") + Speed(1) + At("") + Speed(2), {{0, 1}, {0.9, 1}, {0.2, 2}}},
        {"late clock", Speed(9) + Speed(1) + At("120000") + Speed(1) + At("120004") + Speed(2), {{0, 1}, {3.9, 1}, {0.2, 2}}},
        {"jitter",
         At("120000.2") + At("120000") + Speed(1) + At("120001.2") + At("120001") + Speed(2),
         {{0, 1}, {0.9, 1}, {0.2, 2}}},
        {"set back", At("120000") + Speed(9) + At("110000") + Speed(1) + At("110002") + Speed(2), {{0, 1}, {1.9, 1}, {0.2, 2}}},
        {"broken times",
         At("120000") + Speed(1) + At("129900") + At("245959") + At("1201") + At("1201000") + At("12-100") + At("120061") +
             At("120009.x") + At("120002") + Speed(2),
         {{0, 1}, {1.9, 1}, {0.2, 2}}},
        {"a gap of hours", At("120000") + Speed(1) + At("180000") + Speed(2), {{0, 1}, {59.9, kGone}, {0.2, 2}}},
        {"the clock is lost, and rounds count", lost + Speed(3), {{300, 2}, {300, 2}, {102.5, 3}}},
        {"broken lines, empty fields",
         At("120000") + Speed(1) + "$IIVHW,,T,,M,5,N,,K*00\n$IIVHW,,T,,M,,N,,K\n" + std::string(100000, 'x') + "\n\n\x01\x1A\n" +
             At("120001") + "$IIVHW,,T,,M,2,N,,K",
         {{0, 1}, {0.9, 1}, {0.2, 2}}},
        {"rounds apart", At("120000") + At("120002") + Speed(2), {{0, kGone}, {2.1, 2}, {0.95, kGone}, {2.1, 2}, {0.95, kGone}}},
        {"an empty file", "", {{1000, kGone}, {1e12, kGone}}},
        {"one line", std::string(300000, '$'), {{1000, kGone}, {1e12, kGone}}},
        {"zeros", std::string(300000, '\0'), {{1000, kGone}, {1e12, kGone}}}};
    for (const auto& [name, bytes, steps] : rows) {
        FakeFiles files;
        files.files = {{kPath, bytes}};
        LogReplay replay(files, kPath);
        for (const auto& [seconds, speed] : steps) {
            replay.Advance(seconds);
            EXPECT_EQ(speed, replay.Now()[Quantity::kBsp]) << name << ", " << seconds << " s on";
        }
    }
}

TEST(LogReplay, HasNothingWhileTheRecordingIsGone) {
    FakeFiles files;
    files.files = {{kPath, At("120000") + Speed(1) + At("120002") + Speed(2)}};
    LogReplay replay(files, kPath);
    files.files.clear();
    const auto after = [&](double seconds) { return replay.Advance(seconds), replay.Now()[Quantity::kBsp]; };
    EXPECT_EQ(2.0F, after(2.5)) << "what is open plays on";
    EXPECT_EQ(kAbsent, after(1.0));
    EXPECT_EQ(kAbsent, after(100.0));
    files.files = {{kPath, Speed(7)}};
    EXPECT_EQ(7.0F, after(1.0));
}

TEST(LogSurvey, SaysWhatIsOfUse) {
    const std::string longest = "$IIHDT,5,T" + std::string(kLogLines.longest - 10, ' ');
    const std::pair<std::string, const char*> rows[] = {
        {Speed(1) + "\n" + At("120000") + Speed(2) + "$IIVHW,,T,,M,,N,,K\n$GPGSV,1\n# a remark\n$IIVHW,,T,,M,5,N,,K*00",
         "7 lines, of which 2 (28.6 %) are broken\n  used: VHW 2, ZDA 1\n  empty, or of no use: GSV 1, VHW 1\n"},
        {"$IIHDT,1,T\r\n$IIHDT,2,T\r$IIHDT,3,T\n" + longest + "\n" + longest + " \n$IIHDT,4,T",
         "6 lines, of which 1 (16.7 %) are broken\n  used: HDT 5\n  empty, or of no use: none\n"},
        {"", "it is empty"},
        {"\r\n \r\n", "it is empty"},
        {"\x1F\x8B\x08" + Speed(1), "it is packed by gzip: unpack it first"},
        {"2026-11-19;12.5;13.1\n" + std::string(9000, 'x'), "no line in it is an NMEA 0183 sentence"},
        {At("120000") + "$IIHDT,,T\n", "none of its sentences holds a value that the stand-in reads"}};
    FakeFiles files;
    EXPECT_EQ("it can't be read", WhyUseless(SurveyLog(files, kPath)));
    for (const auto& [bytes, expected] : rows) {
        files.files = {{kPath, bytes}};
        const LogSurvey survey = SurveyLog(files, kPath);
        const std::string why = WhyUseless(survey);
        EXPECT_EQ(expected, why.empty() ? Described(survey) : why);
    }
}

}  // namespace
}  // namespace twr::testing
