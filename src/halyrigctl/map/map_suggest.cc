// SPDX-License-Identifier: MIT
// map suggest: commands that map Deckman's variables which are not mapped yet.
#include <algorithm>
#include <string>
#include <vector>

#include "base/wide_text.h"
#include "core/channel_catalogue.h"
#include "deckman/instrument_value.h"
#include "halyrigctl/commands.h"
#include "halyrigctl/map/map_match.h"
#include "halyrigctl/output/guest.h"
#include "halyrigctl/setup/circumstances.h"
#include "halyrigctl/setup/names.h"
#include "halyrigctl/setup/reasons.h"
#include "mapping/mapping_file.h"

namespace twr {
namespace {

struct Suggestions {
    std::vector<std::string> first, ready;  // commands; the variation goes before the bearings that need it
    std::vector<std::string> open;          // what is to be decided
};

std::string Shown(ChannelId channel) { return std::to_string(channel) + " " + ToUtf8(CatalogueName(channel)); }

// A name that a shell takes as it is, else the number.
std::string Typed(const DeckmanVariable& variable) {
    const bool plain = std::ranges::all_of(variable.dfwName, [](char16_t c) {
        return (c >= u'0' && c <= u'9') || (c >= u'A' && c <= u'Z') || (c >= u'a' && c <= u'z') || c == u'_';
    });
    return plain ? ToUtf8(variable.dfwName) : std::to_string(variable.dfwId);
}

std::string Candidates(const ChannelMatch& match) {
    if (match.channels.empty()) return "no channel has such a name; channels 172 to 203 are yours";
    std::string text;
    for (const ChannelId channel : match.channels) text += (text.empty() ? "perhaps " : " or ") + Shown(channel);
    return match.doubt.empty() ? text : text + ": " + match.doubt;
}

const MappingVar* Feeding(const Mapping& mapping, ChannelId channel) {
    const auto found = std::ranges::find_if(
        mapping.varRows, [&](const MappingVar& row) { return row.channel == static_cast<std::int32_t>(channel) && row.boat == 0; });
    return found == mapping.varRows.end() ? nullptr : &*found;
}

void Suggest(const DeckmanVariable& variable, Mapping& mapping, Suggestions& suggestions) {
    const ChannelMatch match = MatchChannel(variable);
    const auto leaveOpen = [&](const std::string& why) { suggestions.open.push_back(Harmless(variable.dfwName) + ": " + why); };
    if (!match.sure) return leaveOpen(Candidates(match));
    const ChannelId channel = match.channels.front();
    if (channel == kLat || channel == kLon)
        return leaveOpen(std::string("comes with the position, without a line, ") + kWhilePositionSource);
    if (const MappingVar* fed = Feeding(mapping, channel))
        return leaveOpen(Shown(channel) + " is fed by " + Harmless(fed->dfwName));
    MappingVar& row = mapping.varRows.emplace_back(MappingVar{variable});  // for the variables that follow
    row.channel = static_cast<std::int32_t>(channel);
    (channel == kMagVar ? suggestions.first : suggestions.ready)
        .push_back("halyrigctl map add " + Typed(variable) + " " + std::to_string(channel));
}

std::string AsText(const Suggestions& suggestions) {
    std::string text;
    for (const auto* commands : {&suggestions.first, &suggestions.ready}) {
        for (const std::string& command : *commands) text += command + "\n";
    }
    if (text.empty()) text = "Every variable whose name leaves no doubt is mapped.\n";
    if (!suggestions.open.empty()) text += "\nNot sure, or nothing to do:\n";
    for (const std::string& open : suggestions.open) text += "  " + open + "\n";
    return text;
}

}  // namespace

Status SuggestMap(System& system) {
    const CoreServices services = system.Core();
    Guest guest(system, WithoutRecord::kGoOn);
    Circumstances now(system, guest.Core());
    guest.Leave();
    const std::vector<DeckmanVariable>& variables = now.Variables().rows;
    if (ComplainOfUnread(system.GetConsole(), now.PassedOverInVariables())) return kFailed;
    if (variables.empty()) {
        Complain(system.GetConsole(), now.NoVariables().Line());
        return kFailed;
    }
    CollectedFindings faults;
    Mapping mapping = LoadMapping(services.xml, now.MappingPath(), variables, &faults);
    if (ComplainOfUnread(system.GetConsole(), faults.found)) return kFailed;
    const std::vector<MappingVar> mapped = mapping.varRows;
    Suggestions suggestions;
    for (const DeckmanVariable& variable : variables) {
        if (std::ranges::find(mapped, variable.dfwId, &MappingVar::dfwId) == mapped.end()) Suggest(variable, mapping, suggestions);
    }
    if (now.Variables().timerVariableId >= 0) suggestions.open.push_back("TIMER: needs no line; the box in the dialog uses it");
    return Print(system.GetConsole(), AsText(suggestions));
}

}  // namespace twr
