// SPDX-License-Identifier: MIT
#include "halyrigctl/setup/bridge_pulse.h"

#include <cmath>

namespace twr {
namespace {

// Over a shorter time a single tick more or less would change the rate, and a long one would pass for a standstill.
constexpr double kShortest = BridgePulse::kStandstillMs / 1000.0;

}  // namespace

void BridgePulse::Look(const std::optional<BridgeStatus>& bridge, double seconds) {
    const bool another = bridge && from_ && (bridge->ticks < from_->ticks || seconds < from_->seconds);
    if (!bridge || !from_ || another) {
        rate_.reset();
        from_ = bridge ? std::optional(Count{bridge->ticks, seconds}) : std::nullopt;
        return;
    }
    const double passed = seconds - from_->seconds;
    if (passed < kShortest) return;
    rate_ = (bridge->ticks - from_->ticks) / passed;
    from_ = {bridge->ticks, seconds};
}

std::string BridgePulse::Words() const {
    if (!from_) return {};
    if (!rate_) return "the bridge is running";
    if (*rate_ == 0.0) return "the bridge stands still";
    return "bridge " + std::to_string(std::lround(*rate_)) + " ticks/s";
}

}  // namespace twr
