// Reading: a channel's value out of the record, as the user should see it.
#include <algorithm>
#include <cmath>

#include "core/core.h"
#include "core/days.h"
#include "core/shared_field.h"
#include "core/store.h"
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

// By one turn, as a bearing.
double WithinTurn(double bearing) {
    if (bearing >= 360.0) return bearing - 360.0;
    if (bearing < 0.0) return bearing + 360.0;
    return bearing;
}

double WithinHalfTurn(double angle) {
    if (angle > 180.0) return angle - 360.0;
    if (angle < -180.0) return angle + 360.0;
    return angle;
}

}  // namespace

bool CCore::GetChannel(ChannelId channel, double& value, BoatSlot boat, bool damped, bool angleFlag, bool convert) {
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

bool CCore::GetFreshChannel(ChannelId channel, double& value, BoatSlot boat, bool damped, bool angleFlag, double maxAge) {
    value = kNoValue;
    if (!view_) return false;
    channel = ResolveAlternate(channel, true);
    const std::int16_t limit = StaleSeconds(channel, boat);
    if (limit > 0) {
        const double now = UtcNowDays(services_.clock);
        if (maxAge == kNoValue) maxAge = static_cast<double>(limit) / 60 / 60 / 24;
        const Entry entry = InUse(*view_, boat) ? EntryOf(*view_, channel, boat) : Entry{};
        if (!entry) return false;
        const double time = Load(*entry.time);
        if (time == 0.0 || std::fabs(now - time) > maxAge) return false;
    }
    return GetChannel(channel, value, boat, damped, angleFlag, true);
}

std::int16_t CCore::StaleSeconds(ChannelId channel, BoatSlot boat) {
    if (!view_ || channel >= kChannelCount) return kDefaultStaleSeconds;
    std::uint32_t limit = ChannelCatalogue()[channel].staleSeconds;
    if (boat >= 1 && boat < kBoatCount) {
        if (Load(view_->boatCount) > kBoatCount) Put(view_->boatCount, kBoatCount);
        const BoatRow& row = view_->boats[boat];
        if (InUse(*view_, boat) && Load(row.mmsi) != 0) limit = std::max(limit, static_cast<std::uint32_t>(Load(row.ageLimit)));
    }
    return static_cast<std::int16_t>(limit);
}

double CCore::ApplyVariation(double value, BoatSlot boat) {
    if (!view_ || value == kNoValue) return kNoValue;
    double variation = EntryValue(*view_, kMagVar, boat, false);
    if (variation == kNoValue) variation = EntryValue(*view_, kMagVar, 0, false);
    if (variation == kNoValue) return kNoValue;
    const double bearing = value + variation;
    return bearing == kNoValue ? bearing : WithinTurn(bearing);
}

double CCore::ToDisplayUnits(ChannelId channel, double value, double variation) {
    if (value == kNoValue || !view_ || channel >= kChannelCount) return value;
    const auto selector = [&](std::size_t index) { return Load(view_->sysInt[index]); };
    switch (ChannelTypeOf(channel)) {
        case kTypeDepth:
            return DepthInUserUnit(value, selector(kIntDepthUnit));
        case kTypeDistance:
            return DistanceInUserUnit(value, selector(kIntDistanceUnit), Load(view_->sysValue[kValueBoatLength]));
        case kTypeShortDistance:
            return DistanceInUserUnit(value, selector(kIntShortDistanceUnit), Load(view_->sysValue[kValueBoatLength]));
        case kTypeBearing:
            if (Load(view_->sysFlag[kFlagMagnetic]) == 0) {
                if (variation == kNoValue) variation = EntryValue(*view_, kMagVar, 0, false);
                if (variation == kNoValue) return kNoValue;
                value += variation;
            }
            return WithinTurn(value);
        case kTypeAngle:
        case kTypeWindAngle:
            return WithinHalfTurn(value);
        case kTypeBoatSpeed:
        case kTypeWindSpeed:
            return SpeedInUserUnit(value, selector(kIntSpeedUnit));
        case kTypeTemperature:
            return TemperatureInUserUnit(value, Load(view_->sysFlag[kFlagFahrenheit]) != 0);
        case kTypePressure:
            return PressureInUserUnit(value, selector(kIntPressureUnit));
        default:
            return value;
    }
}

}  // namespace twr
