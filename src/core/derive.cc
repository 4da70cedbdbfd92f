// Channels that follow from the publication of another one.
#include "core/core.h"
#include "core/days.h"
#include "core/shared_field.h"
#include "core/store.h"

namespace twr {

void CCore::Derive(ChannelId channel, BoatSlot boat, double& value, double time, double now) {
    CoreRecord& record = *view_;
    const auto flag = [&](std::size_t index) { return Load(record.sysFlag[index]) != 0; };
    // The value of a channel of this boat, kNoValue while the boat has never had one.
    const auto held = [&](ChannelId other) {
        const Entry entry = boat < Load(record.boatCount) ? EntryOf(record, other, boat) : Entry{};
        return entry ? Load(*entry.value) : kNoValue;
    };

    switch (channel) {
        case kAwa: {
            if (!flag(kFlagMastAngle) || Load(record.boatCount) == 0) return;
            const double mastAngle = Load(record.fullBlocks[0].value[kMastAng]);  // whatever the boat of the call
            if (mastAngle != kNoValue) value -= mastAngle;
            return;
        }
        case kHdg:
            if (flag(kFlagDeriveRot)) DeriveRate(kHdg, kRot, boat, value, time);
            return;
        case kHeel:
            if (flag(kFlagDeriveHeelTrimRate)) DeriveRate(kHeel, kHeelRate, boat, value, time);
            return;
        case kTrim:
            if (flag(kFlagDeriveHeelTrimRate)) DeriveRate(kTrim, kTrimRate, boat, value, time);
            return;
        case kGpsTime:
            StoreDerived(kGpsTOffset, boat, now - value, time);
            return;
        case kRudderP:
            if (const double starboard = held(kRudderS); starboard != kNoValue)
                StoreDerived(kRudderToe, boat, value - starboard, time);
            return;
        case kRudderS:
            if (const double port = held(kRudderP); port != kNoValue) StoreDerived(kRudderToe, boat, port - value, time);
            return;
        default:
            return;
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
