// SPDX-License-Identifier: MIT
#include <algorithm>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "deckman/instrument_value.h"
#include "halyrigctl/commands.h"
#include "halyrigctl/output/guest.h"
#include "halyrigctl/output/json.h"
#include "halyrigctl/setup/explanation.h"
#include "halyrigctl/setup/names.h"
#include "halyrigctl/setup/reasons.h"

namespace twr {
namespace {

// The channels that the bridge feeds or shows, of all boats or of one, in the order of the mapping.
std::vector<std::pair<ChannelId, BoatSlot>> MappedChannels(const CoreRecord& record, const MappingLook& look,
                                                           std::optional<BoatSlot> ofBoat) {
    std::vector<std::pair<ChannelId, BoatSlot>> mapped;
    const auto add = [&](std::int32_t channel, std::int32_t boat) {
        if (ofBoat && static_cast<BoatSlot>(boat) != *ofBoat) return;
        const std::pair place(static_cast<ChannelId>(channel), static_cast<BoatSlot>(boat));
        if (std::ranges::find(mapped, place) == mapped.end()) mapped.push_back(place);
    };
    if (PositionFromDeckman(record)) {
        add(kLat, 0);
        add(kLon, 0);
    }
    for (const MappingVar& row : look.meant) add(row.channel, row.boat);
    for (const MappingRemote& row : look.mapping.remoteRows) add(row.channel, row.boat);
    return mapped;
}

// The first titles of those of which the same is said, which are taken out, and how many more there are.
std::string TakeTitles(std::vector<Explained>& left, const Fault& fault) {
    constexpr std::size_t kTitles = 4;
    std::string titles;
    std::size_t count = 0;
    std::erase_if(left, [&](const Explained& one) {
        if (one.links.Broken().what != fault.what || one.links.Broken().todo != fault.todo) return false;
        if (++count <= kTitles) titles += (count == 1 ? "" : ", ") + one.title;
        return true;
    });
    return count <= kTitles ? titles : titles + " and " + std::to_string(count - kTitles) + " more";
}

// A line for each fault, with its channels, those with the same remedy together; then all that is well.
std::string AsOverview(std::vector<Explained> left) {
    std::string well, text;
    for (const Explained& one : left) {
        if (!one.links.Broken()) well += (well.empty() ? "" : ", ") + one.title;
    }
    std::erase_if(left, [](const Explained& one) { return !one.links.Broken(); });
    while (!left.empty()) {
        const std::string todo = left.front().links.Broken().todo;
        const auto hasTodo = [&](const Explained& one) { return one.links.Broken().todo == todo; };
        for (auto next = left.begin(); next != left.end(); next = std::ranges::find_if(left, hasTodo)) {
            const Fault fault = next->links.Broken();
            text += TakeTitles(left, fault) + ": " + fault.what + "\n";
        }
        text += (todo.empty() ? "" : "  to do: " + todo + "\n") + std::string("\n");
    }
    return text + (well.empty() ? "" : "all is well: " + well + "\n");
}

// What of the mapping no channel's way shows: a fault of the file, and lines that name no channel.
std::string BesideChannels(const MappingLook& look) {
    std::set<std::size_t> lines;  // each may have several faults
    for (const Finding& finding : look.faults) {
        if (!EndsReading(finding.flaw) && std::ranges::find(look.meant, finding.line, &MappingVar::line) == look.meant.end())
            lines.insert(finding.line);
    }
    const std::size_t lost = lines.size();
    std::string text = look.fault ? look.fault.Line() + "\n" : "";
    if (lost > 0) {
        text += std::to_string(lost) + (lost == 1 ? " line" : " lines") +
                " of the mapping can't be used; 'halyrigctl check' names each\n";
    }
    return text;
}

std::string AsJson(const Explained& one) {
    const auto textOrNull = [](const std::string& text) { return Told(!text.empty(), text); };
    Json links = Json::array();
    for (const Link& link : one.links.All()) {
        links.push_back({{"link", WordFor(link.name)},
                         {"state", link.state == LinkState::kHolds    ? "holds"
                                   : link.state == LinkState::kBroken ? "broken"
                                                                      : "behind"},
                         {"reason", textOrNull(std::string(WordFor(link.says.reason)))},
                         {"says", link.says.what},
                         {"toDo", textOrNull(link.says.todo)}});
    }
    return JsonLine({{"id", one.channel},
                     {"name", TextOrNull(one.name)},
                     {"boat", one.boat},
                     {"link", Told(bool(one.links.Broken()), WordFor(one.links.BrokenLink()))},
                     {"reason", textOrNull(std::string(WordFor(one.links.Broken().reason)))},
                     {"fault", textOrNull(one.links.Broken().what)},
                     {"toDo", textOrNull(one.links.Broken().todo)},
                     {"links", links}}) +
           "\n";
}

std::string InForm(const std::vector<Explained>& all, const ExplainOptions& options, const std::string& beside) {
    std::string text;
    if (options.json) {
        for (const Explained& one : all) text += AsJson(one);
        return text;
    }
    if (options.channels.empty() && !options.links) return AsOverview(all) + beside;
    for (const Explained& one : all) text += (text.empty() ? "" : "\n") + AsText(one);
    return text + (beside.empty() ? "" : "\n" + beside);
}

}  // namespace

std::string ExplainAsJson(CCore& core, ChannelId channel, BoatSlot boat, Circumstances& circumstances) {
    return AsJson(ExplainChannel(core, channel, boat, circumstances));
}

Status Explain(System& system, const ExplainOptions& options) {
    Guest guest(system);
    if (!guest) return kFailed;
    Console& console = system.GetConsole();
    const NamedChannels named = FindChannels(guest.Core(), options.channels);
    if (named.unknown) {
        guest.Leave();
        return ComplainOfChannel(console, named);
    }
    Circumstances circumstances(system, guest.Core());
    std::vector<std::pair<ChannelId, BoatSlot>> wanted;
    for (const ChannelId channel : named.found) wanted.emplace_back(channel, options.boat.value_or(0));
    if (wanted.empty()) wanted = MappedChannels(guest.Record(), circumstances.TheMapping(), options.boat);
    std::vector<Explained> all;
    for (const auto& [channel, boat] : wanted) all.push_back(ExplainChannel(guest.Core(), channel, boat, circumstances));
    const std::string beside = named.found.empty() ? BesideChannels(circumstances.TheMapping()) : "";
    const std::string none = "no line of the mapping (" + Harmless(circumstances.TheMapping().path) + ") can be used";
    const std::vector<Finding> passedOver = circumstances.PassedOver();
    guest.Leave();
    const bool unread = ComplainOfUnread(console, passedOver);
    if (all.empty()) {
        const Fault& fault = circumstances.TheMapping().fault;
        Complain(console, fault ? fault.Line() : none + "; 'halyrigctl check' says why");
        return kFailed;
    }
    const bool broken =
        unread || !beside.empty() || std::ranges::any_of(all, [](const Explained& one) { return bool(one.links.Broken()); });
    const Status printed = Print(console, InForm(all, options, beside));
    return broken ? kFailed : printed;
}

}  // namespace twr
