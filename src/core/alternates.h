// SPDX-License-Identifier: MIT
// The choice of the channel that an alternating channel stands for: one before the start, another upwind, a third downwind.
#pragma once
#include <cstdint>
#include <span>

#include "core/core_record.h"

namespace twr {

// The state of the own boat that decides the choice. Values are kNoValue if unknown.
struct SailingState {
    double toGun;   // days to the gun, negative after it
    double twa;     // degrees, port negative
    double target;  // target TWA in degrees
    double margin;  // degrees round the target within which the boat still counts as being on it
    bool first;     // sysFlag[kFlagAlternateFirst]: slot 0 in place of slot 1
    bool last;      // sysFlag[kFlagAlternateLast]: slot 8 takes precedence over all others
};

// The content of the chosen slot, unchecked; kNoInt if all are empty.
std::int32_t ChooseAlternate(std::span<const std::int32_t, kAlternateSlots> slots, const SailingState& state);

}  // namespace twr
