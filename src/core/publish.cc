// SPDX-License-Identifier: MIT
// Publication: the steps by which a value enters the record, and the channels derived from it.
#include <algorithm>

#include "base/angles.h"
#include "core/core.h"
#include "core/days.h"
#include "core/record_access.h"

namespace twr {
namespace {

// An angle that one turn does not bring into its range is left unchanged, so that the range check rejects it.
inline double WrappedOnce(double value, double turned, double min, double max) {
    return turned >= min && turned <= max ? turned : value;
}

inline double Normalised(std::int16_t type, const ChannelInfo& info, double value) {
    if (value == kNoValue) return value;
    if (type == kTypeBearing) {
        value = WrappedOnce(value, TurnedBearing(value), 0.0, 360.0);
    } else if (type == kTypeAngle || type == kTypeWindAngle) {
        value = WrappedOnce(value, TurnedAngle(value), -180.0, 180.0);
    }
    return info.min != info.max && (value < info.min || value > info.max) ? kNoValue : value;
}

bool IsHeld(const CoreRecord& record, ChannelId channel) {
    return Load(record.sysFlag[kFlagHoldActive]) != 0 && Load(record.channels[channel].held) != 0;
}

bool IsAccepted(const CoreRecord& record, ChannelId channel, BoatSlot boat) {
    return channel != kTime && channel < kChannelCount && boat < kBoatCount && Load(record.channels[channel].blocked) == 0 &&
           !IsHeld(record, channel);
}

}  // namespace

// Publications come in bursts, several within one tick of the clock, so each tick is converted to days only once. Inline, as is
// ChannelTypeOf(): a call would cost every publication the registers that hold its value.
[[gnu::always_inline]] inline double CCore::StampTime(std::int64_t ticks) {
    if (ticks != ticks_) {
        ticks_ = ticks;
        days_ = DaysFromTicks(ticks);
    }
    const double now = days_;
    if (beingFilled_ && IsBeingFilled()) [[unlikely]]
        return now;
    CoreRecord& record = *view_;
    for (BoatBlock& block : record.fullBlocks) {
        Put(block.time[kTime], now);
        Put(block.value[kTime], now);
        Put(block.aux[kTime], 0.0);
        Put(block.damped[kTime], now);
    }
    const std::uint32_t boats = std::min(Load(record.boatCount), kBoatCount);
    if (boats <= kFullBoatCount) return now;
    // A double of days changes every 0.6 us, and several publications fall within that. The last boat is stamped last, so its stamp
    // shows whether all have this one.
    if (Load(record.shortBlocks[boats - 1 - kFullBoatCount].damped[kTime]) == now) return now;
    for (BoatSlot boat = kFullBoatCount; boat < boats; ++boat) {
        ShortBoatBlock& block = record.shortBlocks[boat - kFullBoatCount];
        Put(block.time[kTime], now);  // the Time channel has short index 0 too
        Put(block.value[kTime], now);
        Put(block.damped[kTime], now);
    }
    return now;
}

void CCore::StampTime() {
    if (view_) StampTime(services_.clock.Ticks());
}

void CCore::NormaliseValue(ChannelId channel, double& value) const {
    if (channel >= kChannelCount) return;
    // Without a record the type of an angle isn't certain, so only the range is checked.
    value = Normalised(view_ ? ChannelTypeOf(channel) : std::int16_t{kTypeNumber}, ChannelCatalogue()[channel], value);
}

// The value is brought into range before the clock's time is stamped, which no one can tell from the other order: whether the tick
// is a new one is a branch that the processor often guesses wrong, and all work behind it is then done twice.
bool CCore::SetChannel(ChannelId channel, BoatSlot boat, double value, double time) {
    if (!view_) return false;
    CoreRecord& record = *view_;
    const std::int64_t ticks = services_.clock.Ticks();
    if (!IsAccepted(record, channel, boat)) {
        StampTime(ticks);
        return false;
    }
    value = Normalised(ChannelTypeOf(channel), ChannelCatalogue()[channel], value);
    const double now = StampTime(ticks);
    ChannelRow& row = record.channels[channel];
    if (time == 0.0) time = now;
    if (Load(row.calibrated) != 0) [[unlikely]]
        value = ApplyCalibration(channel, value);
    if (value != kNoValue) value = Derived(channel, boat, value, time, now);
    const bool stored = Store(record, channel, boat, value, time);
    if (value != kNoValue) {
        Put(row.published, std::uint8_t{1});
        Put(record.sysFlag[kFlagDataPublished], std::uint8_t{1});
    }
    return stored;
}

bool CCore::SetOwnChannel(ChannelId channel, double value, double time) {
    if (!view_) return false;
    const double now = StampTime(services_.clock.Ticks());
    if (IsHeld(*view_, channel)) return false;
    if (time == 0.0) time = now;
    value = Normalised(ChannelTypeOf(channel), ChannelCatalogue()[channel], value);
    const bool stored = Store(*view_, channel, 0, value, time);
    if (stored && value != kNoValue) Put(view_->channels[channel].published, std::uint8_t{1});
    return stored;
}

// --- Channels derived from another one ---

double CCore::Derived(ChannelId channel, BoatSlot boat, double value, double time, double now) {
    CoreRecord& record = *view_;
    const auto flag = [&](std::size_t index) { return Load(record.sysFlag[index]) != 0; };
    // The value of a channel of this boat, kNoValue while the boat has never had one.
    const auto held = [&](ChannelId other) {
        const Entry entry = boat < Load(record.boatCount) ? EntryOf(record, other, boat) : Entry{};
        return entry ? Load(*entry.value) : kNoValue;
    };

    switch (channel) {
        case kAwa: {
            if (!flag(kFlagMastAngle) || Load(record.boatCount) == 0) return value;
            const double mastAngle = Load(record.fullBlocks[0].value[kMastAng]);  // the own boat's, for every boat
            return mastAngle == kNoValue ? value : value - mastAngle;
        }
        case kHdg:
            if (flag(kFlagDeriveRot)) DeriveRate(kHdg, kRot, boat, value, time);
            return value;
        case kHeel:
            if (flag(kFlagDeriveHeelTrimRate)) DeriveRate(kHeel, kHeelRate, boat, value, time);
            return value;
        case kTrim:
            if (flag(kFlagDeriveHeelTrimRate)) DeriveRate(kTrim, kTrimRate, boat, value, time);
            return value;
        case kGpsTime:
            StoreDerived(kGpsTOffset, boat, now - value, time);
            return value;
        case kRudderP:
            if (const double starboard = held(kRudderS); starboard != kNoValue)
                StoreDerived(kRudderToe, boat, value - starboard, time);
            return value;
        case kRudderS:
            if (const double port = held(kRudderP); port != kNoValue) StoreDerived(kRudderToe, boat, port - value, time);
            return value;
        default:
            return value;
    }
}

// Compares with the entry that the channel still holds, so it runs before the new value is stored. A heading that passes north
// gives a large rate for that one step.
void CCore::DeriveRate(ChannelId channel, ChannelId rateChannel, BoatSlot boat, double value, double time) {
    if (boat >= Load(view_->boatCount)) return;
    const Entry entry = EntryOf(*view_, channel, boat);
    if (!entry) return;
    const double before = Load(*entry.value);
    const double stamped = Load(*entry.time);
    if (before == kNoValue || stamped == 0.0) return;
    const double seconds = (time - stamped) * 24 * 60 * 60;
    if (seconds > 0.0) StoreDerived(rateChannel, boat, (value - before) / seconds, time);
}

// No wrap, no range and no calibration; only the boats that hold every channel have a place for derived ones.
void CCore::StoreDerived(ChannelId channel, BoatSlot boat, double value, double time) {
    if (boat < kFullBoatCount) Store(*view_, channel, boat, value, time);
}

}  // namespace twr
