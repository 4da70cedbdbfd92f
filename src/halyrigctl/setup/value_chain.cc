#include "halyrigctl/setup/value_chain.h"

#include <algorithm>
#include <cmath>

#include "base/numbers.h"
#include "core/units.h"
#include "deckman/instrument_value.h"
#include "deckman/remote_text.h"
#include "halyrigctl/setup/source_links.h"

namespace twr {
namespace {

bool ShowsMagnetic(const CoreRecord& record) { return Load(record.sysFlag[kFlagMagnetic]) != 0; }

bool SameAlternates(const CoreRecord& left, const CoreRecord& right, ChannelId alternating) {
    const std::size_t row = alternating - kAlt0;
    return std::ranges::equal(left.alternates[row].slot, right.alternates[row].slot, {}, Load<std::int32_t>, Load<std::int32_t>);
}

// What the suite refuses gets nowhere, whatever its source.
Advice Refusal(const Subject& subject) {
    const CoreRecord& record = subject.record;
    const ChannelRow& row = record.channels[subject.channel];
    if (!subject.entry) {
        return {"boat " + std::to_string(subject.boat) + " has no place for this channel",
                "only boats 0 and 1 have one for every channel"};
    }
    if (Load(row.blocked) != 0) {
        return {"the channel is blocked: another program of the suite refuses its values", "release it there"};
    }
    if (Load(record.sysFlag[kFlagHoldActive]) != 0 && Load(row.held) != 0) {
        return {"the channel is held: another program of the suite has stopped new values for it (system flag 52)",
                "let them go on there"};
    }
    return {};
}

void AddRecord(Links& links, const Subject& subject) {
    Advice fault;
    if (!subject.age) {
        fault = {"nothing has come yet", "look again in a moment"};
    } else if (subject.stored == kNoValue) {
        fault = {"its source gives no value, or one outside the channel's range", "see to the program that gives it"};
    } else if (!std::isfinite(subject.stored)) {
        fault = Unusable("its source gives ", subject.stored, "", false, "see to the program that gives it");
    }
    links.Judge("record", fault, Printed("%.10g", subject.stored) + Printed(", published %.1f s ago", subject.age.value_or(0.0)));
    fault = {};
    const std::string limit = std::to_string(subject.limit) + " s";
    if (subject.stale) {
        const bool notDeckman = FollowsPositionSource(subject.channel) && !PositionFromDeckman(subject.record);
        fault = {Printed("it is stale: last published %.1f s ago, and the limit is ", *subject.age) + limit,
                 std::string("see whether the program that gives it still runs") +
                     (notDeckman ? "; Deckman gives it only while the position source (Sys_i6) is 3" : "")};
    }
    links.Judge("limit", fault, subject.limit > 0 ? limit : "never stale");
}

// `shown`: the channel by which it is read, alternating if a chain is longer.
void AddUnit(Links& links, const Subject& subject, ChannelId shown) {
    const CCore& core = subject.core;
    const std::int16_t type = core.ChannelTypeOf(subject.channel);
    const bool magnetic = ShowsMagnetic(subject.record);
    const std::u16string unit(UnitLabel(type, UnitSettingsOf(subject.record)));
    double value = kNoValue;
    core.GetChannel(shown, value, subject.boat, false, magnetic, true);
    Advice fault;
    if (subject.stored != kNoValue && value == kNoValue) {
        fault = type == kTypeBearing && !magnetic
                    ? Advice{"bearings are shown true, and there is no variation (MagVar, channel 93)",
                             "map Deckman's variation to channel 93, or set Sys_b3 to 1"}
                    : Advice{"the unit chosen for it does not exist", "choose another one in the registry"};
    }
    links.Judge("shown", fault, Harmless(core.ChannelText(shown, value) + (unit.empty() ? u"" : u" ") + unit));
}

Advice DisplayFault(const MappingRemote& row, const std::string& remote, double value, Circumstances& now) {
    if (now.Library().Lacks("Usr_SetISData") || now.Library().Lacks("Usr_SetISName"))
        return {"the library has no functions Usr_SetISData and Usr_SetISName, which show texts", "install Deckman's own there"};
    if (row.damp != 0 && value == kNoValue)
        return {remote + " is to show the damped value, and no program of the suite damps it",
                "leave out damp in its line of the mapping, or write damp=\"false\""};
    return {};
}

}  // namespace

Links ValueChain(CCore& core, ChannelId channel, BoatSlot boat, Circumstances& circumstances) {
    Links links;
    const ChannelId shown = core.ResolveAlternate(channel, true);
    const ChannelId source = core.SourceOf(channel);
    if (source >= kChannelCount) {
        links.Break("alternates",
                    SameAlternates(*core.View(), circumstances.Renewed(), channel)
                        ? Advice{"it stands for no channel now", "name one for this state in alternate.csv"}
                        : Advice{"it stands for no channel: the record was made before alternate.csv was changed", kRestartAll});
        return links;
    }
    if (source != channel) links.Hold("alternates", "it stands for " + ChannelInWords(core, source) + " now");
    const Subject subject(core, source, boat, circumstances.now);
    links.Judge("suite", Refusal(subject), "it takes new values");
    AddSourceLinks(links, subject, circumstances);
    AddRecord(links, subject);
    AddUnit(links, subject, shown);
    return links;
}

void AddRemoteLinks(Links& links, CCore& core, ChannelId channel, BoatSlot boat, Circumstances& circumstances) {
    const MappingLook& look = circumstances.TheMapping();
    for (const MappingRemote& row : look.mapping.remoteRows) {
        const auto mapped = static_cast<ChannelId>(row.channel);
        const ChannelId resolved = core.ResolveAlternate(mapped, true);
        if (row.boat != static_cast<std::int32_t>(boat) || (mapped != channel && resolved != channel)) continue;
        double value = kNoValue;
        core.GetFreshChannel(resolved, value, boat, row.damp != 0, ShowsMagnetic(*core.View()), kNoValue);
        const std::string remote = PlaceInWords(look.path, row.line) + "remote " + std::to_string(row.remote);
        links.Judge("remote", DisplayFault(row, remote, value, circumstances),
                    remote + " shows " + Harmless(RemoteValueText(core, resolved, value)) + (row.damp != 0 ? ", damped" : ""));
    }
}

}  // namespace twr
