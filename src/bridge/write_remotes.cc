// The second half of a tick: from the record to Deckman's remotes.
#include "bridge/controls.h"
#include "bridge/main_dialog.h"
#include "bridge/remote_text.h"
#include "core/shared_field.h"
#include "text/remote_field.h"

namespace twr {

void CHalyrig32Dlg::WriteRemotes() {
    const bool sendNames = window_->Checked(kNamesCheck);
    const bool magnetic = Load(core_.View()->sysFlag[kFlagMagnetic]) != 0;
    if (!library_.fnSetISData || !library_.fnSetISName) return;
    for (MappingRemote& row : mapping_.remoteRows) {
        const ChannelId channel = core_.ResolveAlternate(static_cast<ChannelId>(row.channel), true);
        if (channel == kNoChannel) continue;
        double value = kNoValue;
        core_.GetFreshChannel(channel, value, static_cast<BoatSlot>(row.boat), row.damp != 0, magnetic, kNoValue);
        if (value == row.lastValue) continue;
        row.lastValue = value;
        std::uint32_t word = 0;
        library_.fnSetISData(&word, row.remote, ToRemoteField(RemoteValueText(core_, channel, value)).data());
        if (sendNames && row.lastChannel != static_cast<std::int32_t>(channel)) {
            row.lastChannel = static_cast<std::int32_t>(channel);
            library_.fnSetISName(&word, row.remote, ToRemoteField(core_.RemoteLabel(channel)).data());
        }
    }
}

}  // namespace twr
