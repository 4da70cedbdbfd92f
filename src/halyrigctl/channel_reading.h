// One channel of one boat as its user would see it, and why it can't be seen.
#pragma once
#include <optional>
#include <string>

#include "core/core.h"

namespace twr {

struct ChannelReading {
    std::u16string text;        // in the user's units; "- -" without a fresh value
    std::u16string_view unit;   // its short label; empty where there is none
    double value = kNoValue;    // as stored, in internal units
    std::optional<double> age;  // seconds since the last publication; nothing when it was never published
    std::int32_t limit = 0;     // seconds after which a value counts as gone; 0 for never
    std::string missing;        // why there is no fresh value; empty when there is one
};

// `now` in days. An alternating channel is read as the one that it stands for.
ChannelReading ReadChannel(CCore& core, ChannelId channel, BoatSlot boat, double now);

}  // namespace twr
