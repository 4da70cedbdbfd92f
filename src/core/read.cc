// SPDX-License-Identifier: MIT
// Reading: a channel's value out of the record, as the user should see it.
#include <algorithm>

#include "base/angles.h"
#include "core/core.h"
#include "core/days.h"
#include "core/record_access.h"
#include "core/units.h"

namespace twr {
namespace {

constexpr std::int16_t kDefaultStaleSeconds = 10;

bool InUse(const CoreRecord& record, BoatSlot boat) { return boat < Load(record.boatCount); }

double EntryValue(CoreRecord& record, ChannelId channel, BoatSlot boat, bool damped) {
    // Of a far boat only the lowest ChannelIds can be read damped, though its store has room for others.
    if (damped && boat >= kFullBoatCount && channel >= kShortChannelCount) return kNoValue;
    const Entry entry = InUse(record, boat) ? EntryOf(record, channel, boat) : Entry{};
    if (!entry) return kNoValue;
    return Load(damped ? *entry.damped : *entry.value);
}

}  // namespace

bool CCore::GetChannel(ChannelId channel, double& value, BoatSlot boat, bool damped, bool angleFlag, bool convert) const {
    value = kNoValue;
    if (!view_ || channel >= kChannelCount || boat >= kBoatCount) return false;
    channel = ResolveAlternate(channel, true);
    const double read = EntryValue(*view_, channel, boat, damped);
    if (read == kNoValue) return false;
    if (!angleFlag && ChannelTypeOf(channel) == kTypeBearing) {
        value = ApplyVariation(read, boat);
    } else {
        value = convert ? ToDisplayUnits(channel, read, kNoValue) : read;
    }
    return value != kNoValue;
}

bool CCore::GetFreshChannel(ChannelId channel, double& value, BoatSlot boat, bool damped, bool angleFlag, double maxAge) const {
    value = kNoValue;
    if (!view_) return false;
    channel = ResolveAlternate(channel, true);
    const std::int16_t limit = StaleSeconds(channel, boat);
    if (limit > 0) {
        const double now = UtcNowDays(services_.clock);
        const Entry entry = InUse(*view_, boat) ? EntryOf(*view_, channel, boat) : Entry{};
        if (!entry || IsStale(Load(*entry.time), now, limit, maxAge)) return false;
    }
    return GetChannel(channel, value, boat, damped, angleFlag, true);
}

std::int16_t CCore::StaleSeconds(ChannelId channel, BoatSlot boat) const {
    if (!view_ || channel >= kChannelCount) return kDefaultStaleSeconds;
    std::uint32_t limit = ChannelCatalogue()[channel].staleSeconds;
    if (boat >= 1 && boat < kBoatCount) {
        if (Load(view_->boatCount) > kBoatCount) Put(view_->boatCount, kBoatCount);
        const BoatRow& row = view_->boats[boat];
        if (InUse(*view_, boat) && Load(row.mmsi) != 0) limit = std::max(limit, static_cast<std::uint32_t>(Load(row.ageLimit)));
    }
    return static_cast<std::int16_t>(limit);
}

double CCore::ApplyVariation(double value, BoatSlot boat) const {
    if (!view_ || value == kNoValue) return kNoValue;
    double variation = EntryValue(*view_, kMagVar, boat, false);
    if (variation == kNoValue) variation = OwnVariation(*view_);
    if (variation == kNoValue) return kNoValue;
    const double bearing = value + variation;
    return bearing == kNoValue ? bearing : TurnedBearing(bearing);
}

double CCore::ToDisplayUnits(ChannelId channel, double value, double variation) const {
    if (value == kNoValue || !view_ || channel >= kChannelCount) return value;
    return InUserUnit(*view_, ChannelTypeOf(channel), value, variation);
}

double CCore::ToDisplayTime(double day) const {
    const bool local = view_ && Load(view_->sysFlag[kFlagLocalTime]) != 0;
    return local ? LocalTime(services_.zone, day).value_or(day) : day;
}

}  // namespace twr
