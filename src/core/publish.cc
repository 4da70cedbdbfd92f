// Publication: all that a value passes on its way into the record.
#include <algorithm>

#include "core/core.h"
#include "core/days.h"
#include "core/shared_field.h"
#include "core/store.h"

namespace twr {
namespace {

// One turn at most, so that a wild value stays out of range and is refused there.
double WrappedBearing(double value) {
    if (value < 0.0 && value + 360.0 >= 0.0) return value + 360.0;
    if (value >= 360.0 && value - 360.0 <= 360.0) return value - 360.0;
    return value;
}

double WrappedAngle(double value) {
    if (value < -180.0 && value + 360.0 >= -180.0) return value + 360.0;
    if (value > 180.0 && value - 360.0 <= 180.0) return value - 360.0;
    return value;
}

bool IsHeld(const CoreRecord& record, ChannelId channel) {
    return Load(record.sysFlag[kFlagHoldActive]) != 0 && Load(record.channels[channel].held) != 0;
}

}  // namespace

void CCore::StampTime() {
    if (view_) StampTime(UtcNowDays(services_.clock));
}

void CCore::StampTime(double now) {
    for (BoatBlock& block : view_->fullBlocks) {
        Put(block.time[kTime], now);
        Put(block.value[kTime], now);
        Put(block.aux[kTime], 0.0);
        Put(block.damped[kTime], now);
    }
    const std::uint32_t boats = std::min(Load(view_->boatCount), kBoatCount);
    if (boats <= kFullBoatCount) return;
    // A double of days moves once in 0.6 us, and several publications fall into that. The last boat is stamped last, so its stamp
    // tells whether all have this one.
    if (Load(view_->shortBlocks[boats - 1 - kFullBoatCount].damped[kTime]) == now) return;
    for (BoatSlot boat = kFullBoatCount; boat < boats; ++boat) {
        ShortBoatBlock& block = view_->shortBlocks[boat - kFullBoatCount];
        Put(block.time[kTime], now);  // the Time channel has short index 0 too
        Put(block.value[kTime], now);
        Put(block.damped[kTime], now);
    }
}

void CCore::NormaliseValue(ChannelId channel, double& value) const {
    if (channel >= kChannelCount) return;
    if (value != kNoValue && view_) {
        const std::int16_t type = ChannelTypeOf(channel);
        if (type == kTypeBearing) {
            value = WrappedBearing(value);
        } else if (type == kTypeAngle || type == kTypeWindAngle) {
            value = WrappedAngle(value);
        }
    }
    const ChannelInfo& info = ChannelCatalogue()[channel];
    if (info.min != info.max && (value < info.min || value > info.max)) value = kNoValue;
}

bool CCore::SetChannel(ChannelId channel, BoatSlot boat, double value, double time) {
    if (!view_) return false;
    const double now = UtcNowDays(services_.clock);
    StampTime(now);
    if (channel == kTime || channel >= kChannelCount || boat >= kBoatCount) return false;
    ChannelRow& row = view_->channels[channel];
    if (Load(row.blocked) != 0 || IsHeld(*view_, channel)) return false;
    if (time == 0.0) time = now;
    NormaliseValue(channel, value);
    value = ApplyCalibration(channel, value);
    if (value != kNoValue) Derive(channel, boat, value, time, now);
    const bool stored = Store(*view_, channel, boat, value, time);
    if (value != kNoValue) {
        Put(row.published, std::uint8_t{1});
        Put(view_->sysFlag[kFlagDataPublished], std::uint8_t{1});
    }
    return stored;
}

bool CCore::SetOwnChannel(ChannelId channel, double value, double time) {
    if (!view_) return false;
    const double now = UtcNowDays(services_.clock);
    StampTime(now);
    if (IsHeld(*view_, channel)) return false;
    if (time == 0.0) time = now;
    NormaliseValue(channel, value);
    const bool stored = Store(*view_, channel, 0, value, time);
    if (stored && value != kNoValue) Put(view_->channels[channel].published, std::uint8_t{1});
    return stored;
}

}  // namespace twr
