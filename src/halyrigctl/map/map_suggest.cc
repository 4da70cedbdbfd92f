// SPDX-License-Identifier: MIT
// map suggest: commands that map Deckman's variables which are not mapped yet.
#include <algorithm>
#include <string>
#include <vector>

#include "base/wide_text.h"
#include "core/channel_catalogue.h"
#include "deckman/instrument_value.h"
#include "halyrigctl/commands.h"
#include "halyrigctl/output/guest.h"
#include "halyrigctl/setup/channel_match.h"
#include "halyrigctl/setup/circumstances.h"
#include "halyrigctl/setup/names.h"
#include "halyrigctl/setup/reasons.h"

namespace twr {
namespace {

struct Suggestion {
    std::string variable;  // as it is typed
    ChannelId channel;
};

struct Suggestions {
    std::vector<Suggestion> ready;  // the variation is before the bearings that need it
    std::vector<std::string> open;  // what is to be decided, or can't work
};

std::string Shown(ChannelId channel) { return std::to_string(channel) + " " + ToUtf8(CatalogueName(channel)); }

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

void Suggest(const DeckmanVariable& variable, const CoreRecord& record, Mapping& mapping, Suggestions& suggestions) {
    const ChannelMatch match = MatchChannel(variable);
    const auto leaveOpen = [&](const std::string& why) { suggestions.open.push_back(Harmless(variable.dfwName) + ": " + why); };
    if (!match.sure) return leaveOpen(Candidates(match));
    const ChannelId channel = match.channels.front();
    if (channel == kLat || channel == kLon)
        return leaveOpen(std::string("comes with the position, without a line, ") + kWhilePositionSource);
    if (FollowsPositionSource(channel) && !PositionFromDeckman(record))
        return leaveOpen(PositionFault(Shown(channel) + " is", Load(record.sysInt[kIntPositionSource])).Line());
    if (const MappingVar* fed = Feeding(mapping, channel))
        return leaveOpen(Shown(channel) + " is fed by " + Harmless(fed->dfwName));
    MappingVar& row = mapping.varRows.emplace_back(MappingVar{variable});  // for the variables that follow
    row.channel = static_cast<std::int32_t>(channel);
    suggestions.ready.insert(channel == kMagVar ? suggestions.ready.begin() : suggestions.ready.end(),
                             Suggestion{TypedVariable(variable), channel});
}

constexpr const char* kNothingToAdd = "Every variable whose name leaves no doubt is mapped.\n";

std::string OpenAsText(const Suggestions& suggestions) {
    std::string text = suggestions.open.empty() ? "" : "\nNot sure, or nothing to do:\n";
    for (const std::string& open : suggestions.open) text += "  " + open + "\n";
    return text;
}

std::string AsCommands(const Suggestions& suggestions) {
    if (suggestions.ready.empty()) return kNothingToAdd + OpenAsText(suggestions);
    std::string text;
    for (const Suggestion& one : suggestions.ready)
        text += "halyrigctl map add " + one.variable + " " + std::to_string(one.channel) + "\n";
    return text + "\nAll of them at once: halyrigctl map suggest --apply\n" + OpenAsText(suggestions);
}

// Shows what is to be added, and asks once.
Status Apply(System& system, const Suggestions& suggestions, const MapOptions& options) {
    Console& console = system.GetConsole();
    if (suggestions.ready.empty()) return Print(console, kNothingToAdd + OpenAsText(suggestions));
    MapOptions all = options;
    std::string text;
    for (const Suggestion& one : suggestions.ready) {
        text += "  " + one.variable + " feeds " + Shown(one.channel) + "\n";
        all.pairs.insert(all.pairs.end(), {one.variable, std::to_string(one.channel)});
    }
    text += OpenAsText(suggestions) + "\n";
    if (!options.yes)
        text += "Add these " + std::to_string(suggestions.ready.size()) + " to the mapping? Type y or n, then Enter: ";
    if (const Status status = Print(console, text); status != kDone) return status;
    const std::string answer = options.yes ? "y" : console.ReadLine().value_or("");
    if (answer.starts_with('y') || answer.starts_with('Y')) return AddToMap(system, all);
    Complain(console, "nothing is changed; with --yes there is no question");
    return kFailed;
}

}  // namespace

Status SuggestMap(System& system, const MapOptions& options) {
    Console& console = system.GetConsole();
    Guest guest(system, WithoutRecord::kGoOn);
    Circumstances now(system, guest.Core());
    Suggestions suggestions;
    const std::vector<DeckmanVariable>& variables = now.Variables().rows;
    Mapping mapping = now.TheMapping().mapping;
    const std::vector<MappingVar> mapped = mapping.varRows;
    const CoreRecord& record = guest ? guest.Record() : now.Renewed();
    for (const DeckmanVariable& variable : variables) {
        if (std::ranges::find(mapped, variable.dfwId, &MappingVar::dfwId) == mapped.end())
            Suggest(variable, record, mapping, suggestions);
    }
    guest.Leave();
    if (ComplainOfUnread(console, now.PassedOver())) return kFailed;
    Fault fault = variables.empty() ? now.Library().fault : now.TheMapping().fault;
    if (variables.empty() && !fault) fault = now.NoVariables();
    if (fault && fault.reason != Reason::kNoMapping && fault.reason != Reason::kMappingEmpty) {
        Complain(console, fault.Line());
        return kFailed;
    }
    if (now.Variables().timerVariableId >= 0) suggestions.open.push_back("TIMER: needs no line; the box in the dialog uses it");
    return options.apply ? Apply(system, suggestions, options) : Print(console, AsCommands(suggestions));
}

}  // namespace twr
