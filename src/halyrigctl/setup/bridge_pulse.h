// SPDX-License-Identifier: MIT
// Whether the bridge works, from looks at its count of ticks.
#pragma once
#include <cstdint>
#include <optional>
#include <string>

#include "status/bridge_status.h"

namespace twr {

class BridgePulse {
public:
    // Takes a look; `bridge` is nullopt if it can't be seen, `seconds` count from any moment.
    void Look(const std::optional<BridgeStatus>& bridge, double seconds);

    // It has not ticked for so long, or it has; nullopt while the looks tell neither.
    static constexpr int kStandstillMs = 1000;
    std::optional<bool> StandsStill() const { return rate_ ? std::optional(*rate_ == 0.0) : std::nullopt; }
    std::string Words() const;  // none while there is no bridge to be seen

private:
    struct Count {
        std::uint32_t ticks;
        double seconds;
    };
    std::optional<Count> from_;   // the rate is counted from here; nullopt while there is no bridge
    std::optional<double> rate_;  // ticks a second, over a second or more; nullopt before that
};

}  // namespace twr
