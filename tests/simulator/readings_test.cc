#include "simulator/readings.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "simulator/variables.h"

namespace twr {
namespace {

// What lines, parted by blanks, say together: "NAME=value" of each variable that isn't absent.
std::string Heard(const std::string& lines) {
    Readings readings;
    std::istringstream in(lines);
    for (std::string line; in >> line;) {
        const auto sentence = ParseSentence(line);
        EXPECT_TRUE(sentence) << line;
        if (sentence) readings.Take(*sentence, 0.0);
    }
    const Moment moment = readings.At(0.0);
    std::ostringstream heard;
    for (const Variable& variable : Variables()) {
        if (const float value = moment[variable.quantity]; value != kAbsent) heard << variable.name << "=" << value << " ";
    }
    return heard.str();
}

// Nothing is made up: neither 0 for an empty field nor anything for what would need more than is there.
TEST(Readings, TakesEachSentence) {
    const std::pair<const char*, const char*> rows[] = {
        {"$GPRMC,095559,A,6005.071,N,02332.346,W,5.8,224.4,010704,7.5,W",
         "COG=224.4 SOG=5.8 LAT=60.0845 LON=-23.5391 VARIATION=-7.5 "},
        {"$GPRMC,095559,V,6005.071,N,02332.346,E,5.8,224.4,,,", ""},
        {"$GPRMC,095559,A,6005.071,N,,,,,,,", ""},
        {"$GPGGA,095559,6005.071,S,02332.346,E,1,08,1.0,5,M,,M,,", "LAT=-60.0845 LON=23.5391 "},
        {"$GPGGA,095559,6005.071,N,02332.346,E,0,,,,,,,,", ""},
        {"$GPGLL,6005.071,N,02332.346,E,095559,A,D", "LAT=60.0845 LON=23.5391 "},
        {"$GPGLL,6005.071,N,02332.346,E", "LAT=60.0845 LON=23.5391 "},
        {"$GPGLL,6005.071,N,02332.346,E,095559,V", ""},
        {"$IIVTG,2.0,T,355.5,M,5.81,N,10.76,K,D $IIHDM,12.0,M", "HDG=18.5 COG=2 SOG=5.81 VARIATION=6.5 "},
        {"$IIVTG,224.44,T,217.0,M,5.81,N,,K $IIHDG,,,,7.5,W", "COG=224.44 SOG=5.81 VARIATION=-7.5 "},
        {"$IIVTG,500.0,T,217.0,M,,N,,K,D", ""},
        {"$IIVTG,,T,217.0,M,,N,18.52,K,D $IIHDG,,,,7.5,E", "COG=224.5 SOG=10 VARIATION=7.5 "},
        {"$IIVTG,224.4,T,,M,5.8,N,,K,N", ""},
        {"$IIHDT,12.5,T", "HDG=12.5 "},
        {"$IIHDT,,T $IIHDT,12.0,M $IIHDT,361.0,T $IIHDM,,M $IIHDG,,,,,", ""},
        {"$IIHDM,12.0,M", ""},
        {"$IIHDM,5.0,M $IIHDG,5.0,,,7.5,W", "HDG=357.5 VARIATION=-7.5 "},
        {"$IIHDG,350.0,2.0,E,10.0,E", "HDG=2 VARIATION=10 "},
        {"$IIVHW,12.5,T,,M,06.11,N,11.31,K", "BSP=6.11 HDG=12.5 "},
        {"$IIVHW,,T,,M,,N,18.52,K", "BSP=10 "},
        {"$IIVHW,,T,,M,,N,,K $IIVHW,,T,,M,32767,N,,K $IIVHW,,T,,M,-6.0,N,,K", ""},
        {"$IIMWV,338,R,36.0,K,A", "AWA=-22 AWS=19.4384 "},
        {"$IIMWV,180,T,10.0,M,A", "TWA=-180 TWS=19.4384 "},
        {"$IIMWV,338,R,13.41,N,V $IIMWV,338,X,13.41,N,A $IIMWV,,R,,N,A", ""},
        {"$IIVWR,039,L,08.10,N,04.17,M,,", "AWA=-39 AWS=8.1 "},
        {"$IIVWT,039,R,,N,5.0,M,,", "TWA=39 TWS=9.71922 "},
        {"$IIVWT,039,,,N,,,,", ""},
        {"$IIMWD,200.0,T,192.5,M,08.16,N,04.20,M", "TWS=8.16 TWD=200 "},
        {"$IIMWD,,T,192.5,M,08.16,N,, $IIHDG,,,,7.5,E", "TWS=8.16 TWD=200 VARIATION=7.5 "},
        {"$IIMWD,,T,,M,,N,,M", ""},
        {"$IIDPT,10.0,-1.5", "DEPTH=32.808 "},
        {"$IIDPT,10.0,0.5 $IIDBT,32.8,f,10.0,M,5.5,F", "DEPTH=34.4484 "},
        {"$IIDBT,034.25,f,010.44,M,005.64,F", "DEPTH=34.2516 "},
        {"$IIDBT,100.0,f,,M,,F", "DEPTH=99.9988 "},
        {"$IIDBT,,f,,M,20.0,F", "DEPTH=119.999 "},
        {"$IIDPT,,0.5 $IIDBT,,f,,M,,F $IIMTW,,C", ""},
        {"$IIMTW,14.5,C", "SEATEMP=14.5 "},
        {"$IIVDR,60.0,T,,M,1.2,N", "SET=60 DRIFT=1.2 "},
        {"$IIVPW,-4.71,N,,", "VMG=-4.71 "},
        {"$IIROT,-120.0,A $IIRSA,-3.5,A,,V", "RUDDER=-3.5 ROT=-2 "},
        {"$IIVDR,,T,,M,,N $IIVPW,,N,, $IIROT,1.0,V $IIRSA,,A,,", ""},
        {"$IIXDR,A,12.0,D,HEEL,A,-1.5,D,PITCH", "HEEL=-12 TRIM=-1.5 "},
        {"$IIXDR,P,1.0132,B,BARO,C,17.5,C,AIRTEMP", "AIRTEMP=17.5 BARO=1013.2 "},
        {"$IIXDR,P,101320,P,Barometer,U,12.6,V,BATT1", "BARO=1013.2 VOLTS=12.6 "},
        {"$IIXDR,A,,D,HEEL,A,1.0,D,WING,P,1.0,B,OIL", ""},
        // What follows from the rest.
        {"$IIMWV,30,T,10.0,N,A", "TWA=30 TWS=10 "},
        {"$IIHDT,350.0,T $IIMWV,30,T,10.0,N,A", "TWA=30 TWS=10 TWD=20 HDG=350 "},
        {"$IIMWD,20.0,T,,M,10.0,N,, $IIHDT,350.0,T", "TWA=30 TWS=10 TWD=20 HDG=350 "},
        {"$IIMWV,90,R,6.0,N,A $IIVHW,,T,,M,6.0,N,,K", "BSP=6 AWA=90 AWS=6 TWA=135 TWS=8.48528 VMG=-4.24264 "},
        {"$IIMWV,60,T,6.0,N,A $IIVHW,,T,,M,6.0,N,,K", "BSP=6 AWA=30 AWS=10.3923 TWA=60 TWS=6 VMG=3 "},
    };
    for (const auto& [lines, heard] : rows) EXPECT_EQ(heard, Heard(lines)) << lines;
}

}  // namespace
}  // namespace twr
