// The choices of a demonstration, from the file simulation.txt beside the library: lines of "key=value", all optional.
#pragma once
#include <cstdint>
#include <string_view>

#include "platform/files.h"

namespace twr {

struct StandInSettings {
    std::uint64_t seed = 1;        // "seed": which day is simulated
    double speed = 1.0;            // "speed": seconds that pass in a second, 0.1 to 100; for a recording too
    std::int32_t startLead = 300;  // "start_lead": seconds of the count before each start, 10 to 3600
};

// Unknown keys, and values that are malformed or out of range, are ignored; without a file the defaults above apply.
StandInSettings ReadStandInSettings(Files& files, std::u16string_view path);

}  // namespace twr
