// SPDX-License-Identifier: MIT
// Names as users type them: channels, and what a mistyped one was meant to be.
#pragma once
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/core.h"

namespace twr {

// The catalogue's short name; the Time channel, which has none, goes by its long one.
std::u16string_view CatalogueName(ChannelId channel);

// The name shown: the user's if there is one, else the catalogue's.
std::u16string NameForPeople(CCore& core, ChannelId channel);

// The channel with this number, with this short name, or with this name in the user's own words (letter case is ignored); nullopt
// if there is none. A core that is not attached knows no names of the user's.
std::optional<ChannelId> FindChannel(const CCore& core, const std::string& text);

// The channels that a user has typed, in their order, and the first text that names none.
struct NamedChannels {
    std::vector<ChannelId> found;
    std::optional<std::string> unknown = {};
};
NamedChannels FindChannels(const CCore& core, const std::vector<std::string>& typed);

// The name that equals `typed` but for letter case, else the first of those that are fewest slips away: a character too many, too
// few or wrong, or two neighbours exchanged. A short name may have one slip, one of five characters or more two. nullopt if no name
// is that near.
std::optional<std::u16string> Nearest(std::u16string_view typed, std::span<const std::u16string> names);

}  // namespace twr
