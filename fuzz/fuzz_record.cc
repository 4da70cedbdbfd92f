// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <iterator>
#include <limits>

#include "core/units.h"
#include "kept_core.h"
#include "reading_model.h"

namespace {

using twr::testing::RecordBytes;

constexpr int kMostSteps = 64;  // of an input, so that inputs stay many

// Most that is taken is such as makes a difference; the rest is anything.
constexpr std::uint32_t kChannels[] = {0,   1,   2,   4,   7,   13,  18,  24,  32,    48,        93,  117,
                                       118, 119, 126, 146, 172, 173, 202, 203, 204,   237,       269, 282,
                                       283, 284, 288, 400, 404, 413, 414, 127, 32767, 0xFFFFFFFF};
constexpr std::uint32_t kBoats[] = {0, 0, 1, 2, 3, 98, 99, 100, 0xFFFFFFFF};
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kValues[] = {0.0,   -0.0,  1.0,   -1.0,    30.0,    -40.0, 90.0,   -90.0, 100.0,    179.5,  -180.5,  181.0,
                              355.0, 360.0, 721.0, 32767.0, 32412.0, 1e308, -1e308, kNan,  INFINITY, 5e-324, 46345.5, 110.0};
constexpr double kAges[] = {0.0, 1.0, 2.0, 9.0, 10.0, 11.0, -10.0, 60.0, 3600.0, 32767.0, 40000.0, 1e9};  // seconds

class Input {
public:
    Input(const unsigned char* data, std::size_t size) : at_(data), end_(data + size) {}

    bool Ended() const { return at_ == end_; }
    template <class T>
    T Take() {  // zeros behind the end
        unsigned char bytes[sizeof(T)] = {};
        const auto count = std::min<std::ptrdiff_t>(sizeof(T), end_ - at_);
        std::copy_n(at_, count, bytes);
        at_ += count;
        T value;
        std::memcpy(&value, bytes, sizeof value);
        return value;
    }
    std::uint8_t Byte() { return Take<std::uint8_t>(); }
    std::uint32_t Below(std::uint32_t count) { return Byte() % count; }

    std::uint32_t Channel() {
        const std::uint8_t choice = Byte();
        return choice < 128 ? kChannels[choice % std::size(kChannels)] : Take<std::uint16_t>() % 416u;
    }
    std::uint32_t Boat() {
        const std::uint8_t choice = Byte();
        return choice < 128 ? kBoats[choice % std::size(kBoats)] : choice % 101u;
    }
    double Value() {
        const std::uint8_t choice = Byte();
        return choice < 192 ? kValues[choice % std::size(kValues)] : Take<double>();
    }

private:
    const unsigned char* at_;
    const unsigned char* end_;
};

class Trial {
public:
    Trial(twr::testing::KeptCore& kept, Input input) : kept_(kept), record_(kept.core.View()), model_(record_), input_(input) {}

    void Run() {
        for (int step = 0; step < kMostSteps && !input_.Ended(); ++step) Step();
        for (std::uint32_t channel = 117; channel <= 126; ++channel) CheckResolved(channel, true);
    }

private:
    void Step() {
        switch (input_.Below(21)) {
            case 0:
                return Publish(input_.Value());
            case 1:
                return Publish(32767.0);
            case 2:
                core_.SetOwnChannel(input_.Channel() % 414, input_.Value(), Time());
                return;
            case 3:
                return SetSystemValue();
            case 4:
                return core_.SetSystemInt(input_.Byte(), input_.Take<std::int32_t>());
            case 5:
            case 6:
                return Read();
            case 7:
            case 8:
                return ReadFresh();
            case 9:
                return CheckStaleSeconds();
            case 10:
                return CheckResolved(input_.Channel(), input_.Byte() % 2 == 0);
            case 11:
                return Convert();
            case 12:
                return MakeTexts();
            case 13:
                return kept_.machine.clock.AdvanceMs(input_.Take<std::int16_t>() * 10);
            default:
                return Scribble();
        }
    }

    // --- This program's publications ---

    double Time() {
        if (const std::uint8_t choice = input_.Byte(); choice < 192) {
            return choice % 3 == 0 ? 0.0 : kept_.machine.clock.Days() - kAges[choice % std::size(kAges)] / 86400.0;
        }
        return input_.Take<double>();
    }

    void Publish(double value) {
        const std::uint32_t channel = input_.Channel();
        const std::uint32_t boat = input_.Boat();
        const bool stores = model_.Stores(channel, boat);
        Agree("SetChannel", core_.SetChannel(channel, boat, value, Time()), stores);
    }

    void SetSystemValue() {
        const std::uint32_t index = input_.Byte();
        Agree("SetSystemValue", core_.SetSystemValue(index, input_.Value()), index < 93);
    }

    // --- Its readings, compared with the model ---

    static void Agree(const char* what, double got, double expected) {
        if (got == expected || (std::isnan(got) && std::isnan(expected))) return;
        std::fprintf(stderr, "%s gives %.17g, the model %.17g\n", what, got, expected);
        __builtin_trap();
    }

    void Read() {
        const std::uint32_t channel = input_.Channel();
        const std::uint32_t boat = input_.Boat();
        const std::uint8_t how = input_.Byte();
        const bool damped = (how & 1) != 0, angleFlag = (how & 2) != 0, convert = (how & 4) != 0;
        const double expected = model_.Channel(channel, boat, damped, angleFlag, convert);
        double value = -1.0;
        Agree("GetChannel's result", core_.GetChannel(channel, value, boat, damped, angleFlag, convert), expected != 32767.0);
        Agree("GetChannel", value, expected);
    }

