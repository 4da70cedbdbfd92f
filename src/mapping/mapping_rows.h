// SPDX-License-Identifier: MIT
// The mapping: which Deckman variable feeds which channel, and which channel feeds which of Deckman's remotes.
#pragma once
#include <cstddef>
#include <cstdint>
#include <vector>

#include "deckman/variable_file.h"

namespace twr {

// One of Deckman's variables that feeds one channel. Its number and columns are those of Deckman's list where that has it.
struct MappingVar : DeckmanVariable {
    std::int32_t channel = kNoInt;  // ChannelId
    std::int32_t boat = 0;          // BoatSlot
    std::size_t line = 0;           // of the file that it was read from, from 1
};

// One channel that feeds one remote.
struct MappingRemote {
    std::int32_t channel = kNoInt;  // ChannelId, an alternating channel too
    std::int32_t boat = 0;          // BoatSlot
    std::int32_t remote = kNoInt;   // Deckman's number of the remote, from 1
    std::int32_t damp = 0;          // 1: the damped value is shown, 0: the raw one

    std::int32_t lastChannel = kNoInt;  // the channel whose name the remote last received
    double lastValue = kNoValue;        // the value last sent
    std::size_t line = 0;               // as above
};

struct Mapping {
    std::vector<MappingVar> varRows;
    std::vector<MappingRemote> remoteRows;
};

}  // namespace twr
