// Another program of the suite that writes into the record: settings, texts and entries, in terms of their meaning.
#pragma once
#include <cstdint>
#include <string_view>
#include <utility>

#include "core/core.h"
#include "support/record_bytes.h"

namespace twr::testing {

class RecordWriter : public RecordBytes {
public:
    explicit RecordWriter(const CCore& core) : RecordBytes(core.View()) {}

    void SetText(std::size_t offset, std::u16string_view text) {
        for (const char16_t c : text) Set(std::exchange(offset, offset + 2), c);
        Set(offset, u'\0');
    }

    void SetValue(std::size_t index, double value) { Set(SysValue(index), value); }
    void SetInt(std::size_t index, std::int32_t value) { Set(SysInt(index), value); }
    void SetFlag(std::size_t index, bool value) { Set(SysFlag(index), std::uint8_t{value}); }
    void SetBoatCount(std::uint32_t count) { Set(kBoatCount, count); }
    void SetSlot(std::size_t row, std::size_t slot, std::int32_t channel) { Set(5080 + 36 * row + 4 * slot, channel); }

    // Boats 0 and 1.
    void SetEntry(std::size_t boat, std::size_t channel, double value, double time, double damped) {
        Set(Time(boat, channel), time), Set(Value(boat, channel), value), Set(Damped(boat, channel), damped);
    }

    // Boats 2 to 99.
    void SetFarEntry(std::size_t boat, std::size_t shortIndex, double value, double time, double damped) {
        Set(FarTime(boat, shortIndex), time), Set(FarValue(boat, shortIndex), value), Set(FarDamped(boat, shortIndex), damped);
    }
};

}  // namespace twr::testing
