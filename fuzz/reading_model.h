// SPDX-License-Identifier: MIT
// What reading gives, stated a second time: by literal offsets and numbers over a record's bytes, and with nothing of the product
// but the catalogue. 32767.0 stands for no value, and 32767 for no channel.
#pragma once
#include <cstdint>

#include "support/record_bytes.h"

namespace twr::testing {

class ReadingModel {
public:
    explicit ReadingModel(RecordBytes record) : record_(record) {}

    std::uint32_t Resolved(std::uint32_t channel, bool recurse) const;
    double Channel(std::uint32_t channel, std::uint32_t boat, bool damped, bool angleFlag, bool convert) const;

    // `maxAge` and `now` in days.
    double FreshChannel(std::uint32_t channel, std::uint32_t boat, bool damped, bool angleFlag, double maxAge, double now) const;

    std::int16_t StaleSeconds(std::uint32_t channel, std::uint32_t boat) const;
    double WithVariation(double value, std::uint32_t boat) const;
    double InUserUnit(std::uint32_t channel, double value, double variation) const;

    // Whether a publication is stored: not for the Time channel, without an entry, while blocked, or while held.
    bool Stores(std::uint32_t channel, std::uint32_t boat) const;

    std::uint32_t Boats() const { return record_.Get<std::uint32_t>(RecordBytes::kBoatCount); }

private:
    bool Flag(std::size_t index) const { return record_.U8(RecordBytes::SysFlag(index)) != 0; }
    std::int32_t Int(std::size_t index) const { return record_.I32(RecordBytes::SysInt(index)); }
    double OwnValue(std::uint32_t channel) const;
    std::int32_t TakenSlot(std::size_t row) const;
    std::int16_t Type(std::uint32_t channel) const;
    double InDistanceUnit(double value, std::int32_t selector) const;

    RecordBytes record_;
};

}  // namespace twr::testing