    void ReadFresh() {
        const std::uint32_t channel = input_.Channel();
        const std::uint32_t boat = input_.Boat();
        const std::uint8_t how = input_.Byte();
        const bool damped = (how & 1) != 0, angleFlag = (how & 2) != 0;
        const double maxAge = (how & 4) != 0 ? input_.Value() : 32767.0;
        const double now = static_cast<double>(kept_.machine.clock.ticks) / 864000000000.0 + 25569.0;
        const double expected = model_.FreshChannel(channel, boat, damped, angleFlag, maxAge, now);
        double value = -1.0;
        Agree("GetFreshChannel's result", core_.GetFreshChannel(channel, value, boat, damped, angleFlag, maxAge),
              expected != 32767.0);
        Agree("GetFreshChannel", value, expected);
    }

    void CheckStaleSeconds() {
        const std::uint32_t channel = input_.Channel();
        const std::uint32_t boat = input_.Boat();
        const bool brought = channel < 414 && boat >= 1 && boat <= 99;
        const std::uint32_t boats = brought ? std::min(model_.Boats(), 100u) : model_.Boats();
        const std::int16_t expected = model_.StaleSeconds(channel, boat);
        Agree("StaleSeconds", core_.StaleSeconds(channel, boat), expected);
        Agree("boatCount", model_.Boats(), boats);
    }

    void CheckResolved(std::uint32_t channel, bool recurse) {
        Agree("ResolveAlternate", core_.ResolveAlternate(channel, recurse), model_.Resolved(channel, recurse));
    }

    void Convert() {
        const std::uint32_t channel = input_.Channel();
        const std::uint32_t boat = input_.Boat();
        double value = input_.Value();
        const double variation = input_.Value();
        Agree("ApplyVariation", core_.ApplyVariation(value, boat), model_.WithVariation(value, boat));
        Agree("ToDisplayUnits", core_.ToDisplayUnits(channel, value, variation), model_.InUserUnit(channel, value, variation));
        core_.NormaliseValue(channel, value);
    }

    void MakeTexts() {
        const std::uint32_t channel = input_.Channel();
        core_.ChannelText(channel, input_.Value());
        const double time = input_.Value();
        core_.TimeText(time);
        core_.ToDisplayTime(time);
        twr::UnitLabel(static_cast<std::int16_t>(channel % 24), twr::UnitSettingsOf(*core_.View()));
        if (core_.ChannelName(channel).size() > 16 || core_.RemoteLabel(channel).size() > 8) __builtin_trap();
        if (core_.GetDataFolder(u"").size() > 260) __builtin_trap();
        core_.GetDatabasePath();
    }

    // --- What another program does, in the fields that matter and anywhere ---

    void Scribble() {
        switch (input_.Below(10)) {
            case 0:
                return record_.SetSlot(input_.Below(10), input_.Below(9), static_cast<std::int32_t>(input_.Channel()));
            case 1:
                return record_.Set(RecordBytes::SysFlag(kFlags[input_.Below(std::size(kFlags))]), input_.Byte());
            case 2:
                return record_.SetInt(input_.Below(13), static_cast<std::int8_t>(input_.Byte()) % 8);
            case 3:
                return record_.SetValue(input_.Below(2) * 7, input_.Value());
            case 4:
                return record_.SetBoatCount(input_.Boat());
            case 5:
                return ScribbleBoat();
            case 6:
                return record_.Set(RecordBytes::Channel(input_.Channel() % 414) + input_.Below(12), input_.Byte());
            case 7:
            case 8:
                return ScribbleEntry();
            default:
                return ScribbleAnywhere();
        }
    }

    void ScribbleBoat() {
        const std::size_t row = RecordBytes::Boat(input_.Boat() % 100);
        record_.Set(row, input_.Take<std::int32_t>());
        record_.Set(row + 72, input_.Byte());
    }

    void ScribbleEntry() {
        const std::uint32_t channel = input_.Channel() % 414, boat = input_.Boat() % 100;
        const double value = input_.Value(), time = Time(), damped = input_.Value();
        if (boat < 2) return record_.SetEntry(boat, channel, value, time, damped);
        record_.SetFarEntry(boat, std::min<std::size_t>(twr::ChannelCatalogue()[channel].shortIndex, 33), value, time, damped);
    }

    void ScribbleAnywhere() {
        const std::size_t offset = (input_.Take<std::uint16_t>() * 256u + input_.Byte()) % (RecordBytes::kSize - 8);
        for (std::size_t i = 0, count = 1 + input_.Below(8); i < count; ++i) record_.Set(offset + i, input_.Byte());
    }

    static constexpr std::size_t kFlags[] = {1, 3, 4, 24, 27, 33, 36, 46, 52};

    twr::testing::KeptCore& kept_;
    twr::CCore& core_ = kept_.core;
    RecordBytes record_;
    twr::testing::ReadingModel model_;
    Input input_;
};

}  // namespace

// Publishing and reading, while another program writes whatever it likes into the record: readings are those of the model.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    static twr::testing::KeptCore kept;
    kept.Reset();
    Trial(kept, Input(data, size)).Run();
    return 0;
}
