#include "core/store.h"

#include "base/no_value.h"
#include "core/channel_catalogue.h"
#include "core/shared_field.h"

namespace twr {

Entry EntryOf(CoreRecord& record, ChannelId channel, BoatSlot boat) {
    if (channel >= kChannelCount || boat >= kBoatCount) return {};
    if (boat < kFullBoatCount) {
        BoatBlock& block = record.fullBlocks[boat];
        return {&block.time[channel], &block.value[channel], &block.damped[channel]};
    }
    const std::uint16_t index = ChannelCatalogue()[channel].shortIndex;
    if (index >= kShortChannelCount) return {};
    ShortBoatBlock& block = record.shortBlocks[boat - kFullBoatCount];
    return {&block.time[index], &block.value[index], &block.damped[index]};
}

bool Store(CoreRecord& record, ChannelId channel, BoatSlot boat, double value, double time) {
    const Entry entry = EntryOf(record, channel, boat);
    if (!entry) return false;
    // Readers rely on this order: the value first for boats 0 and 1, the time stamp first for the others.
    if (boat < kFullBoatCount) {
        Put(*entry.value, value);
        Put(*entry.time, time);
    } else {
        Put(*entry.time, time);
        Put(*entry.value, value);
    }
    if (channel != kTime && value != kNoValue) MarkActive(record, boat);
    return true;
}

void MarkActive(CoreRecord& record, BoatSlot boat) {
    Put(record.boats[boat].active, std::uint8_t{1});
    if (Load(record.boatCount) < boat + 1) Put(record.boatCount, boat + 1);
}

}  // namespace twr
