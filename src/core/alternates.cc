// SPDX-License-Identifier: MIT
#include "core/alternates.h"

#include <array>
#include <cmath>

#include "core/core.h"
#include "core/record_access.h"

namespace twr {
namespace {

enum Slot : std::size_t { kFirst, kSecond, kUpwind, kReaching, kDownwind, kBeforeStart, kPort, kStarboard, kLast };

}  // namespace

std::int32_t ChooseAlternate(std::span<const std::int32_t, kAlternateSlots> slots, const SailingState& state) {
    const auto filled = [&](Slot slot) { return slots[slot] != kNoInt; };

    if (state.last && filled(kLast)) return slots[kLast];
    if (state.toGun != kNoValue && state.toGun >= 0.0 && filled(kBeforeStart)) return slots[kBeforeStart];
    if (const Slot slot = state.first ? kFirst : kSecond; filled(slot)) return slots[slot];
    if (state.twa != kNoValue) {
        const double angle = std::fabs(state.twa);
        if (state.target != kNoValue) {
            const double target = std::fabs(state.target);
            const double margin = std::fabs(state.margin);
            if (angle < 90.0 && filled(kUpwind) && margin + target > angle) return slots[kUpwind];
            if (angle > 90.0 && filled(kDownwind) && angle > target - margin) return slots[kDownwind];
            if (filled(kReaching)) return slots[kReaching];
        }
        if (state.twa < 0.0 && filled(kPort)) return slots[kPort];
        if (state.twa >= 0.0 && filled(kStarboard)) return slots[kStarboard];
        if (angle < 90.0 && filled(kUpwind)) return slots[kUpwind];
        if (angle >= 90.0 && filled(kDownwind)) return slots[kDownwind];
    }
    for (const std::int32_t slot : slots) {
        if (slot != kNoInt) return slot;
    }
    return kNoInt;
}

ChannelId CCore::ResolveAlternate(ChannelId channel, bool recurse) const {
    if (!view_ || !IsAlternating(channel)) return channel < kChannelCount ? channel : kNoChannel;
    // None of the channels read here is an alternating one, so these reads resolve nothing further.
    const auto own = [&](ChannelId plain) {
        double value;
        GetChannel(plain, value, 0, false, true, false);
        return value;
    };
    SailingState state{};
    state.toGun = own(kTmToGun);
    state.twa = own(kTwa);
    state.target = own(kTargTwa);
    state.margin = Load(view_->sysValue[kValueTargetMargin]);
    state.first = Load(view_->sysFlag[kFlagAlternateFirst]) != 0;
    state.last = Load(view_->sysFlag[kFlagAlternateLast]) != 0;

    std::array<std::int32_t, kAlternateSlots> slots;
    const AlternateRow& row = view_->alternates[channel - kAlt0];
    for (std::size_t i = 0; i < slots.size(); ++i) slots[i] = Load(row.slot[i]);

    const auto chosen = static_cast<ChannelId>(ChooseAlternate(slots, state));
    if (recurse && IsAlternating(chosen)) return ResolveAlternate(chosen, false);
    return chosen < kChannelCount ? chosen : kNoChannel;
}

}  // namespace twr
