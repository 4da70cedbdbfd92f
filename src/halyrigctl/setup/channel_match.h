// SPDX-License-Identifier: MIT
// Which channel a variable of Deckman's belongs to, by its name and unit.
#pragma once
#include <optional>
#include <string>
#include <vector>

#include "base/channel_ids.h"
#include "deckman/variable_file.h"

namespace twr {

struct ChannelMatch {
    bool sure = false;                // there is exactly one channel, and nothing speaks against it
    std::vector<ChannelId> channels;  // at most a few
    std::string doubt;                // what speaks against the channels; may be empty
};

// Sure is a channel whose short name, or else whose long name, is that of the variable but for letter case and blanks, or which the
// name is known to mean, if Deckman's unit is that of the channel or tells nothing.
ChannelMatch MatchChannel(const DeckmanVariable& variable);

// Whether that is sure, and this one. Much sooner told for the many that are not.
bool SurelyMeans(const DeckmanVariable& variable, ChannelId channel);

// False only if Deckman's unit is known and is not the channel's.
bool UnitFits(const DeckmanVariable& variable, ChannelId channel);

// Whether the box for feet, or for degrees true, must be ticked if the unit in Deckman's list is right; nullopt if it does not
// tell, or no box concerns the channel.
std::optional<bool> UnitMeansBox(const DeckmanVariable& variable, ChannelId channel);

}  // namespace twr
