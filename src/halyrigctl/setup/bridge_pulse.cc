// SPDX-License-Identifier: MIT
#include "halyrigctl/setup/bridge_pulse.h"

#include <cmath>

namespace twr {

void BridgePulse::Look(const std::optional<BridgeStatus>& bridge, double seconds) {
    const bool another = bridge && !counts_.empty() && (bridge->ticks < counts_.back().ticks || seconds < counts_.back().seconds);
    if (!bridge || another) counts_.clear();
    if (!bridge) return;
    standsStill_ = bridge->StandsStill();
    counts_.push_back({bridge->ticks, seconds});
    while (counts_.size() > 2 && seconds - counts_[1].seconds >= kSeconds) counts_.pop_front();
}

std::string BridgePulse::Words() const {
    if (counts_.empty()) return {};
    if (standsStill_) return "the bridge stands still";
    const Count &first = counts_.front(), &last = counts_.back();
    const double passed = last.seconds - first.seconds;
    if (passed < kSeconds) return "the bridge is running";
    return "bridge " + std::to_string(std::lround((last.ticks - first.ticks) / passed)) + " ticks/s";
}

}  // namespace twr
