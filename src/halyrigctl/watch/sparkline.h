// SPDX-License-Identifier: MIT
// The course of a value over the last minute as a row of small bars.
#pragma once
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace twr {

class Sparkline {
public:
    static constexpr std::size_t kWidth = 20;  // characters, of three seconds each

    // Of looks in their order; `seconds` counts from any moment. nullopt while there is no value. Time between two looks counts for
    // the earlier one.
    void Add(double seconds, std::optional<double> value);

    // UTF-8, kWidth characters: from the lowest value of the minute to the highest unless they hardly differ, a blank where there
    // was none. `circular` values are degrees: from 359 to 1 is a small step.
    std::string Text(bool circular) const;

    // The lowest and the highest value of the minute, as "6.21..7.05"; empty if there is none.
    std::string Scale(bool circular) const;
    static constexpr std::size_t kScaleWidth = 13;

private:
    using Columns = std::array<std::optional<double>, kWidth>;
    // With angles unrolled, so that none is far from the one before.
    Columns Unrolled(bool circular) const;

    Columns columns_{};        // the newest is last
    std::int64_t newest_ = 0;  // its number, counted from the moment
};

}  // namespace twr
