// SPDX-License-Identifier: MIT
// map add-remote and map remove-remote: which channel a remote of Deckman's shows.
#include <algorithm>

#include "halyrigctl/commands.h"
#include "halyrigctl/map/map_change.h"

namespace twr {

Status AddRemoteToMap(System& system, const MapOptions& options) {
    MapChange change(system);
    if (const Status status = change.OpenFor({options.channel}); status != kDone) return status;
    if (!IsAlternating(change.Channel()) && !change.HasPlace(options.boat)) return change.RefusePlace(options.boat);
    const std::string number = std::to_string(options.remote);
    Mapping intended = change.Rows();
    const auto used = std::ranges::find(intended.remoteRows, options.remote, &MappingRemote::remote);
    if (used != intended.remoteRows.end()) {
        return change.Refuse("remote " + number + " already shows channel " + std::to_string(used->channel) + OfBoat(used->boat) +
                             ", in line " + std::to_string(used->line) + "; to take that away: halyrigctl map remove-remote " +
                             number);
    }
    MappingRemote& row = intended.remoteRows.emplace_back();
    row.channel = static_cast<std::int32_t>(change.Channel());
    row.boat = static_cast<std::int32_t>(options.boat);
    row.remote = options.remote;
    row.damp = options.damped ? 1 : 0;
    return change.AddRemote(
        intended, "Remote " + number + " shows " + change.ChannelOf(options.boat) + " now" + (options.damped ? ", damped" : ""));
}

Status RemoveRemoteFromMap(System& system, const MapOptions& options) {
    MapChange change(system);
    if (const Status status = change.Open(); status != kDone) return status;
    const auto goes = [&](const MappingRemote& row) { return row.remote == options.remote; };
    Mapping intended = change.Rows();
    std::erase_if(intended.remoteRows, goes);
    const auto isElement = [&](const XmlElement& element) {
        MappingRemote row;
        return ParseRemoteElement(element, row) && goes(row);
    };
    const std::string number = std::to_string(options.remote);
    return change.Remove(isElement, intended, "Remote " + number + " is sent nothing now", "no line is for remote " + number);
}

}  // namespace twr
