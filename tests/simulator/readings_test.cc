#include "simulator/readings.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

namespace twr {
namespace {

using enum Quantity;

// What lines, parted by blanks, say together.
Moment Heard(const std::string& lines) {
    Readings readings;
    std::istringstream in(lines);
    std::string line;
    while (in >> line) {
        const auto sentence = ParseSentence(line);
        EXPECT_TRUE(sentence) << line;
        if (sentence) readings.Take(*sentence, 0.0);
    }
    return readings.At(0.0);
}

TEST(Readings, TakesEachSentence) {
    const struct {
        const char* lines;
        Quantity quantity;
        double value;
    } rows[] = {
        {"$GPRMC,095559,A,6005.071,N,02332.346,W,5.8,224.4,010704,7.5,W", kLat, 60.084517},
        {"$GPRMC,095559,A,6005.071,N,02332.346,W,5.8,224.4,010704,7.5,W", kLon, -23.539100},
        {"$GPRMC,095559,A,6005.071,N,02332.346,W,5.8,224.4,010704,7.5,W", kSog, 5.8},
        {"$GPRMC,095559,A,6005.071,N,02332.346,W,5.8,224.4,010704,7.5,W", kCog, 224.4},
        {"$GPRMC,095559,A,6005.071,N,02332.346,W,5.8,224.4,010704,7.5,W", kVariation, -7.5},
        {"$GPGGA,095559,6005.071,S,02332.346,E,1,08,1.0,5,M,,M,,", kLat, -60.084517},
        {"$GPGLL,6005.071,N,02332.346,E,095559,A,D", kLon, 23.5391},
        {"$GPGLL,6005.071,N,02332.346,E", kLon, 23.5391},
        {"$IIVTG,224.44,T,217.0,M,5.81,N,10.76,K,D", kCog, 224.44},
        {"$IIVTG,224.44,T,217.0,M,,N,18.52,K,D", kSog, 10.0},
        {"$IIHDT,12.5,T", kHdg, 12.5},
        {"$IIHDM,5.0,M $IIHDG,5.0,,,7.5,W", kHdg, 357.5},
        {"$IIHDG,350.0,2.0,E,10.0,E", kHdg, 2.0},
        {"$IIVHW,12.5,T,,M,06.11,N,11.31,K", kHdg, 12.5},
        {"$IIVHW,,T,,M,06.11,N,11.31,K", kBsp, 6.11},
        {"$IIVHW,,T,,M,,N,18.52,K", kBsp, 10.0},
        {"$IIMWV,338,R,13.41,N,A", kAwa, -22.0},
        {"$IIMWV,338,R,36.0,K,A", kAws, 19.438445},
        {"$IIMWV,47,T,10.0,M,A", kTws, 19.438445},
        {"$IIMWV,180,T,10.0,M,A", kTwa, -180.0},
        {"$IIVWR,039,L,08.10,N,04.17,M,,", kAwa, -39.0},
        {"$IIVWT,039,R,08.10,N,04.17,M,,", kTwa, 39.0},
        {"$IIVWT,039,R,,N,5.0,M,,", kTws, 9.719222},
        {"$IIMWD,200.0,T,192.5,M,08.16,N,04.20,M", kTwd, 200.0},
        {"$IIMWD,,T,192.5,M,08.16,N,, $IIHDG,,,,7.5,E", kTwd, 200.0},
        {"$IIDPT,10.0,0.5", kDepth, 34.4484},
        {"$IIDPT,10.0,-1.5", kDepth, 32.808},
        {"$IIDPT,10.0,0.5 $IIDBT,32.8,f,10.0,M,5.5,F", kDepth, 34.4484},
        {"$IIDBT,034.25,f,010.44,M,005.64,F", kDepth, 34.251552},
        {"$IIDBT,100.0,f,,M,,F", kDepth, 99.998784},
        {"$IIMTW,14.5,C", kSeaTemp, 14.5},
        {"$IIVDR,60.0,T,,M,1.2,N", kSet, 60.0},
        {"$IIVDR,60.0,T,,M,1.2,N", kDrift, 1.2},
        {"$IIVPW,-4.71,N,,", kVmg, -4.71},
        {"$IIROT,-120.0,A", kRateOfTurn, -2.0},
        {"$IIRSA,-3.5,A,,V", kRudder, -3.5},
        {"$IIXDR,A,12.0,D,HEEL,A,-1.5,D,PITCH", kHeel, -12.0},
        {"$IIXDR,A,12.0,D,HEEL,A,-1.5,D,PITCH", kTrim, -1.5},
        {"$IIXDR,P,1.0132,B,BARO,C,17.5,C,AIRTEMP", kBaro, 1013.2},
        {"$IIXDR,P,101320,P,Barometer,C,17.5,C,AIRTEMP", kAirTemp, 17.5},
        {"$IIXDR,U,12.6,V,BATT1", kVolts, 12.6},
        // What follows from the rest.
        {"$IIHDT,350.0,T $IIMWV,30,T,10.0,N,A", kTwd, 20.0},
        {"$IIMWD,20.0,T,,M,10.0,N,, $IIHDT,350.0,T", kTwa, 30.0},
        {"$IIMWV,90,R,6.0,N,A $IIVHW,,T,,M,6.0,N,,K", kTwa, 135.0},
        {"$IIMWV,90,R,6.0,N,A $IIVHW,,T,,M,6.0,N,,K", kTws, 8.485281},
        {"$IIMWV,90,T,6.0,N,A $IIVHW,,T,,M,6.0,N,,K", kAwa, 45.0},
        {"$IIMWV,60,T,6.0,N,A $IIVHW,,T,,M,6.0,N,,K", kVmg, 3.0},
    };
    for (const auto& row : rows)
        EXPECT_NEAR(row.value, Heard(row.lines)[row.quantity], 2e-5 * (1.0 + std::abs(row.value))) << row.lines;
}

// Nothing is made up: neither 0 for an empty field nor anything for what would need more than is there.
TEST(Readings, LeavesAbsentWhatIsNotSaid) {
    const struct {
        const char* lines;
        std::vector<Quantity> absent;
    } rows[] = {
        {"$IIHDT,,T $IIHDM,,M $IIHDG,,,,,", {kHdg, kVariation}},
        {"$IIHDM,12.0,M", {kHdg}},
        {"$IIVHW,,T,,M,,N,,K", {kBsp, kHdg}},
        {"$IIHDT,12.0,M", {kHdg}},
        {"$IIHDT,361.0,T", {kHdg}},
        {"$IIMWV,338,R,13.41,N,V", {kAwa, kAws}},
        {"$IIMWV,338,X,13.41,N,A", {kAwa, kAws, kTwa, kTws}},
        {"$IIMWV,,R,,N,A", {kAwa, kAws}},
        {"$IIMWV,30,T,10.0,N,A", {kTwd, kAwa, kVmg}},
        {"$IIVWT,039,,08.10,N,,,,", {kTwa}},
        {"$IIMWD,,T,,M,,N,,M", {kTwd, kTws}},
        {"$GPRMC,095559,V,6005.071,N,02332.346,E,5.8,224.4,,,", {kLat, kLon, kSog, kCog}},
        {"$GPRMC,095559,A,6005.071,N,,,,,,,", {kLat, kLon, kSog, kCog, kVariation}},
        {"$GPGGA,095559,6005.071,N,02332.346,E,0,,,,,,,,", {kLat, kLon}},
        {"$GPGLL,6005.071,N,02332.346,E,095559,V", {kLat, kLon}},
        {"$IIVTG,224.4,T,,M,5.8,N,,K,N", {kCog, kSog}},
        {"$IIDPT,,0.5 $IIDBT,,f,,M,,F $IIMTW,,C", {kDepth, kSeaTemp}},
        {"$IIVDR,,T,,M,,N $IIVPW,,N,, $IIROT,1.0,V $IIRSA,,A,,", {kSet, kDrift, kVmg, kRateOfTurn, kRudder}},
        {"$IIXDR,A,,D,HEEL,A,1.0,D,WING,P,1.0,B,OIL", {kHeel, kTrim, kBaro}},
        {"$IIVHW,,T,,M,32767,N,,K", {kBsp}},
        {"$IIHDT,12.0,T $IIVHW,,T,,M,6.0,N,,K", {kTimer, kCourse, kLeeway, kSet, kTargetBsp, kMarkDistance, kLog}},
    };
    for (const auto& row : rows) {
        const Moment moment = Heard(row.lines);
        for (const Quantity q : row.absent) EXPECT_EQ(kAbsent, moment[q]) << row.lines << ", quantity " << static_cast<int>(q);
    }
}

}  // namespace
}  // namespace twr
