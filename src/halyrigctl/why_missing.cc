#include "halyrigctl/why_missing.h"

#include <cstdio>

#include "core/instrument_channels.h"
#include "core/record_access.h"
#include "halyrigctl/say.h"

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

std::string Number(double number) {
    char text[64];
    std::snprintf(text, sizeof text, "%.10g", number);
    return text;
}

// How far the way of a value from Deckman to the record leads: the first link that is broken.
std::string WhyNeverPublished(const MissingChannel& missing) {
    const BridgeStatus* const bridge = missing.bridge;
    if (!bridge) return "the bridge is not running; start " HALYRIG_PROGRAM;
    const std::string folder = Harmless(bridge->settings.dfwFolder);
    if (!bridge->library.loaded)
        return "the bridge could not load Deckman's library from the Dfw folder " + folder + "; choose Deckman's own folder";
    if (missing.channel == kLat || missing.channel == kLon)
        return "the library in " + folder + " has no function Usr_GetPosition, which gives the position";
    if (!bridge->library.reads) return "the library in " + folder + " has no function Usr_Read, so it is not Deckman's";
    if (bridge->mapping.variables == 0)
        return "there is no file of variables (Data/J_vars06.d) with a variable in the Dfw folder " + folder;
    std::string faults = missing.mappingFaults();
    if (!faults.empty()) faults = " (" + faults + ")";
    if (bridge->mapping.varRows == 0)
        return "no line of the mapping (halyrig.xml in the folder instruments of the data folder) names a variable of Deckman" +
               faults;
    return "no line of the mapping (halyrig.xml) feeds it" + faults;
}

std::string WhyEmpty(const CoreRecord& record, const MissingChannel& missing) {
    const float reading = missing.bridge ? missing.bridge->readings[missing.channel] : kNoReading;
    const std::string unknown = "its source gives no value, or one outside the channel's range";
    if (reading == kNoReading) return unknown;
    if (IsInstrumentBearing(missing.channel) && missing.bridge->settings.degreesTrue && !KnowsVariation(record))
        return "Deckman's bearings are taken as true, and there is no variation (MagVar, channel 93) to make this one magnetic";
    if (static_cast<double>(reading) == kNoValue) return "Deckman gives no value for it";
    const ChannelInfo& info = ChannelCatalogue()[missing.channel];
    if (reading >= info.min && reading <= info.max)
        return unknown;  // another program, or a line for another boat, gave the last one
    return "Deckman gives " + Number(reading) + ", outside the channel's range of " + std::to_string(info.min) + " to " +
           std::to_string(info.max);
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
    if (!missing.age) return "it was never published" + (note.empty() ? ": " + WhyNeverPublished(missing) : note);
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
