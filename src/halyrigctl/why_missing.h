// Why a channel shows no value.
#pragma once
#include <functional>
#include <optional>
#include <string>

#include "core/core.h"
#include "status/bridge_status.h"

namespace twr {

// What is known of a channel without a fresh value.
struct MissingChannel {
    ChannelId channel;  // not an alternating one
    BoatSlot boat;
    bool stored;                                        // its entry holds a value, even so
    std::optional<double> age;                          // seconds since the last publication; nullopt if it was never published
    std::int32_t limit;                                 // seconds after which a value is stale; 0 or less for never
    const BridgeStatus* bridge;                         // nullptr if the bridge is not running
    const std::function<std::string()>& mappingFaults;  // as MappingFaults gives them; asked only if that is the reason
};

// The first reason that applies, in the order in which a value is processed.
std::string WhyMissing(CCore& core, const MissingChannel& missing);

}  // namespace twr
