// SPDX-License-Identifier: MIT
// Numbers and texts are the same in every build: each of the sums was taken from one build and holds for all.
#include <cmath>

#include "core/days.h"
#include "deckman/instrument_value.h"
#include "deckman/remote_text.h"
#include "nmea/sentence.h"
#include "support/core_fixture.h"

namespace twr::testing {
namespace {

struct EqualityTest : CoreTest {
    // The same numbers in every build, which the standard library's distributions don't promise.
    std::uint32_t Random() { return seed_ = seed_ * 1664525u + 1013904223u; }
    double Between(double low, double high) { return low + (high - low) * (Random() >> 8) / 16777216.0; }

    // Of every size that a value can have, with rounding cases among them.
    double AnyValue() {
        const double mantissa = Between(-1.0, 1.0);
        const double value = std::ldexp(mantissa, static_cast<int>(Random() >> 24) % 60 - 20);
        return Random() % 4 == 0 ? std::round(value * 200.0) / 200.0 : value;
    }

    void Add(std::string_view bytes) {
        for (const char byte : bytes) sum_ = (sum_ ^ static_cast<unsigned char>(byte)) * 1099511628211u;  // 64-bit FNV-1a
    }
    void Add(std::u16string_view text) { Add({reinterpret_cast<const char*>(text.data()), text.size() * sizeof(char16_t)}); }
    void Add(double number) { Add({reinterpret_cast<const char*>(&number), sizeof number}); }

    std::uint32_t seed_ = 1;
    std::uint64_t sum_ = 14695981039346656037u;
};

TEST_F(EqualityTest, ChannelsPublishedReadAndShown) {
    Publish(kMagVar, 7.5);
    for (BoatSlot round = 0; round < 40; ++round) {
        const BoatSlot boat = round % 4;
        for (ChannelId channel = 1; channel < kChannelCount; ++channel) {
            const double value = Random() > 0x80000000u ? AnyValue() : Between(-400.0, 400.0);  // where angles wrap and ranges end
            double shown = 0.0;
            if (channel != kMagVar) Publish(channel, value, boat);
            core->GetFreshChannel(channel, shown, boat, false, round % 3 == 0, kNoValue);
            Add(shown);
            Add(core->ChannelText(channel, value));
            Add(RemoteValueText(*core, channel, value));
            Add(core->RemoteLabel(channel));
        }
    }
    EXPECT_EQ(1513726389477369804u, sum_);
}

TEST_F(EqualityTest, StepsInFloatsAndDays) {
    SetFlag(kFlagDeriveRot);
    for (int i = 0; i < 5000; ++i) {
        const auto reading = static_cast<float>(Between(-400.0, 800.0));
        const ReadingUnits units = {i % 2 == 0, i % 3 == 0, Between(-30.0, 30.0)};
        for (const ChannelId channel : {kHdg, kDepth, kHeel, kBsp}) Add(InstrumentValue(channel, reading, units));
        Add(DaysFromTicks(static_cast<std::int64_t>(Random()) * 4000000));
        machine.clock.ticks += Random() % 1000000;
        Publish(kHdg, reading);
        for (const double own : {Own(kHdg), Own(kRot), OwnTime(kRot)}) Add(own);
    }
    EXPECT_EQ(8167558640263911100u, sum_);
}

// By what others have published, so that a sum taken from a wrong build is found out.

// NIST Special Publication 811 (2008), appendix B.8; the knot and the nautical mile are exact.
TEST_F(EqualityTest, UnitsAreThoseOfAPublishedTable) {
    const std::tuple<ChannelId, std::size_t, std::int32_t, double> rows[] = {
        // the selector's place and number; what one internal unit is
        {kDepth, 1, 1, 1 / 1.8288},    {kDepth, 1, 2, 1 / 0.3048},
        {kBsp, 2, 1, 1852.0 / 3600},   {kTws, 2, 2, 1.852},
        {kMkRng, 3, 2, 1852},          {kMkRng, 3, 3, 1.852},
        {kMkRng, 3, 4, 1852 / 0.9144}, {kBiasL, 4, 5, 1852 / 0.3048},
        {kEngOilPres, 9, 1, 1e-3},     {kEngOilPres, 9, 2, 1 / 6894.757},
        {kEngOilPres, 9, 3, 1e-5},     {kEngOilPres, 9, 4, 1 / 3386.389}};
    constexpr double kRounded = 2e-5;  // the suite's own factors have five digits
    for (const auto& [channel, place, selector, unit] : rows) {
        record.SetInt(place, selector);
        EXPECT_NEAR(10 * unit, core->ToDisplayUnits(channel, 10.0, kNoValue), 10 * unit * kRounded)
            << channel << " by " << selector;
    }
}

// The numbers of days are those of spreadsheets, whose documentation gives them; the seconds are those of date(1).
TEST_F(EqualityTest, DaysAreThoseOfASpreadsheet) {
    const std::pair<std::int64_t, double> rows[] = {{0, 25569},          {946684800, 36526}, {1199145600, 39448},
                                                    {1709164800, 45351}, {-2203891200, 61},  {-2209161600, 0}};
    for (const auto& [seconds, days] : rows) EXPECT_EQ(days, DaysFromTicks(seconds * 10'000'000)) << seconds;
}

// The sentences that descriptions of NMEA 0183 have given as examples for decades, with the positions in their words.
TEST_F(EqualityTest, SentencesAreThoseOfTheUsualExamples) {
    const std::tuple<std::string, std::size_t, double, double> rows[] = {
        // where the latitude stands
        {"$GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*47", 2, 48 + 7.038 / 60, 11 + 31.0 / 60},
        {"$GPRMC,123519,A,4807.038,N,01131.000,E,022.4,084.4,230394,003.1,W*6A", 3, 48 + 7.038 / 60, 11 + 31.0 / 60},
        {"$GPGLL,4916.45,N,12311.12,W,225444,A,*1D", 1, 49 + 16.45 / 60, -(123 + 11.12 / 60)}};
    for (const auto& [line, at, latitude, longitude] : rows) {
        SCOPED_TRACE(line);
        const auto sentence = ParseSentence(line);
        ASSERT_TRUE(sentence);
        EXPECT_NEAR(latitude, ParseLatitude(sentence->Field(at), sentence->Field(at + 1)).value_or(0), 1e-9);
        EXPECT_NEAR(longitude, ParseLongitude(sentence->Field(at + 2), sentence->Field(at + 3)).value_or(0), 1e-9);
        const std::string wrong = line.substr(0, line.size() - 1) + (line.ends_with('7') ? "8" : "7");
        for (const std::string& other : {wrong, line + "0"}) EXPECT_FALSE(ParseSentence(other)) << other;
    }
    EXPECT_TRUE(ParseTimeOfDay("235960") && !ParseTimeOfDay("235961")) << "a day may have a leap second";
}

}  // namespace
}  // namespace twr::testing
