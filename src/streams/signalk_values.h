// SPDX-License-Identifier: MIT
// The values of Signal K as JSON, for whoever tells them: the stream's deltas, and the server's tree.
#pragma once
#include <array>
#include <bitset>
#include <optional>
#include <span>
#include <string>

#include "streams/follower.h"
#include "streams/signalk_paths.h"

namespace twr {

// The boat's name by its MMSI; empty without one.
std::string SignalKMmsi(const CoreRecord& record, BoatSlot boat);

// "vessels.self", or the boat by its MMSI; empty if the boat can't be named.
std::string SignalKContext(const CoreRecord& record, BoatSlot boat);

inline bool IsObject(const SignalKPath& path) { return *path.parts.front().member != 0; }

// The path's value as of the follower's last look. Empty if there is none.
void SetSignalKValue(std::string& value, const SignalKPath& path, BoatSlot boat, const Follower& follower);

// What is said of the path itself; empty if there is nothing to say.
std::string SignalKMeta(const SignalKPath& path, const CCore& core);

// The changes of one boat in a look.
class SignalKChanges {
public:
    explicit SignalKChanges(std::span<const Change> ofBoat);

    // When the latest part of the path has changed, days; nullopt if none has.
    std::optional<double> TimeOf(const SignalKPath& path) const;

private:
    std::bitset<kChannelCount> changed_;
    std::array<double, kChannelCount> times_{};  // of those that have changed
};

// The changes of the boat that comes first; the others stay.
std::span<const Change> TakeBoat(std::span<const Change>& changes);

}  // namespace twr
