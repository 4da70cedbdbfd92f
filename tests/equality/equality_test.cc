// SPDX-License-Identifier: MIT
// Numbers and texts are the same in every build: each of the sums was taken from one build and holds for all.
#include <cmath>

#include "core/days.h"
#include "deckman/instrument_value.h"
#include "deckman/remote_text.h"
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

}  // namespace
}  // namespace twr::testing
