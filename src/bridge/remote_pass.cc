// SPDX-License-Identifier: MIT
#include "bridge/remote_pass.h"

#include "core/record_access.h"
#include "deckman/remote_text.h"

namespace twr {

void RemotePass::Run(const DeckmanLibrary& library, std::span<MappingRemote> rows, const Settings& settings) const {
    const bool magnetic = Load(core_.View()->sysFlag[kFlagMagnetic]) != 0;
    if (!library.fnSetISData || !library.fnSetISName) return;
    for (MappingRemote& row : rows) {
        const ChannelId channel = core_.ResolveAlternate(static_cast<ChannelId>(row.channel), true);
        if (channel == kNoChannel) continue;
        double value = kNoValue;
        core_.GetFreshChannel(channel, value, static_cast<BoatSlot>(row.boat), row.damp != 0, magnetic, kNoValue);
        if (value == row.lastValue) continue;
        row.lastValue = value;
        std::uint32_t word = 0;
        library.fnSetISData(&word, row.remote, ToRemoteField(RemoteValueText(core_, channel, value)).data());
        if (settings.sendNames && row.lastChannel != static_cast<std::int32_t>(channel)) {
            row.lastChannel = static_cast<std::int32_t>(channel);
            library.fnSetISName(&word, row.remote, ToRemoteField(core_.RemoteLabel(channel)).data());
        }
    }
}

}  // namespace twr
