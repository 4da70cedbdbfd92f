// SPDX-License-Identifier: MIT
// Which channel is published under which path of Signal K 1.7, and in which of its units.
#pragma once
#include <cstdint>
#include <span>

#include "base/channel_ids.h"

namespace twr {

// From a channel's internal unit to that of the path: value * factor + offset.
struct SiUnit {
    const char* name;  // as Signal K calls it; empty for a plain number
    double factor;
    double offset = 0.0;
};

struct SignalKPart {
    const char* member;  // of the path's object; empty if the value is the number itself
    ChannelId channel;
    const SiUnit* unit;
    bool trueBearing = false;  // turned from magnetic to true by the variation
};

struct SignalKPath {
    const char* path;
    std::span<const SignalKPart> parts;
    bool whole;  // an object with a missing member is no value
};

std::span<const SignalKPath> SignalKPaths();

// The unit of SI for the values of a type that have one, by the same rules; of positions, degrees.
const SiUnit& SiUnitOf(std::int16_t type);

// The unit of the one value that is a text: a moment by ISO 8601.
inline constexpr SiUnit kSignalKMoment{"RFC 3339 (UTC)", 1.0};

}  // namespace twr
