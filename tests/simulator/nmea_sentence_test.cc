#include "simulator/nmea_sentence.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "simulator/random.h"
#include "simulator/readings.h"

namespace twr {
namespace {

TEST(ParseSentence, AcceptsWhatAReceiverSends) {
    // A line, and its talker, type and fields.
    const std::pair<const char*, const char*> rows[] = {
        {"$IIVHW,,T,,M,06.11,N,11.31,K*51", "II VHW||T||M|06.11|N|11.31|K"},
        {"$GPZDA,095559,,,,00,*4D", "GP ZDA|095559||||00|"},
        {"$GPZDA,095559,,,,00,*4d\r", "GP ZDA|095559||||00|"},
        {"  $HEHDT, 123.4 ,T", "HE HDT|123.4|T"},
        {"$IIMTW,", "II MTW|"},
    };
    for (const auto& [line, expected] : rows) {
        const auto sentence = ParseSentence(line);
        ASSERT_TRUE(sentence) << line;
        std::string parts = std::string(sentence->talker) + " " + std::string(sentence->type);
        for (std::size_t i = 1; i <= sentence->count; ++i) parts += "|" + std::string(sentence->Field(i));
        EXPECT_EQ(expected, parts);
        EXPECT_EQ("", sentence->Field(0));
        EXPECT_EQ("", sentence->Field(sentence->count + 1));
    }
}

TEST(ParseSentence, RejectsBrokenLines) {
    const std::pair<const char*, std::vector<std::string>> rows[] = {
        {"no sentence", {"", "$", "*", "$*", "IIHDT,123.4,T", "!AIVDM,1,1,,A,13u,0*5C"}},
        {"checksum", {"$IIMTW,*63", "$IIMTW,*6", "$IIMTW,*6G", "$IIMTW,*621", "$IIMTW,*"}},
        {"no field", {"$IIHDT", "$IIHDT*58"}},
        {"address short, small or proprietary", {"$IIHD,1,T", "$iihdt,1,T", "$PSRFD,1,T"}},
        {"odd bytes", {std::string("$IIHDT,1\0,T", 11), "$IIHDT,\xFF,T", "$IIHDT,12$GPZDA,095559"}},
        {"too many fields", {"$IIXDR" + std::string(60, ',')}},
    };
    for (const auto& [why, lines] : rows) {
        for (const std::string& line : lines) EXPECT_FALSE(ParseSentence(line)) << why << ": " << line;
    }
}

TEST(ParseDecimal, TakesPlainNumbersOnly) {
    const std::pair<const char*, double> accepted[] = {{"0", 0.0},    {"06.11", 6.11}, {"-4.5", -4.5},
                                                       {"+4.5", 4.5}, {".5", 0.5},     {"5.", 5.0}};
    for (const auto& [text, value] : accepted) EXPECT_EQ(value, ParseDecimal(text)) << text;
    for (const char* text :
         {"", "-", "+", ".", "+-1", "1e5", "nan", "inf", "0x10", "1.2.3", "1,2", " 1", "123456789012345678901"}) {
        EXPECT_FALSE(ParseDecimal(text)) << text;
    }
}

TEST(ParseTimeOfDay, ChecksItsParts) {
    EXPECT_EQ(35759.0, ParseTimeOfDay("095559"));
    EXPECT_EQ(86399.5, ParseTimeOfDay("235959.50"));
    for (const char* text : {"", "0955", "0955590", "245959", "096059", "095561", "09-559", "095559.x"}) {
        EXPECT_FALSE(ParseTimeOfDay(text)) << text;
    }
}

TEST(ParsePosition, ChecksLetterAndRange) {
    EXPECT_NEAR(60.0 + 5.071 / 60.0, ParseLatitude("6005.071", "N").value_or(0.0), 1e-9);
    EXPECT_NEAR(-(23.0 + 32.346 / 60.0), ParseLongitude("02332.346", "W").value_or(0.0), 1e-9);
    const char* bad[][2] = {{"", "N"}, {"6005.071", ""}, {"6005.071", "E"}, {"6065.0", "N"}, {"9100.0", "N"}, {"-6005.0", "N"}};
    for (const auto& row : bad) EXPECT_FALSE(ParseLatitude(row[0], row[1])) << row[0] << row[1];
    EXPECT_FALSE(ParseLongitude("18100.0", "E"));
}

// Sentences with bytes changed at random, without a checksum to catch it: nothing may crash, and nothing absurd may come through.
TEST(Readings, SurviveHostileBytes) {
    const std::string lines[] = {"$IIXDR,A,12.0,D,HEEL,A,-1.5,D,PITCH",
                                 "$GPRMC,095559,A,6005.071,N,02332.346,E,5.8,224.4,010704,7.5,E", "$IIMWV,338,R,13.41,N,A",
                                 "$IIDBT,034.25,f,010.44,M,005.64,F", "$IIHDG,181.0,1.0,E,7.5,E"};
    Random random(7);
    for (int i = 0; i < 20000; ++i) {
        std::string line = lines[random.Next() % std::size(lines)];
        for (int n = 0; n < 3; ++n) line[random.Next() % line.size()] = static_cast<char>(random.Next());
        Readings readings;
        if (const auto sentence = ParseSentence(line)) readings.Take(*sentence, 0.0);
        const Moment moment = readings.At(0.0);
        for (std::size_t q = 0; q < kQuantityCount; ++q) {
            const float value = moment[static_cast<Quantity>(q)];
            ASSERT_TRUE(value == kAbsent || std::abs(value) < 40000.0F) << line;
        }
    }
}

}  // namespace
}  // namespace twr
