// SPDX-License-Identifier: MIT
// The record as another program of the suite sees it: by literal offsets, never through the product's own structs.
#pragma once
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>

namespace twr::testing {

class RecordBytes {
public:
    static constexpr std::size_t kSize = 166784;

    explicit RecordBytes(void* base) : base_(static_cast<unsigned char*>(base)) {}

    template <class T>
    T Get(std::size_t offset) const {
        T value;
        std::memcpy(&value, base_ + offset, sizeof value);
        return value;
    }
    template <class T>
    void Set(std::size_t offset, T value) {
        std::memcpy(base_ + offset, &value, sizeof value);
    }

    double F64(std::size_t offset) const { return Get<double>(offset); }
    std::int32_t I32(std::size_t offset) const { return Get<std::int32_t>(offset); }
    std::uint8_t U8(std::size_t offset) const { return Get<std::uint8_t>(offset); }

    std::u16string Text(std::size_t offset) const {
        std::u16string text;
        for (char16_t c; (c = Get<char16_t>(offset)) != 0; offset += 2) text.push_back(c);
        return text;
    }

    void SetText(std::size_t offset, std::u16string_view text) {
        for (const char16_t c : text) Set(std::exchange(offset, offset + 2), c);
        Set(offset, u'\0');
    }
    void SetValue(std::size_t index, double value) { Set(SysValue(index), value); }
    void SetInt(std::size_t index, std::int32_t value) { Set(SysInt(index), value); }
    void SetFlag(std::size_t index, bool value) { Set(SysFlag(index), std::uint8_t{value}); }
    void SetSlot(std::size_t row, std::size_t slot, std::int32_t channel) { Set(5080 + 36 * row + 4 * slot, channel); }
    void SetBoatCount(std::uint32_t count) { Set(kBoatCount, count); }
    void SetEntry(std::size_t boat, std::size_t channel, double value, double time, double damped) {
        Set(Time(boat, channel), time), Set(Value(boat, channel), value), Set(Damped(boat, channel), damped);
    }
    void SetFarEntry(std::size_t boat, std::size_t shortIndex, double value, double time, double damped) {
        Set(FarTime(boat, shortIndex), time), Set(FarValue(boat, shortIndex), value), Set(FarDamped(boat, shortIndex), damped);
    }

    static constexpr std::size_t SysValue(std::size_t i) { return 5440 + 8 * i; }
    static constexpr std::size_t SysInt(std::size_t i) { return 6184 + 4 * i; }
    static constexpr std::size_t SysFlag(std::size_t i) { return 6236 + i; }
    static constexpr std::size_t Channel(std::size_t c) { return 6300 + 108 * c; }
    static constexpr std::size_t Boat(std::size_t b) { return 51012 + 80 * b; }
    static constexpr std::size_t kBoatCount = 6296;

    // Boats 0 and 1.
    static constexpr std::size_t Time(std::size_t boat, std::size_t c) { return 59016 + 13664 * boat + 8 * c; }
    static constexpr std::size_t Value(std::size_t boat, std::size_t c) { return Time(boat, c) + 3312; }
    static constexpr std::size_t Aux(std::size_t boat, std::size_t c) { return Time(boat, c) + 6624; }
    static constexpr std::size_t Damped(std::size_t boat, std::size_t c) { return Time(boat, c) + 9936; }

    // Boats 2 to 99, by short index.
    static constexpr std::size_t FarTime(std::size_t boat, std::size_t k) { return 86344 + 816 * (boat - 2) + 8 * k; }
    static constexpr std::size_t FarValue(std::size_t boat, std::size_t k) { return FarTime(boat, k) + 272; }
    static constexpr std::size_t FarDamped(std::size_t boat, std::size_t k) { return FarTime(boat, k) + 544; }

private:
    unsigned char* base_;
};

}  // namespace twr::testing
