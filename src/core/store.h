// The entries of the record: where a channel of a boat stands, and the one write of a value with its time stamp.
#pragma once
#include "core/core_record.h"

namespace twr {

// The places of one channel of one boat; all null when the boat has no entry for the channel.
struct Entry {
    double* time = nullptr;
    double* value = nullptr;
    double* damped = nullptr;

    explicit operator bool() const { return value != nullptr; }
};

// Boats 0 and 1 hold every channel, the others those with a short index.
Entry EntryOf(CoreRecord& record, ChannelId channel, BoatSlot boat);

// Writes an entry. A real value also marks the boat as active and raises boatCount over it; the Time channel doesn't. False when
// there is no entry.
bool Store(CoreRecord& record, ChannelId channel, BoatSlot boat, double value, double time);

// Marks the boat as one that has received a real value. `boat` is below kBoatCount.
void MarkActive(CoreRecord& record, BoatSlot boat);

}  // namespace twr
