// SPDX-License-Identifier: MIT
// Numbers: at the start of a text, printed into a text, and whole ones from doubles.
#pragma once
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

namespace twr {

// Numbers at the start of a text, as the settings of the suite hold them. White space before the number is skipped, a sign is
// accepted, and anything after the digits is ignored: " 12abc" is 12.

// As the formats "%d" and "%u" read on Windows: a number that is too long keeps its low 32 bits, one that is too long for 64 bits
// those of the nearest 64-bit number. "%u" accepts a sign too: -1 is the largest number. nullopt if there are no digits.
std::optional<std::int32_t> ScanInt(std::u16string_view text);
std::optional<std::uint32_t> ScanUnsigned(std::u16string_view text);

// A number that is too long stops at the bound of 32 bits; 0 when there are no digits.
std::int32_t LeadingInt(std::u16string_view text);

// As std::printf prints, of any length; empty if the format can't be printed.
[[gnu::format(printf, 1, 2)]] std::string Printed(const char* format, ...);

// Truncates towards zero. A value that doesn't fit, infinities and NaN included, gives the least number of the type, as the
// processor's own conversion does; a plain cast would be undefined.
template <class Integer>
Integer WholeNumber(double value) {
    constexpr double kLeast = static_cast<double>(std::numeric_limits<Integer>::min());
    // -kLeast is the first number above the greatest one, which a double may not be able to distinguish from it.
    const bool fits = (value >= kLeast || value > kLeast - 1.0) && value < -kLeast;
    return fits ? static_cast<Integer>(value) : std::numeric_limits<Integer>::min();
}

}  // namespace twr
