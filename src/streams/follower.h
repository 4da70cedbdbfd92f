// SPDX-License-Identifier: MIT
// Follows the record: tells what has changed in it from one look to the next.
#pragma once
#include <cstddef>
#include <optional>
#include <span>
#include <vector>

#include "core/core.h"
#include "streams/change.h"

namespace twr {

struct FollowOptions {
    std::vector<ChannelId> channels = {};         // told; none for all but Time and the alternating ones
    std::optional<BoatSlot> boat = std::nullopt;  // told; nullopt for all in use
    bool all = false;                             // unchanged values once a second too
};

class Follower {
public:
    // The core must be attached, and stay so until the last look.
    Follower(CCore& core, const Clock& clock, const FollowOptions& options);

    // What has changed since the last look, boat by boat; at the first, every fresh value. A value that became stale or was cleared
    // is told once. Valid until the next call.
    std::span<const Change> Look();

    // Every value that is told, as of the last look, boat by boat. Valid until the next call.
    std::span<const Change> Present();

    // Makes the next look the first one.
    void Forget() { seen_.assign(seen_.size(), {}); }

    // The end of all values that were told, for the time when the record is left. Valid until the next call.
    std::span<const Change> Gone();

    // The value as of the last look, whether it is told or not; kNoValue if it is stale, or there is none.
    double Value(ChannelId channel, BoatSlot boat) const;

    // The boat's variation in degrees, east positive, or else the own boat's; kNoValue if neither is fresh.
    double Variation(BoatSlot boat) const;

    // The stamp of that value, days; 0.0 without a value.
    double Time(ChannelId channel, BoatSlot boat) const;

    // The boat of a format that tells one alone.
    BoatSlot Boat() const { return options_.boat.value_or(0); }

    const CCore& Core() const { return core_; }

    // Whether changes of the channel are told.
    bool Tells(ChannelId channel) const { return tells_[channel] != 0; }

private:
    struct Seen {
        double time = 0.0;
        double value = kNoValue;  // kNoValue once it is stale
    };

    Seen Read(ChannelId channel, BoatSlot boat, double now) const;
    void LookAt(ChannelId channel, BoatSlot boat, double now);
    bool TellsOf(BoatSlot boat) const { return !options_.boat || *options_.boat == boat; }

    CCore& core_;
    const Clock& clock_;
    const FollowOptions options_;
    std::vector<std::uint8_t> tells_;      // by channel
    std::vector<ChannelId> full_, short_;  // the channels looked at, of the boats that hold all and of the far ones
    std::vector<Seen> seen_;               // of each boat and channel
    std::vector<Change> changes_;
    bool repeats_ = false;   // this look tells unchanged values too
    double repeated_ = 0.0;  // the last look that did, days
};

}  // namespace twr
