// Why a channel shows no value.
#pragma once
#include <optional>
#include <string>

#include "core/core.h"

namespace twr {

// What is known of a channel without a fresh value.
struct MissingChannel {
    ChannelId channel;  // no alternating one
    BoatSlot boat;
    bool stored;                // its entry holds a value all the same
    std::optional<double> age;  // seconds since the last publication; nothing when it was never published
    std::int32_t limit;         // seconds after which a value counts as gone; 0 or less for never
    bool degreesTrue;           // Deckman's bearings come true, as far as is known
};

// The first thing that stands between the channel and its user, in the order in which a value meets them.
std::string WhyMissing(CCore& core, const MissingChannel& missing);

}  // namespace twr
