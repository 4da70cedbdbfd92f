#include "halyrigctl/channel_reading.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "core/days.h"
#include "core/position_source.h"
#include "core/shared_field.h"
#include "core/store.h"
#include "core/units.h"

namespace twr {
namespace {

std::string Seconds(double seconds) {
    char text[64];
    std::snprintf(text, sizeof text, "%.1f s", seconds);
    return text;
}

bool ShownTrue(const CCore& core, ChannelId channel) {
    return core.ChannelTypeOf(channel) == kTypeBearing && Load(core.View()->sysFlag[kFlagMagnetic]) == 0;
}

// What else keeps the source of a position silent: nothing when it may speak.
std::string PositionNote(const CoreRecord& record, ChannelId channel) {
    if (!FollowsPositionSource(channel) || PositionFromDeckman(record)) return "";
    return "; position, COG and SOG are taken from Deckman only while the position source (Sys_i6) is 3, and it is " +
           std::to_string(Load(record.sysInt[kIntPositionSource]));
}

// The first thing that stands between the channel and its user, in the order in which a value meets them.
std::string WhyMissing(CCore& core, ChannelId channel, BoatSlot boat, const Entry& entry, const ChannelReading& reading) {
    const CoreRecord& record = *core.View();
    if (!entry) return "boat " + std::to_string(boat) + " has no place for this channel";
    if (Load(record.channels[channel].blocked) != 0)
        return "the channel is blocked: another program of the suite refuses its values";
    const std::string note = PositionNote(record, channel);
    if (!reading.age)
        return "it was never published" + (note.empty() ? ": no source is mapped to it, or the source has not spoken" : note);
    if (reading.value == kNoValue) return "its source gives no value, or one outside the channel's range";
    if (reading.limit > 0 && *reading.age > reading.limit) {
        return "it is stale: last published " + Seconds(*reading.age) + " ago, and the limit is " + std::to_string(reading.limit) +
               " s" + note;
    }
    if (boat >= Load(record.boatCount)) return "no boat up to this one has ever received a real value";
    if (ShownTrue(core, channel)) return "bearings are shown true, and there is no variation (MagVar, channel 93)";
    return "the unit chosen for it does not exist";
}

}  // namespace

ChannelReading ReadChannel(CCore& core, ChannelId channel, BoatSlot boat, double now) {
    CoreRecord& record = *core.View();
    ChannelReading reading;
    const ChannelId resolved = core.ResolveAlternate(channel, true);
    const ChannelId source = core.ResolveAlternate(resolved, true);  // a chain is followed on where its value is read
    if (source >= kChannelCount) {
        reading.text = u"- -";
        reading.missing = "it stands for no channel now: alternate.csv names none for this state";
        return reading;
    }
    const Entry entry = EntryOf(record, source, boat);
    if (entry) {
        reading.value = Load(*entry.value);
        if (const double time = Load(*entry.time); time != 0.0) reading.age = std::fabs(now - time) * kSecondsPerDay;
    }
    reading.limit = core.StaleSeconds(source, boat);
    double shown = kNoValue;
    core.GetFreshChannel(resolved, shown, boat, false, Load(record.sysFlag[kFlagMagnetic]) != 0, kNoValue);
    reading.text = core.ChannelText(resolved, shown);
    if (shown == kNoValue) {
        reading.missing = WhyMissing(core, source, boat, entry, reading);
    } else if (reading.text.find(u'\u00B0') == std::u16string::npos) {  // some texts say their unit themselves
        reading.unit = UnitLabel(core.ChannelTypeOf(source), UnitSettingsOf(record));
    }
    return reading;
}

}  // namespace twr
