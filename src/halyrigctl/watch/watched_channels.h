// SPDX-License-Identifier: MIT
// The channels that watch shows, look by look.
#pragma once
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "halyrigctl/commands.h"
#include "halyrigctl/setup/channel_reading.h"
#include "halyrigctl/watch/sparkline.h"

namespace twr {

// Texts are UTF-8 that a terminal doesn't act upon.
struct WatchedRow {
    ChannelId id;
    std::string name;
    std::string text, unit;     // as in a ChannelReading
    std::optional<double> age;  // seconds; nullopt if it was never published
    ChannelState state;
    std::string reason;      // why there is no fresh value; empty if there is one
    std::string course;      // a Sparkline's text
    std::string scale = {};  // and its bounds
};

// Rows that are equal in this order stay as they were.
void Sort(std::vector<WatchedRow>& rows, RowOrder order);

class WatchedChannels {
public:
    // Those named are shown even if they were never published, and so are those of the mapping if only they are wanted; otherwise
    // what was published. The core must be attached and outlive the object.
    WatchedChannels(CCore& core, const WatchOptions& options, std::vector<ChannelId> named);

    BoatSlot Boat() const { return boat_; }

    // In the order of the channels' numbers.
    std::vector<WatchedRow> Look(Circumstances& circumstances);

private:
    bool IsWanted(ChannelId channel, Circumstances& circumstances) const;
    WatchedRow Read(ChannelId channel, Circumstances& circumstances);

    CCore& core_;
    const BoatSlot boat_;
    const bool onlyMapped_;
    const std::vector<ChannelId> named_;
    std::map<ChannelId, Sparkline> courses_;
};

}  // namespace twr
