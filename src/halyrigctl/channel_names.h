// Channels by the names that people use.
#pragma once
#include <optional>
#include <string>
#include <string_view>

#include "core/core.h"

namespace twr {

// The catalogue's short name; the Time channel, which has none, goes by its long one.
std::u16string_view CatalogueName(ChannelId channel);

// The name shown: the user's where there is one, else the catalogue's.
std::u16string NameForPeople(CCore& core, ChannelId channel);

// The channel with this number, with this short name, or with this name in the user's own words (case of letters plays no part);
// nothing when there is none. The core has a record.
std::optional<ChannelId> FindChannel(const CCore& core, const std::string& text);

}  // namespace twr
