// Whether what is shown, and what the boxes ask for, is fed by anything.
#include <algorithm>

#include "deckman/instrument_value.h"
#include "halyrigctl/check/check_setup.h"
#include "halyrigctl/setup/fed_channels.h"
#include "halyrigctl/setup/source_links.h"

namespace twr {

// While the suite does not run, another program may still come to feed a channel.
void CheckFeeding(const CheckedSetup& setup) {
    if (setup.now.Variables().rows.empty()) return;
    const MappingLook& look = setup.now.TheMapping();
    const FedChannels fed(setup.services, look.mapping, *setup.core.View());
    const Weight weight = setup.live && setup.now.bridge ? Weight::kLine : Weight::kNote;
    const bool position = PositionFromDeckman(*setup.core.View());
    for (const MappingRemote& row : look.mapping.remoteRows) {
        const auto channel = static_cast<ChannelId>(row.channel);
        if (fed.Feeds(channel, static_cast<BoatSlot>(row.boat))) continue;
        setup.Add({.weight = weight,
                   .path = look.path,
                   .line = row.line,
                   .flaw = "not-fed",
                   .says = {"remote " + std::to_string(row.remote) + " is to show " + ChannelInWords(setup.core, channel) +
                                ", and nothing feeds that" + (setup.live ? "" : " yet"),
                            FollowsPositionSource(channel) && !position
                                ? "Deckman does while the position source (Sys_i6) is 3"
                                : "feed it by a line of the mapping, unless another program of the suite does"}});
    }
    const auto isBearing = [](const MappingVar& row) { return IsInstrumentBearing(static_cast<ChannelId>(row.channel)); };
    if (setup.now.settings.degreesTrue && std::ranges::any_of(look.mapping.varRows, isBearing) && !fed.Feeds(kMagVar, 0)) {
        setup.Add({.weight = weight,
                   .path = look.path,
                   .flaw = "no-variation",
                   .says = {"the box for degrees true is ticked, and nothing feeds MagVar (93), so the bearings have no value",
                            "map Deckman's variation to channel 93, or untick the box"}});
    }
}

}  // namespace twr
