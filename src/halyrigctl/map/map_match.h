// SPDX-License-Identifier: MIT
// Which channel a variable of Deckman's belongs to, by its name and unit.
#pragma once
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

}  // namespace twr
