// Channels by the names that users type.
#pragma once
#include <optional>
#include <string>
#include <string_view>

#include "core/core.h"

namespace twr {

// The catalogue's short name; the Time channel, which has none, goes by its long one.
std::u16string_view CatalogueName(ChannelId channel);

// The name shown: the user's if there is one, else the catalogue's.
std::u16string NameForPeople(CCore& core, ChannelId channel);

// The channel with this number, with this short name, or with this name in the user's own words (letter case is ignored); nullopt
// if there is none. A core that is not attached knows no names of the user's.
std::optional<ChannelId> FindChannel(const CCore& core, const std::string& text);

}  // namespace twr
