// What a mistyped name was meant to be.
#pragma once
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace twr {

// The name that equals `typed` but for letter case, else the first of those that are fewest slips away: a character too many, too
// few or wrong, or two neighbours exchanged. A short name may have one slip, one of five characters or more two. nullopt if no name
// is that near.
std::optional<std::u16string> Nearest(std::u16string_view typed, std::span<const std::u16string> names);

}  // namespace twr
