// One thing that has changed in the record: what all formats of a stream are made from.
#pragma once
#include "base/channel_ids.h"
#include "base/no_value.h"

namespace twr {

struct Change {
    double time;  // days: the publication's stamp; the moment of the look for a value that is found stale or gone
    ChannelId channel;
    BoatSlot boat;
    double value;  // in the channel's internal unit; kNoValue once it is stale or gone

    bool operator==(const Change&) const = default;
};

}  // namespace twr
