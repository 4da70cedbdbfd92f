#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "deckman/instrument_value.h"
#include "halyrigctl/commands.h"
#include "halyrigctl/output/cells.h"
#include "halyrigctl/output/guest.h"
#include "halyrigctl/output/json.h"
#include "halyrigctl/setup/names.h"
#include "halyrigctl/setup/reasons.h"
#include "halyrigctl/setup/value_chain.h"

namespace twr {
namespace {

struct Explained {
    ChannelId channel;
    BoatSlot boat;
    std::string title;  // for people
    std::u16string name;
    Links links;
};

// The channels that the bridge feeds or shows, in the order of the mapping.
std::vector<std::pair<ChannelId, BoatSlot>> MappedChannels(const CoreRecord& record, const MappingLook& look) {
    std::vector<std::pair<ChannelId, BoatSlot>> mapped;
    const auto add = [&](std::int32_t channel, std::int32_t boat) {
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

// What is wrong and what to do, then each link.
std::string AsText(const Explained& one) {
    constexpr std::size_t kNameWidth = 12;
    const Fault& fault = one.links.Broken();
    std::string text = one.title + ": " + (fault ? fault.what : "all is well") + "\n";
    if (!fault.todo.empty()) text += "  " + Padded("to do", kNameWidth) + fault.todo + "\n";
    for (const Link& link : one.links.All()) {
        const char* mark = link.state == LinkState::kHolds ? "  " : link.state == LinkState::kBroken ? "x " : "- ";
        text += mark + Padded(std::string(WordFor(link.name)), kNameWidth) + link.says.what + "\n";
    }
    return text;
}

// A line for each channel with a fault, those with the same remedy together; then all that is well.
std::string AsOverview(std::vector<Explained> left) {
    std::string well, text;
    for (const Explained& one : left) {
        if (!one.links.Broken()) well += (well.empty() ? "" : ", ") + one.title;
    }
    std::erase_if(left, [](const Explained& one) { return !one.links.Broken(); });
    while (!left.empty()) {
        const std::string todo = left.front().links.Broken().todo;
        std::erase_if(left, [&](const Explained& one) {
            if (one.links.Broken().todo != todo) return false;
            text += one.title + ": " + one.links.Broken().what + "\n";
            return true;
        });
        text += (todo.empty() ? "" : "  to do: " + todo + "\n") + std::string("\n");
    }
    return text + (well.empty() ? "" : "all is well: " + well + "\n");
}

Explained LookAt(CCore& core, ChannelId channel, BoatSlot boat, Circumstances& circumstances) {
    const std::string ofBoat = boat > 0 ? " of boat " + std::to_string(boat) : "";
    Explained one{channel, boat, ChannelInWords(core, channel) + ofBoat, NameForPeople(core, channel),
                  ValueChain(core, channel, boat, circumstances)};
    AddRemoteLinks(one.links, core, channel, boat, circumstances);
    return one;
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
                     {"link", Told(bool(one.links.Broken()), WordFor(LinkOf(one.links.Broken().reason)))},
                     {"reason", textOrNull(std::string(WordFor(one.links.Broken().reason)))},
                     {"fault", textOrNull(one.links.Broken().what)},
                     {"toDo", textOrNull(one.links.Broken().todo)},
                     {"links", links}}) +
           "\n";
}

}  // namespace

std::string ExplainAsJson(CCore& core, ChannelId channel, BoatSlot boat, Circumstances& circumstances) {
    return AsJson(LookAt(core, channel, boat, circumstances));
}

Status Explain(System& system, const ExplainOptions& options) {
    Guest guest(system);
    if (!guest) return kFailed;
    Console& console = system.GetConsole();
    const NamedChannels named = FindChannels(guest.Core(), options.channels);
    if (named.unknown) {
        guest.Leave();
        return ComplainOfChannel(console, *named.unknown);
    }
    Circumstances circumstances(system, guest.Core());
    std::vector<std::pair<ChannelId, BoatSlot>> wanted;
    for (const ChannelId channel : named.found) wanted.emplace_back(channel, options.boat);
    if (wanted.empty()) wanted = MappedChannels(guest.Record(), circumstances.TheMapping());
    std::vector<Explained> all;
    for (const auto& [channel, boat] : wanted) all.push_back(LookAt(guest.Core(), channel, boat, circumstances));
    const std::string mapping = Harmless(circumstances.TheMapping().path);
    const std::vector<Finding> passedOver = circumstances.PassedOver();
    guest.Leave();
    const bool unread = ComplainOfUnread(console, passedOver);
    if (all.empty()) {
        Complain(console, "no line of the mapping (" + mapping + ") can be used; 'halyrigctl check' says why");
        return kFailed;
    }
    std::string text;
    if (options.json) {
        for (const Explained& one : all) text += AsJson(one);
    } else if (options.channels.empty() && !options.links) {
        text = AsOverview(all);
    } else {
        for (const Explained& one : all) text += (text.empty() ? "" : "\n") + AsText(one);
    }
    const Status printed = Print(console, text);
    return unread || std::ranges::any_of(all, [](const Explained& one) { return bool(one.links.Broken()); }) ? kFailed : printed;
}

}  // namespace twr
