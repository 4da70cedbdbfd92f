#include "simulator/nmea_sentence.h"

#include <gtest/gtest.h>

#include <string>

#include "simulator/random.h"
#include "simulator/readings.h"

namespace twr {
namespace {

TEST(ParseSentence, AcceptsWhatAReceiverSends) {
    const struct {
        const char* line;
        const char* talker;
        const char* type;
        std::size_t fields;
        const char* first;
    } rows[] = {
        {"$IIVHW,,T,,M,06.11,N,11.31,K*51", "II", "VHW", 8, ""}, {"$GPZDA,095559,,,,00,*4D", "GP", "ZDA", 6, "095559"},
        {"$GPZDA,095559,,,,00,*4d\r", "GP", "ZDA", 6, "095559"}, {"  $IIHDT,123.4,T", "II", "HDT", 2, "123.4"},
        {"$HEHDT, 123.4 ,T", "HE", "HDT", 2, "123.4"},           {"$IIMTW,", "II", "MTW", 1, ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        const auto sentence = ParseSentence(row.line);
        ASSERT_TRUE(sentence);
        EXPECT_EQ(row.talker, sentence->talker);
        EXPECT_EQ(row.type, sentence->type);
        EXPECT_EQ(row.fields, sentence->count);
        EXPECT_EQ(row.first, sentence->Field(1));
        EXPECT_EQ("", sentence->Field(0));
        EXPECT_EQ("", sentence->Field(row.fields + 1));
    }
}

TEST(ParseSentence, RejectsBrokenLines) {
    std::string manyFields = "$IIXDR";
    manyFields.append(60, ',');
    const std::string rows[] = {
        "",
        "$",
        "*",
        "$*",
        "IIHDT,123.4,T",
        "!AIVDM,1,1,,A,13u,0*5C",
        "$IIVHW,,T,,M,06.11,N,11.31,K*52",   // wrong checksum
        "$IIVHW,,T,,M,06.11,N,11.31,K*5",    // half a checksum
        "$IIVHW,,T,,M,06.11,N,11.31,K*5G",   // no hexadecimal
        "$IIVHW,,T,,M,06.11,N,11.31,K*511",  // too long
        "$IIVHW,,T,,M,06.11,N,11.31,K*",
        "$IIHDT",                  // no field
        "$IIHD,1,T",               // address too short
        "$iihdt,1,T",              // small letters
        "$PSRFD,1,T",              // proprietary
        "$IIHDT,12$GPZDA,095559",  // two lines run together
        std::string("$IIHDT,1\0,T", 11),
        "$IIHDT,\xFF,T",
        manyFields,
    };
    for (const std::string& line : rows) EXPECT_FALSE(ParseSentence(line)) << line;
}

TEST(ParseDecimal, TakesPlainNumbersOnly) {
    const struct {
        const char* text;
        double value;
    } accepted[] = {{"0", 0.0}, {"06.11", 6.11}, {"-4.5", -4.5}, {"+4.5", 4.5}, {".5", 0.5}, {"5.", 5.0}};
    for (const auto& row : accepted) EXPECT_EQ(row.value, ParseDecimal(row.text)) << row.text;
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
        line.resize(random.Next() % (line.size() + 1));
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
