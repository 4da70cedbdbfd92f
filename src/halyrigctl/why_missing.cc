#include "halyrigctl/why_missing.h"

#include <cstdio>

#include "core/instrument_channels.h"
#include "core/record_access.h"

namespace twr {
namespace {

std::string Seconds(double seconds) {
    char text[64];
    std::snprintf(text, sizeof text, "%.1f s", seconds);
    return text;
}

// Whether publication refuses values for it.
bool IsHeld(const CoreRecord& record, ChannelId channel) {
    return Load(record.sysFlag[kFlagHoldActive]) != 0 && Load(record.channels[channel].held) != 0;
}

bool ShownTrue(const CCore& core, ChannelId channel) {
    return core.ChannelTypeOf(channel) == kTypeBearing && Load(core.View()->sysFlag[kFlagMagnetic]) == 0;
}

// For every boat the bridge uses the variation of the own boat.
bool KnowsVariation(const CoreRecord& record) {
    return Load(record.boatCount) != 0 && Load(record.fullBlocks[0].value[kMagVar]) != kNoValue;
}

// The reason if the position source is not Deckman; else empty.
std::string PositionNote(const CoreRecord& record, ChannelId channel) {
    if (!FollowsPositionSource(channel) || PositionFromDeckman(record)) return "";
    return "; position, COG and SOG are taken from Deckman only while the position source (Sys_i6) is 3, and it is " +
           std::to_string(Load(record.sysInt[kIntPositionSource]));
}

// The user may have set the bridge to true bearings since it last saved its settings.
std::string WhyEmpty(const CoreRecord& record, const MissingChannel& missing) {
    const std::string plain = "its source gives no value, or one outside the channel's range";
    if (!IsInstrumentBearing(missing.channel) || KnowsVariation(record)) return plain;
    if (missing.degreesTrue) {
        return "Deckman's bearings are taken as true, and there is no variation (MagVar, channel 93) to make this one magnetic";
    }
    return plain + "; or Deckman's bearings are taken as true, and there is no variation (MagVar, channel 93)";
}

}  // namespace

std::string WhyMissing(CCore& core, const MissingChannel& missing) {
    const CoreRecord& record = *core.View();
    const ChannelId channel = missing.channel;
    if (!EntryOf(*core.View(), channel, missing.boat)) {
        return "boat " + std::to_string(missing.boat) + " has no place for this channel";
    }
    if (Load(record.channels[channel].blocked) != 0)
        return "the channel is blocked: another program of the suite refuses its values";
    if (IsHeld(record, channel))
        return "the channel is held: another program of the suite has stopped new values for it (system flag 52)";
    const std::string note = PositionNote(record, channel);
    if (!missing.age)
        return "it was never published" + (note.empty() ? ": no source is mapped to it, or the source has sent no value" : note);
    if (!missing.stored) return WhyEmpty(record, missing);
    if (missing.limit > 0 && *missing.age > missing.limit) {
        return "it is stale: last published " + Seconds(*missing.age) + " ago, and the limit is " + std::to_string(missing.limit) +
               " s" + note;
    }
    if (missing.boat >= Load(record.boatCount))
        return "neither this boat nor one with a higher number has ever received a real value";
    if (ShownTrue(core, channel)) return "bearings are shown true, and there is no variation (MagVar, channel 93)";
    return "the unit chosen for it does not exist";
}

}  // namespace twr
