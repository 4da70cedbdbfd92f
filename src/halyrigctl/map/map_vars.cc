// SPDX-License-Identifier: MIT
// map add and map remove: which of Deckman's variables feeds a channel.
#include <algorithm>
#include <optional>

#include "base/numbers.h"
#include "base/wide_text.h"
#include "deckman/instrument_value.h"
#include "halyrigctl/commands.h"
#include "halyrigctl/map/map_change.h"
#include "halyrigctl/setup/channel_match.h"
#include "halyrigctl/setup/names.h"

namespace twr {
namespace {

// Deckman's number of a variable, if that is what was typed.
std::optional<std::int32_t> NumberIn(const std::u16string& typed) {
    const bool isNumber = typed.size() < 10 && typed.find_first_not_of(u"0123456789") == typed.npos;
    return isNumber ? ScanInt(typed) : std::nullopt;
}

// A variable of Deckman's list by its name, capitals included, or its number; nullptr if there is none.
const DeckmanVariable* Listed(const std::vector<DeckmanVariable>& variables, const std::u16string& typed) {
    auto found = std::ranges::find(variables, typed, &DeckmanVariable::dfwName);
    const auto number = NumberIn(typed);
    if (found == variables.end() && number) found = std::ranges::find(variables, *number, &DeckmanVariable::dfwId);
    return found == variables.end() ? nullptr : &*found;
}

Status RefuseVariable(MapChange& change, const std::u16string& typed) {
    Circumstances& now = change.Now();
    if (now.Variables().rows.empty()) {
        const Fault& ofLibrary = now.Library().fault;
        return change.Refuse((ofLibrary ? ofLibrary : now.NoVariables()).Line());
    }
    if (typed == u"TIMER" && now.Variables().timerVariableId >= 0)
        return change.Refuse("TIMER needs no mapping; tick the box for it in the dialog of " HALYRIG_PROGRAM);
    std::vector<std::u16string> names;
    const auto meant = ChannelOfWord(PlainName(typed));
    for (const DeckmanVariable& variable : now.Variables().rows) {
        const ChannelMatch match = MatchChannel(variable);
        if (meant && match.sure && match.channels.front() == *meant)
            return change.Refuse(
                "Deckman's list has no variable " + Harmless(typed) + "; did you mean " + Harmless(variable.dfwName) + "?",
                kMisunderstood);
        names.push_back(variable.dfwName);
    }
    return change.Refuse("Deckman's list has no variable " + Harmless(typed) + "; " +
                             Guess(typed, names, "capitals count, and 'halyrigctl map suggest' shows those that are not mapped"),
                         kMisunderstood);
}

// The first row that feeds the channel, for this boat or for another one; nullptr if there is none.
const MappingVar* Feeding(const MapChange& change, const Mapping& rows, std::int32_t boat, bool forThisBoat) {
    const auto found = std::ranges::find_if(
        rows.varRows, [&](const MappingVar& row) { return change.IsChannel(row.channel) && (row.boat == boat) == forThisBoat; });
    return found == rows.varRows.end() ? nullptr : &*found;
}

std::string Line(std::size_t number) { return "line " + std::to_string(number); }

Status CheckMayBeFed(MapChange& change, const Mapping& rows, BoatSlot boat) {
    if (change.Channel() == kTime) return change.Refuse(change.ChannelOf(0) + " can't be fed: it follows the clock");
    if (IsAlternating(change.Channel()))
        return change.Refuse(change.ChannelOf(0) + " can't be fed: it stands for another channel; a remote can show it");
    if (!change.HasPlace(boat)) return change.RefusePlace(boat);
    const MappingVar* fed = Feeding(change, rows, static_cast<std::int32_t>(boat), true);
    if (!fed) return kDone;
    return change.Refuse(change.ChannelOf(boat) + " is already fed by " + Harmless(fed->dfwName) +
                         (fed->line > 0 ? ", in " + Line(fed->line) : " before, in this command") +
                         "; to take that away: halyrigctl map remove " + std::to_string(change.Channel()) +
                         (boat ? " --boat " + std::to_string(boat) : ""));
}

void RemarkOnChannel(MapChange& change, BoatSlot boat) {
    if (const MappingVar* other = Feeding(change, change.Rows(), static_cast<std::int32_t>(boat), false)) {
        change.Remark(Line(other->line) + " feeds the same channel" + (other->boat ? OfBoat(other->boat) : " of the own boat") +
                      ", so some values will be skipped; give each channel one line");
    }
    if (FollowsPositionSource(change.Channel()))
        change.Remark(change.ChannelOf(0) + " is taken from Deckman only " + kWhilePositionSource);
}

}  // namespace

// All or none.
Status AddToMap(System& system, const MapOptions& options) {
    MapChange change(system);
    std::vector<std::string> variables, channels;
    for (const std::string& typed : options.pairs) (variables.size() == channels.size() ? variables : channels).push_back(typed);
    if (variables.size() != channels.size())
        return change.Refuse("behind each variable name the channel that it is to feed", kMisunderstood);
    if (const Status status = change.OpenFor(channels); status != kDone) return status;
    Mapping intended = change.Rows();
    std::string done;
    for (std::size_t i = 0; i < channels.size(); ++i) {
        change.TurnTo(i);
        const std::u16string typed = FromUtf8(variables[i]);
        const DeckmanVariable* variable = Listed(change.Now().Variables().rows, typed);
        if (!variable) return RefuseVariable(change, typed);
        if (const Status status = CheckMayBeFed(change, intended, options.boat); status != kDone) return status;
        MappingVar& row = intended.varRows.emplace_back(MappingVar{*variable});
        row.channel = static_cast<std::int32_t>(change.Channel());
        row.boat = static_cast<std::int32_t>(options.boat);
        done += (done.empty() ? "" : ".\n") + ("Deckman's variable " + Harmless(variable->dfwName)) + " feeds " +
                change.ChannelOf(options.boat) + " now";
    }
    const Status status = change.AddVars(intended, channels.size(), done);
    for (std::size_t i = 0; status == kDone && i < channels.size(); ++i) {
        change.TurnTo(i);
        RemarkOnChannel(change, options.boat);
    }
    return status;
}

Status RemoveFromMap(System& system, const MapOptions& options) {
    MapChange change(system);
    if (const Status status = change.OpenFor({options.channel}); status != kDone) return status;
    const std::u16string typed = FromUtf8(options.variable);
    const DeckmanVariable* listed = Listed(change.Now().Variables().rows, typed);
    const auto isNamed = [&](const MappingVar& row) {
        if (typed.empty() || row.dfwName == typed) return true;
        if (listed) return row.dfwId == listed->dfwId || row.dfwName == listed->dfwName;
        return row.dfwId != kNoInt && row.dfwId == NumberIn(typed);
    };
    const auto goes = [&](const MappingVar& row) {
        return change.IsChannel(row.channel) && row.boat == static_cast<std::int32_t>(options.boat) && isNamed(row);
    };
    Mapping intended = change.Rows();
    std::erase_if(intended.varRows, goes);
    const auto isElement = [&](const XmlElement& element) {
        MappingVar row;
        return ParseVarElement(element, row) && goes(row);
    };
    const std::string channel = change.ChannelOf(options.boat), name = Harmless(typed);
    return change.Remove(isElement, intended,
                         typed.empty() ? "Nothing feeds " + channel + " now" : name + " no longer feeds " + channel,
                         "no line feeds " + channel + (typed.empty() ? "" : " from variable " + name));
}

}  // namespace twr
