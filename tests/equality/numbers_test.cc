// Numbers and texts are the same in every build: each of these sums was taken from one build and holds for all.
#include <gtest/gtest.h>

#include <cmath>

#include "bridge/instrument_value.h"
#include "bridge/remote_text.h"
#include "core/days.h"
#include "equality/checksum.h"
#include "mapping/variable_file.h"
#include "platform/scan.h"
#include "platform/wide_text.h"
#include "support/core_fixture.h"
#include "text/duration_text.h"
#include "text/position_text.h"

namespace twr::testing {
namespace {

// Of every size that a value can have, with rounding cases among them.
double AnyValue(Random& random) {
    const double mantissa = random.Between(-1.0, 1.0);
    const double value = std::ldexp(mantissa, static_cast<int>(random.Next() >> 24) % 60 - 20);
    return random.Next() % 4 == 0 ? std::round(value * 200.0) / 200.0 : value;
}

class NumbersTest : public CoreTest {};

TEST_F(NumbersTest, TextsOfAllChannels) {
    Random random(1);
    Checksum sum;
    for (int round = 0; round < 12; ++round) {
        for (ChannelId channel = 0; channel < kChannelCount; ++channel) {
            const double value = AnyValue(random);
            sum.Add(core->ChannelText(channel, value));
            sum.Add(RemoteValueText(*core, channel, value));
            sum.Add(DurationText(value / 1000));
            sum.Add(CompactDurationText(value / 1000));
            sum.Add(LatitudeText(std::fmod(value, 90.0)));
            sum.Add(LongitudeText(std::fmod(value, 360.0)));
        }
    }
    EXPECT_EQ(16990227982668812361u, sum.Sum());
}

TEST_F(NumbersTest, NumbersReadFromText) {
    Random random(2);
    Checksum sum;
    for (int i = 0; i < 6000; ++i) {
        char text[64];
        const int digits = static_cast<int>(random.Next() >> 27);
        std::snprintf(text, sizeof text, i % 3 == 0 ? "%.*e" : "%.*f", digits, AnyValue(random));
        double number = 0.0;
        sum.Add(std::sscanf(text, "%lf", &number));
        sum.Add(number);
        sum.Add(ScanInt(FromBytes(text)).value_or(-1));
        sum.Add(ScanUnsigned(FromBytes(text)).value_or(1));
        sum.Add(LeadingInt(FromBytes(text)));
    }
    EXPECT_EQ(12372524723111725386u, sum.Sum());
}

TEST_F(NumbersTest, RowsOfTheVariableFile) {
    Random random(3);
    std::string bytes = "[variables]\n";
    for (int i = 0; i < 3000; ++i) {
        bytes += std::to_string(i) + " V" + std::to_string(random.Next());
        bytes += " u " + std::to_string(random.Next()) + " 99999999999999999999 ";
        bytes += std::to_string(static_cast<std::int32_t>(random.Next())) + "\n";
    }
    machine.files.files.push_back({u"/vars", bytes});
    Checksum sum;
    const DeckmanCatalogue catalogue = ParseVariableFile(machine.files, u"/vars", u"/copy");
    for (const MappingVar& row : catalogue.rows) {
        sum.Add(row.dfwName);
        sum.Add(row.dfwColumn4);
        sum.Add(row.dfwColumn6);
    }
    EXPECT_EQ(3000u, catalogue.rows.size());
    EXPECT_EQ(6884443297620490348u, sum.Sum());
}

TEST_F(NumbersTest, StepsInFloatsAndDays) {
    Random random(4);
    Checksum sum;
    for (int i = 0; i < 5000; ++i) {
        const auto reading = static_cast<float>(random.Between(-400.0, 800.0));
        const ReadingUnits units = {i % 2 == 0, i % 3 == 0, random.Between(-30.0, 30.0)};
        for (const ChannelId channel : {kHdg, kDepth, kHeel, kBsp}) sum.Add(InstrumentValue(channel, reading, units));
        const std::int64_t ticks = static_cast<std::int64_t>(random.Next()) * 4000000;
        sum.Add(DaysFromTicks(ticks + random.Next()));
        machine.clock.ticks += random.Next() % 1000000;
        SetFlag(27);
        Publish(kHdg, reading);
        sum.Add(Own(kHdg));
        sum.Add(Own(kRot));
        sum.Add(OwnTime(kRot));
    }
    EXPECT_EQ(6332599080807019189u, sum.Sum());
}

}  // namespace
}  // namespace twr::testing
