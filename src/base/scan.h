// Numbers at the start of a text, as the settings of the suite hold them. White space before the number is skipped, a sign is
// accepted, and anything after the digits is ignored: " 12abc" is 12.
#pragma once
#include <cstdint>
#include <optional>
#include <string_view>

namespace twr {

// As the formats "%d" and "%u" read on Windows: a number that is too long keeps its low 32 bits, one that is too long for 64 bits
// those of the nearest 64-bit number. "%u" accepts a sign too: -1 is the largest number. nullopt if there are no digits.
std::optional<std::int32_t> ScanInt(std::u16string_view text);
std::optional<std::uint32_t> ScanUnsigned(std::u16string_view text);

// A number that is too long stops at the bound of 32 bits; 0 when there are no digits.
std::int32_t LeadingInt(std::u16string_view text);

}  // namespace twr
