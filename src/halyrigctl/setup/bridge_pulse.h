// SPDX-License-Identifier: MIT
// The pace of the bridge, from looks at its count of ticks.
#pragma once
#include <cstdint>
#include <deque>
#include <optional>
#include <string>

#include "status/bridge_status.h"

namespace twr {

class BridgePulse {
public:
    // Takes a look; `bridge` is nullopt if it can't be seen, `seconds` count from any moment.
    void Look(const std::optional<BridgeStatus>& bridge, double seconds);

    std::string Words() const;  // none while there is no bridge to be seen

private:
    struct Count {
        std::uint32_t ticks;
        double seconds;
    };
    static constexpr double kSeconds = 3.0;  // over fewer a tick more or less would change the rate

    std::deque<Count> counts_;  // of the last seconds, and one from before if there is one; none while there is no bridge
    bool standsStill_ = false;
};

}  // namespace twr
