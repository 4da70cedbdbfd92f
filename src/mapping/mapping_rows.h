// The mapping: which Deckman variable feeds which channel, and which channel feeds which of Deckman's remotes.
#pragma once
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "base/no_value.h"

namespace twr {

// One instrument variable that feeds one channel. Also a row of Deckman's own list of variables, with `channel` kNoInt and `boat`
// 0.
struct MappingVar {
    std::int32_t channel = kNoInt;  // ChannelId
    std::int32_t boat = 0;          // BoatSlot
    std::int32_t dfwId = kNoInt;    // Deckman's number of the variable
    std::int32_t dfwColumn4 = 0;    // carried along from Deckman's file, like column 3 and 6
    std::int32_t dfwColumn6 = 0;
    std::u16string dfwName;  // at most 15 characters once it comes from Deckman's file
    std::u16string dfwColumn3;
    std::size_t line = 0;  // of the file that it was read from, from 1
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

// Copies a variable's properties from Deckman's list; channel and boat are unchanged.
void BindVariable(MappingVar& row, const MappingVar& variable);

}  // namespace twr
