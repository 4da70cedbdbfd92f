// Numbers, texts and the record are the same in every build: each of these sums was taken from one build and holds for all.
#include <cmath>
#include <cstdio>

#include "base/scan.h"
#include "base/wide_text.h"
#include "bridge/instrument_pass.h"
#include "bridge/remote_pass.h"
#include "core/days.h"
#include "platform/paths.h"
#include "support/core_fixture.h"

namespace twr::testing {
namespace {

class EqualityTest : public CoreTest {
protected:
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
    template <class Number>
    requires std::is_arithmetic_v<Number>
    void Add(Number number) { Add({reinterpret_cast<const char*>(&number), sizeof number}); }

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

TEST_F(EqualityTest, NumbersReadFromText) {
    for (int i = 0; i < 6000; ++i) {
        char text[64];
        const int digits = static_cast<int>(Random() >> 27);
        std::snprintf(text, sizeof text, i % 3 == 0 ? "%.*e" : "%.*f", digits, AnyValue());
        double number = 0.0;
        Add(std::sscanf(text, "%lf", &number));
        Add(number);
        Add(ScanInt(FromBytes(text)).value_or(-1));
        Add(ScanUnsigned(FromBytes(text)).value_or(1));
        Add(LeadingInt(FromBytes(text)));
    }
    EXPECT_EQ(10825297491947221199u, sum_);
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
        Add(Own(kHdg));
        Add(Own(kRot));
        Add(OwnTime(kRot));
    }
    EXPECT_EQ(1387344082286637428u, sum_);
}

TEST_F(EqualityTest, TheRecordOfTheSameRegistryAndFiles) {
    machine.files.files.push_back({JoinPath(core->GetDataFolder(u"config"), u"alternate.csv"),
                                   "0,1,2,3,4,5,204,7,8,9\n9,0,0,117,413\n9,0,0,117,413,0,0,0,0\n"});
    const auto save = [&](std::u16string_view family, std::uint32_t index, const RegistryValue& value) {
        machine.registry.Write(u"Software\\Tidewright\\core", std::u16string(family) + FromBytes(std::to_string(index)), value);
    };
    for (std::uint32_t i = 0; i < 16; ++i) {
        save(u"Sys_v", i, StringValue(FromBytes(std::to_string(i) + ".1e-1")));
        save(u"Sys_b", i, DwordValue(i % 3));
        save(u"Sys_i", i, DwordValue(i - 3));
    }
    core.reset();
    core = std::make_unique<CCore>(machine.Services());
    Publish(kTwd, -10.0);
    Publish(kBsp, 7.1, 99);
    const auto* const bytes = reinterpret_cast<const char*>(core->View());
    Add({bytes, 28});
    Add({bytes + 1588, RecordBytes::kSize - 1588});  // without the paths
    EXPECT_EQ(399559942215388092u, sum_);
}

}  // namespace
}  // namespace twr::testing
