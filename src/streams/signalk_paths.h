// SPDX-License-Identifier: MIT
// Which channel is published under which path of Signal K 1.7, and in which of its units. Channels without a path of its own go
// under "halyrig.": load cells, what the crew has named, and so on.
#pragma once
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "core/core.h"

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
    const SiUnit* unit;        // nullptr for that of the channel's type, which is the crew's choice for their own
    bool trueBearing = false;  // turned from magnetic to true by the variation
};

struct SignalKPath {
    const char* path;
    std::span<const SignalKPart> parts;
    bool whole;  // an object with a missing member is no value
};

std::span<const SignalKPath> SignalKPaths();

// Signal K's unit of a type: of SI, of positions degrees, of a moment and a sail that of a text.
const SiUnit& SiUnitOf(std::int16_t type);

const SiUnit& UnitOf(const SignalKPart& part, const CCore& core);

// Whether it is none of Signal K's.
inline bool IsOurs(const SignalKPath& path) { return std::string_view(path.path).starts_with("halyrig."); }

// The last part of the path of a channel with this short name, of letters and digits: "polBspPercent" for "PolBsp%".
std::string SignalKName(std::u16string_view shortName);

// The units of what is a text: a moment by ISO 8601, and a sail's name.
inline constexpr SiUnit kSignalKMoment{"RFC 3339 (UTC)", 1.0};
inline constexpr SiUnit kSignalKText{"", 1.0};

}  // namespace twr
