// SPDX-License-Identifier: MIT
// map: the mapping as it stands, with names on both sides and the values of now.
#include <string>
#include <vector>

#include "base/numbers.h"
#include "base/wide_text.h"
#include "halyrigctl/commands.h"
#include "halyrigctl/output/guest.h"
#include "halyrigctl/output/json.h"
#include "halyrigctl/setup/channel_reading.h"
#include "halyrigctl/setup/circumstances.h"
#include "halyrigctl/setup/names.h"
#include "halyrigctl/setup/reasons.h"
#include "mapping/mapping_file.h"

namespace twr {
namespace {

// A channel in a line of the file, with what it shows now.
struct MappedChannel {
    std::size_t line;
    ChannelId channel;
    BoatSlot boat;
    std::u16string name;
    std::u16string text;  // with its unit; empty without a record
};

struct ListedMap {
    std::u16string path;
    Mapping rows;
    std::vector<MappedChannel> vars, remotes;  // as the rows
    std::vector<Finding> faults;
};

MappedChannel Mapped(CCore& core, std::size_t line, std::int32_t channelOfRow, std::int32_t boatOfRow, bool damped) {
    const auto channel = static_cast<ChannelId>(channelOfRow);
    const auto boat = static_cast<BoatSlot>(boatOfRow);
    return {.line = line,
            .channel = channel,
            .boat = boat,
            .name = NameForPeople(core, channel),
            .text = core.View() ? LiveText(core, channel, boat, damped) : std::u16string()};
}

ListedMap ReadMap(CCore& core, const MappingLook& look) {
    ListedMap map{.path = look.path, .rows = look.mapping, .vars = {}, .remotes = {}, .faults = look.faults};
    for (const MappingVar& row : map.rows.varRows) map.vars.push_back(Mapped(core, row.line, row.channel, row.boat, false));
    for (const MappingRemote& row : map.rows.remoteRows)
        map.remotes.push_back(Mapped(core, row.line, row.channel, row.boat, row.damp != 0));
    return map;
}

constexpr const char* kMapRow = "%5s  %-20s %-16s %4s  %-6s  %s\n";

std::string TextRow(const MappedChannel& mapped, const std::string& other, const char* damped) {
    return Printed(kMapRow, std::to_string(mapped.line).c_str(), other.c_str(),
                   (std::to_string(mapped.channel) + " " + Harmless(mapped.name)).c_str(), std::to_string(mapped.boat).c_str(),
                   damped, mapped.text.empty() ? "no record" : Harmless(mapped.text).c_str());
}

std::string AsText(const ListedMap& map) {
    std::string text = Harmless(map.path) + "\n";
    if (!map.vars.empty()) text += Printed(kMapRow, "line", "Deckman's variable", "feeds channel", "boat", "", "now");
    for (std::size_t i = 0; i < map.vars.size(); ++i) {
        const MappingVar& row = map.rows.varRows[i];
        text += TextRow(map.vars[i], Harmless(row.dfwName) + " (" + std::to_string(row.dfwId) + ")", "");
    }
    if (!map.remotes.empty()) text += Printed(kMapRow, "line", "remote", "shows channel", "boat", "damped", "now");
    for (std::size_t i = 0; i < map.remotes.size(); ++i) {
        const MappingRemote& row = map.rows.remoteRows[i];
        text += TextRow(map.remotes[i], std::to_string(row.remote), row.damp ? "yes" : "-");
    }
    if (!map.faults.empty()) text += "Passed over:\n";
    for (const Finding& fault : map.faults) text += Printed("%5s  %s\n", std::to_string(fault.line).c_str(), Words(fault).c_str());
    return text;
}

Json JsonRow(const char* kind, const MappedChannel& mapped) {
    return {{"kind", kind},
            {"line", mapped.line},
            {"channel", mapped.channel},
            {"name", TextOrNull(mapped.name)},
            {"boat", mapped.boat},
            {"text", TextOrNull(mapped.text)}};
}

std::string AsJson(const ListedMap& map) {
    std::vector<Json> rows;
    for (std::size_t i = 0; i < map.vars.size(); ++i) {
        Json& row = rows.emplace_back(JsonRow("var", map.vars[i]));
        row["variable"] = ToUtf8(map.rows.varRows[i].dfwName);
        row["number"] = map.rows.varRows[i].dfwId;
    }
    for (std::size_t i = 0; i < map.remotes.size(); ++i) {
        Json& row = rows.emplace_back(JsonRow("remote", map.remotes[i]));
        row["remote"] = map.rows.remoteRows[i].remote;
        row["damped"] = map.rows.remoteRows[i].damp != 0;
    }
    for (const Finding& fault : map.faults) rows.push_back({{"kind", "fault"}, {"line", fault.line}, {"fault", Words(fault)}});
    return JsonTable(rows);
}

}  // namespace

Status ListMap(System& system, bool json) {
    Guest guest(system, WithoutRecord::kGoOn);
    Circumstances now(system, guest.Core());
    ListedMap map = ReadMap(guest.Core(), now.TheMapping());
    std::erase_if(map.faults, [&](const Finding& finding) { return now.IsForLackOfList(finding); });
    const std::vector<Finding> passedOver = now.PassedOver();
    guest.Leave();
    Console& console = system.GetConsole();
    if (const Status status = Print(console, json ? AsJson(map) : AsText(map)); status != kDone) return status;
    if (ComplainOfUnread(console, passedOver)) return kFailed;
    const Fault& ofLibrary = now.Library().fault;
    if (now.Variables().rows.empty()) Complain(console, (ofLibrary ? ofLibrary : now.NoVariables()).Line());
    if (const Fault& fault = now.TheMapping().fault; fault && fault.reason != Reason::kNoMapping) Complain(console, fault.Line());
    if (now.TheMapping().fault.reason == Reason::kNoMapping)
        Notice(console, "there is no mapping yet; 'halyrigctl map suggest --apply' makes one");
    return kDone;
}

}  // namespace twr
